"""The service behind HTTPS, under the name that the program ships with, for a computer that trusts a CA of the test's.

It changes the trust store and the host names of the case's own mount namespace only.
"""
import os
import subprocess

HOST = "service.vorrano.example"
TRUST_STORE = "/etc/ssl/certs/ca-certificates.crt"
CONFIGURATION = """\
[ca]
default_ca = own
[own]
dir = {folder}
new_certs_dir = {folder}
database = {folder}/index
serial = {folder}/serial
default_md = sha256
policy = any
copy_extensions = copy
[any]
commonName = supplied
"""
VALID = ("-days", "2")
EXPIRED = ("-startdate", "20200101000000Z", "-enddate", "20200102000000Z")


def openssl(*arguments):
    subprocess.run(["openssl", *arguments], check=True, capture_output=True)


class Https:
    def __init__(self, world):
        self._world = world
        self._folder = os.path.join(world.folder, "tls")
        os.mkdir(self._folder)
        self._write("openssl.cnf", CONFIGURATION.format(folder=self._folder))
        self._write("index", "")
        self._write("serial", "01\n")
        self._key = self._path("key.pem")
        openssl("genrsa", "-out", self._key, "2048")
        self._authority("ca")
        self._trust("ca")
        self._write("hosts", "127.0.0.1 localhost %s\n" % HOST)
        self._mount("hosts", "/etc/hosts")

    def _path(self, name):
        return os.path.join(self._folder, name)

    def _write(self, name, text):
        with open(self._path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def _mount(self, name, target):
        subprocess.run(["mount", "--bind", self._path(name), target], check=True)

    def _authority(self, name):
        openssl("req", "-x509", "-new", "-key", self._key, "-subj", "/CN=Test authority " + name, "-days", "2", "-out",
                self._path(name + ".pem"))

    def _trust(self, name):
        with open(self._path(name + ".pem"), encoding="utf-8") as certificate:
            self._write("trusted.pem", certificate.read())
        self._mount("trusted.pem", TRUST_STORE)

    def serve(self, host=HOST, validity=VALID, authority="ca"):
        """The service answers at port 443 with a certificate for that host, valid then, by that authority."""
        if authority != "ca":
            self._authority(authority)
        openssl("req", "-new", "-key", self._key, "-subj", "/CN=" + host, "-addext", "subjectAltName=DNS:" + host,
                "-out", self._path("request.pem"))
        openssl("ca", "-batch", "-config", self._path("openssl.cnf"), "-keyfile", self._key, "-cert",
                self._path(authority + ".pem"), "-in", self._path("request.pem"), "-out", self._path("host.pem"),
                "-notext", *validity)
        self._world.vorrano.do("serveSecurely", port=443, certificate=self._path("host.pem"), key=self._key)
