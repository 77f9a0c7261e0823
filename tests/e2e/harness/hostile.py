"""A web service that means harm, in the place of the simulated one."""
import http.server
import threading

from .world import SERVICE_PORT

CHUNK = 64 * 1024
MIB = 1024 * 1024


class HostileService:
    """Answers every request with `answer(handler)`, which writes what it likes, on a thread of the request's own."""

    def __init__(self, world, answer):
        world.vorrano.do("refuseConnections")
        self.targets = []
        # How many answers were written to their end.
        self.answered = 0
        self.ended = threading.Event()
        outer = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                outer.targets.append(self.raw_requestline.split()[1].decode("latin-1"))
                answer(self)
                outer.answered += 1

            def log_message(self, *_):
                pass

        self._server = _Server(("127.0.0.1", SERVICE_PORT), Handler)
        self._thread = threading.Thread(target=self._server.serve_forever, daemon=True)
        self._thread.start()

    def close(self):
        self.ended.set()
        self._server.shutdown()
        self._server.server_close()


class _Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        """A program that hangs up is what is being tested."""


def head(handler, **headers):
    handler.send_response(200)
    for name, value in headers.items():
        handler.send_header(name.replace("_", "-"), value)
    handler.end_headers()


def body(bytes_):
    """An answer of these bytes."""
    def answer(handler):
        head(handler, Content_Length=str(len(bytes_)))
        handler.wfile.write(bytes_)
    return answer


def repeated(beginning, piece, end, size):
    """An answer of about `size` bytes: a beginning, a piece again and again, an end; its length is not told before."""
    def answer(handler):
        head(handler, Connection="close")
        handler.wfile.write(beginning)
        chunk = piece * (CHUNK // len(piece))
        for _ in range((size - len(beginning) - len(end)) // len(chunk)):
            handler.wfile.write(chunk)
        handler.wfile.write(end)
    return answer


def redirection(location):
    """To that address, always."""
    def answer(handler):
        handler.send_response(302)
        handler.send_header("Location", location)
        handler.send_header("Content-Length", "0")
        handler.end_headers()
    return answer
