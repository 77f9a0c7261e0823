#!/usr/bin/python3
"""pyserial's port for bench_libraries. Takes from standard input, a line each: "open", "close", or a request and how
often; answers each with "done", or ends.

usage: pyserial_port.py NODE
"""
import sys

import serial

REPLY_LENGTH = 19


def main():
    port = serial.Serial(baudrate=9600, timeout=2)
    port.port = sys.argv[1]
    for line in sys.stdin:
        if line in ("open\n", "close\n"):
            getattr(port, line.strip())()
        else:
            request, times = line.split()
            for _ in range(int(times)):
                port.write(request.encode())
                if len(port.read(REPLY_LENGTH)) != REPLY_LENGTH:
                    return 1
        print("done", flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
