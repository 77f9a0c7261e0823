"""The simulated Vorrano and its web service, through the simulator's control socket."""
import json
import os
import socket
import subprocess
import threading

from .waiting import wait_for


class Control:
    """A simulator's control socket."""

    def __init__(self, path):
        self.path = path
        self._lines = self._connect()

    def _connect(self):
        with socket.socket(socket.AF_UNIX) as connection:
            connection.connect(self.path)
            return connection.makefile("rw", encoding="utf-8", newline="\n")

    def do(self, what, **members):
        """Orders something; gives the answer, and raises what the simulator refuses."""
        self._lines.write(json.dumps(dict(members, do=what)) + "\n")
        self._lines.flush()
        answer = json.loads(self._lines.readline())
        if not answer["ok"]:
            raise RuntimeError(answer["error"])
        return answer

    @property
    def state(self):
        return self.do("state")

    @property
    def device(self):
        return self.state["device"]

    @property
    def node(self):
        return self.state["line"]["node"]

    @property
    def received(self):
        """Every byte that the device got since the last forget()."""
        return self.state["received"].encode("latin-1")

    @property
    def requests(self):
        """The targets of the requests that the service got since the last forget()."""
        return [request["target"] for request in self.state["service"]["requests"]]

    def forget(self):
        self.do("clearRecords")

    def fault(self, kind, **members):
        self.do("fault", kind=kind, **members)

    def close(self):
        self._lines.close()


class Simulator(Control):
    """A simulator of one's own, with the events that it tells of."""

    def __init__(self, program, folder, http_port=0, plugged=True):
        path = os.path.join(folder, "vorrano.control")
        command = [program, "--control", path, "--http-port", str(http_port), "--until-stdin-ends"]
        if not plugged:
            command.append("--unplugged")
        self._process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        if not self._process.stdout.readline():
            raise RuntimeError("the simulator did not start")
        super().__init__(path)
        self.events = []
        self._listener = threading.Thread(target=self._listen, args=(self._connect(),), daemon=True)
        self._listener.start()
        wait_for("the simulator's events", lambda: self.events)

    def _listen(self, lines):
        with lines:
            lines.write('{"do": "subscribe"}\n')
            lines.flush()
            for line in lines:
                self.events.append(json.loads(line))

    def time_of(self, event, bytes_):
        """When the device last got, or sent, these bytes: seconds of the monotonic clock."""
        wanted = bytes_.decode("latin-1")
        times = [e["time"] for e in self.events if e.get("event") == event and wanted in e["bytes"]]
        return times[-1] / 1e9

    def stop(self):
        """Gives its exit status."""
        self._process.stdin.close()
        try:
            status = self._process.wait(10)
        except subprocess.TimeoutExpired:
            self._process.kill()
            raise
        self._process.stdout.close()
        self.close()
        self._listener.join(10)
        return status
