"""What stands at the other end: an sshd and a page server of the tests' own, on loopback."""

import contextlib
import http.server
import os
import pwd
import re
import shutil
import socket
import subprocess
import threading

from desktop import wait_until

_reservations = []


def free_port(addresses=("127.0.0.1",)):
    """A port on which nothing listens at these addresses. No other test, in this or any other process, is given it
    until this process ends. Below the range from which the system takes ports for outgoing connections."""
    start = os.getpid() * 13
    for step in range(12000):
        port = 20000 + (start + step) % 12000
        reservation = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        try:
            reservation.bind(f"\0velmora-test-port-{port}")  # the system frees the name when the process ends
            for address in addresses:
                socket.create_server((address, port)).close()
        except OSError:
            reservation.close()
            continue
        _reservations.append(reservation)
        return port
    raise AssertionError("no free port")


def listens(port):
    with contextlib.suppress(OSError), socket.create_connection(("127.0.0.1", port), timeout=5):
        return True
    return False


class PageServer:
    """A web server at several loopback addresses. Each page says at which of them it was asked, and for which name."""

    def __init__(self, addresses):
        self.port = free_port(addresses)
        self.requests = []  # (address, name, path), in order
        self._servers = [self._serve(address) for address in addresses]

    def _serve(self, address):
        requests = self.requests

        class Page(http.server.BaseHTTPRequestHandler):
            def do_GET(self):  # noqa: N802  the base class calls it so
                name = self.headers["Host"].rpartition(":")[0]
                requests.append((address, name, self.path))
                page = f"<!doctype html><title>Page</title><p>{name} at {address}</p>".encode()
                self.send_response(200)
                self.send_header("Content-Type", "text/html")
                self.send_header("Content-Length", str(len(page)))
                self.end_headers()
                self.wfile.write(page)

            def log_message(self, *_):
                pass

        server = http.server.ThreadingHTTPServer((address, self.port), Page)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        return server

    def stop(self):
        for server in self._servers:
            server.shutdown()
            server.server_close()


class Sshd:
    """An sshd with keys of its own. The user who runs the test logs in with `user_key`; with a `password`, the same
    user also as ACCOUNT, by that.

    Whoever asks it to connect to one of `names` (name to address) gets that address; nobody else knows the names. The
    library that sees to it needs no privilege and changes nothing on the machine.
    """

    ACCOUNT = "velmora-test"

    def __init__(self, desktop, label, names, password=None):
        self.port = free_port()
        self.user = pwd.getpwuid(os.geteuid()).pw_name
        self._directory = os.path.join(desktop.home, label)
        os.mkdir(self._directory, 0o700)
        self.user_key = self._path("user-key")
        for key in ("host-key", "user-key"):
            desktop.run("ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self._path(key))
        shutil.copy(self.user_key + ".pub", self._path("authorized-keys"))
        self._write("names", "".join(f"{address} {name}\n" for name, address in names.items()))
        self._write("configuration", f"""
            Port {self.port}
            ListenAddress 127.0.0.1
            HostKey {self._path("host-key")}
            AuthorizedKeysFile {self._path("authorized-keys")}
            PasswordAuthentication {"yes" if password else "no"}
            KbdInteractiveAuthentication no
            UsePAM no
            UseDNS no
            StrictModes no
            PermitRootLogin yes
            PidFile none
            LogLevel DEBUG1
        """)
        self._wrapper = ["LD_PRELOAD=libnss_wrapper.so", f"NSS_WRAPPER_HOSTS={self._path('names')}"]
        if password:
            self._add_account(desktop, password)
        if os.geteuid() == 0:
            os.makedirs("/run/sshd", exist_ok=True)  # root's sshd insists on it
        self._start(desktop)

    def _add_account(self, desktop, password):
        """For this sshd alone; the system's own accounts stay as they are."""
        salted = subprocess.run(["openssl", "passwd", "-6", "-stdin"], input=password, stdout=subprocess.PIPE,
                                text=True, check=True).stdout.strip()
        lines = {"passwd": f"{self.ACCOUNT}:x:{os.geteuid()}:{os.getegid()}::{desktop.home}:/bin/sh\n",
                 "group": "", "shadow": f"{self.ACCOUNT}:{salted}:19000:0:99999:7:::\n"}
        for name, line in lines.items():
            known = ""
            if name != "shadow":
                with open(f"/etc/{name}", encoding="utf-8") as file:
                    known = file.read()
            self._write(name, known + line)
            self._wrapper.append(f"NSS_WRAPPER_{name.upper()}={self._path(name)}")

    def _start(self, desktop):
        with open(self._path("log"), "wb") as log:
            process = desktop.start("env", *self._wrapper, "/usr/sbin/sshd", "-D", "-e", "-f", self._path("configuration"),
                                    stdin=subprocess.DEVNULL, stderr=log)
        wait_until(lambda: listens(self.port) or process.poll() is not None, "sshd starts")
        assert process.poll() is None, f"sshd does not start: {self.log()}"

    def _path(self, name):
        return os.path.join(self._directory, name)

    def _write(self, name, text):
        with open(self._path(name), "w", encoding="utf-8") as file:
            file.write(text)

    def log(self):
        with open(self._path("log"), encoding="utf-8", errors="replace") as file:
            return file.read()

    def targets(self):
        """The names that clients asked it to connect to."""
        return set(re.findall(r"server_request_direct_tcpip: .* target (\S+) port", self.log()))
