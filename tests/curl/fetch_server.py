"""Web servers on loopback for the fetch tests: one over HTTP, and one over HTTPS for each kind of certificate.

usage: fetch_server.py FOLDER

Makes a throw-away authority and its certificates in FOLDER (authority.pem is the one to trust), then prints one line:
the ports of http, good, stranger (signed by another authority), expired and wronghost. Ends with its standard input.

What a path asks for is said at its function below; every other path is answered with the request's own target.
"""
import http.server
import os
import ssl
import subprocess
import sys
import threading

CHUNK = 64 * 1024


def openssl(*arguments):
    subprocess.run(["openssl", *arguments], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def make_authority(folder, name):
    openssl("req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-days", "2", "-subj",
            "/CN=" + name, "-keyout", folder + "/" + name + ".key", "-out", folder + "/" + name + ".pem")


def make_certificate(folder, name, authority, host, days):
    path = folder + "/" + name
    with open(path + ".ext", "w", encoding="ascii") as extensions:
        extensions.write("subjectAltName=" + host + "\n")
    openssl("req", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-subj", "/CN=" + name, "-keyout",
            path + ".key", "-out", path + ".csr")
    openssl("x509", "-req", "-in", path + ".csr", "-CA", folder + "/" + authority + ".pem", "-CAkey",
            folder + "/" + authority + ".key", "-CAcreateserial", "-days", str(days), "-extfile", path + ".ext", "-out",
            path + ".pem")


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    disable_nagle_algorithm = True
    targets = []
    ended = threading.Event()

    def do_GET(self):
        # The target as it came over the wire; the base class tidies it up.
        target = self.raw_requestline.split()[1].decode("latin-1")
        if target == "/requests":
            return self.reply(200, "\n".join(self.targets).encode("latin-1"))
        self.targets.append(target)
        name, _, argument = target[1:].partition("/")
        handler = getattr(self, "path_" + name, None)
        return handler(argument) if handler else self.reply(200, target.encode("latin-1"))

    def reply(self, status, body, **headers):
        self.send_response(status)
        for key, value in headers.items():
            self.send_header(key, value)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def path_status(self, argument):
        """That status, with a page."""
        self.reply(int(argument), b"<html>page</html>")

    def path_empty(self, _):
        self.reply(200, b"")

    def path_binary(self, _):
        self.reply(200, bytes(range(256)))

    def path_redirect(self, argument):
        """As many redirections as the number says, then the text "arrived"."""
        left = int(argument)
        if left == 0:
            self.reply(200, b"arrived")
        else:
            self.reply(302, b"elsewhere", Location="/redirect/%d" % (left - 1))

    def path_moved(self, argument):
        """A redirection with the status before the first slash to what stands after it, percent-decoded once."""
        status, _, location = argument.partition("/")
        for code, char in (("%3A", ":"), ("%2F", "/"), ("%20", " ")):
            location = location.replace(code, char)
        self.reply(int(status), b"elsewhere", Location=location)

    def path_relative(self, _):
        """A redirection that counts from here."""
        self.reply(302, b"elsewhere", Location="../beside/there")

    def path_nowhere(self, _):
        """A redirection that does not say where to."""
        self.reply(302, b"nowhere")

    def path_cut(self, _):
        """Half of what was promised."""
        self.send_response(200)
        self.send_header("Content-Length", "1000")
        self.end_headers()
        self.wfile.write(b"x" * 500)
        self.close_connection = True

    def path_silent(self, _):
        """No answer."""
        self.ended.wait()

    def path_stall(self, _):
        """The beginning of a body, and then nothing."""
        self.send_response(200)
        self.send_header("Content-Length", "1000")
        self.end_headers()
        self.wfile.write(b"x")
        self.wfile.flush()
        self.ended.wait()

    def path_trickle(self, argument):
        """As many bytes as the number says, one every 50 ms."""
        self.send_response(200)
        self.send_header("Content-Length", argument)
        self.end_headers()
        for _ in range(int(argument)):
            self.wfile.write(b"x")
            self.wfile.flush()
            self.ended.wait(0.05)

    def path_body(self, argument):
        """A body of that many bytes, whose length is not announced."""
        self.send_response(200)
        self.send_header("Connection", "close")
        self.end_headers()
        left = int(argument)
        while left > 0:
            self.wfile.write(b"x" * min(left, CHUNK))
            left -= CHUNK
        self.close_connection = True

    def path_endless(self, _):
        self.send_response(200)
        self.end_headers()
        while not self.ended.is_set():
            self.wfile.write(b"x" * CHUNK)

    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, *_):
        """Clients that hang up are what is being tested."""


def serve(folder=None, certificate=None):
    server = Server(("127.0.0.1", 0), Handler)
    if certificate:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(folder + "/" + certificate + ".pem", folder + "/" + certificate + ".key")
        server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server.server_address[1]


def main():
    folder = os.path.abspath(sys.argv[1])
    make_authority(folder, "authority")
    make_authority(folder, "otherauthority")
    loopback = "IP:127.0.0.1,DNS:localhost"
    make_certificate(folder, "good", "authority", loopback, 2)
    make_certificate(folder, "stranger", "otherauthority", loopback, 2)
    make_certificate(folder, "expired", "authority", loopback, -1)
    make_certificate(folder, "wronghost", "authority", "DNS:elsewhere.example", 2)
    ports = [serve()] + [serve(folder, name) for name in ("good", "stranger", "expired", "wronghost")]
    print(*ports, flush=True)
    sys.stdin.read()
    Handler.ended.set()


main()
