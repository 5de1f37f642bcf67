"""A running studio for tests, and plain requests to it."""
import json
import os
import signal
import socket
import struct
import subprocess
import tempfile
import zlib


class Studio:
    def __init__(self, program, pictures):
        """Draws a portrait for each NAME: (size, seed) into a folder of its own and serves it."""
        self.program = program
        self._scratch = tempfile.TemporaryDirectory(prefix="zel_studio_")
        self.scratch = self._scratch.name
        self.folder = os.path.join(self.scratch, "pictures")
        self.temporary = os.path.join(self.scratch, "temporary")
        os.mkdir(self.folder)
        os.mkdir(self.temporary)
        for name, (size, seed) in pictures.items():
            self.zel("portrait", "-o", os.path.join(self.folder, name), "--size", size, "--seed", str(seed))
        self.process = subprocess.Popen(
            [program, "studio", self.folder, "--no-browser"], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
            text=True, env={**os.environ, "TMPDIR": self.temporary})
        self.address = self.process.stdout.readline().strip()
        host, self.secret = self.address.removeprefix("http://").rstrip("/").split("/")
        self.port = int(host.split(":")[1])
        self.host = host

    def zel(self, *words):
        subprocess.run([self.program, *words], check=True, capture_output=True)

    def path(self, name):
        return os.path.join(self.folder, name)

    def bytes(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def raw(self, data, half=False):
        """Sends bytes as they are; returns what comes back until the server hangs up."""
        with socket.create_connection(("127.0.0.1", self.port), timeout=60) as connection:
            try:
                connection.sendall(data)
                if half:
                    connection.shutdown(socket.SHUT_WR)
            except OSError:
                pass  # it may hang up while it is still being talked to
            answer = b""
            while True:
                try:
                    part = connection.recv(1 << 16)
                except ConnectionResetError:
                    break
                if not part:
                    break
                answer += part
        return answer

    def request(self, method, path, body=b"", headers=None):
        """(status, body) of a request as the page would send it, but for the headers that are given."""
        fields = {"Host": self.host}
        if method == "POST":
            kind = "application/json" if isinstance(body, dict) else "application/octet-stream"
            body = json.dumps(body).encode() if isinstance(body, dict) else body
            fields |= {"Origin": "http://" + self.host, "Content-Type": kind, "Content-Length": str(len(body))}
        fields |= headers or {}
        lines = [f"{method} {path} HTTP/1.1"] + [f"{name}: {value}" for name, value in fields.items() if value is not None]
        answer = self.raw("\r\n".join(lines).encode() + b"\r\n\r\n" + body)
        head, _, rest = answer.partition(b"\r\n\r\n")
        return (int(head.split()[1]) if head else 0), rest

    def ask(self, path):
        status, body = self.request("GET", f"/{self.secret}/{path}")
        assert status == 200, (path, status, body[:200])
        return json.loads(body)

    def tell(self, path, value):
        status, body = self.request("POST", f"/{self.secret}/{path}", value)
        assert status == 200, (path, status, body[:200])
        return json.loads(body)

    def end(self):
        """Ends it as a user would; returns its exit status and what it complained of."""
        self.process.send_signal(signal.SIGINT)
        _, said = self.process.communicate(timeout=30)
        left = os.listdir(self.temporary)
        self._scratch.cleanup()
        return self.process.returncode, said, left


def write_grey_png(path, width, height, samples):
    rows = b"".join(b"\0" + bytes(samples[y * width:(y + 1) * width]) for y in range(height))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0))
                   + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))
