"""What the comparisons stand on: an sshd of their own on a loopback port, and something behind it that answers.

Nothing here reads or changes what belongs to whoever runs it. Times are seconds.
"""

import os
import pathlib
import random
import socket
import socketserver
import subprocess
import threading
import time

from .processes import connections, descendants, end, sockets

PATIENCE = 60


def free_ports(count):
    """Below those that the kernel gives to outgoing connections: one to such a port may end up with itself."""
    probes = []
    while len(probes) < count:
        probe = socket.socket()
        try:
            probe.bind(("127.0.0.1", random.randrange(20000, 32000)))
            probes.append(probe)
        except OSError:
            probe.close()
    ports = [probe.getsockname()[1] for probe in probes]
    for probe in probes:
        probe.close()
    return ports


def answer_to(said):
    """Not the same, which whoever gets hold of the wrong end might send, too."""
    return bytes(255 - byte for byte in said)


class Echo:
    """Answers each byte."""

    class _Handler(socketserver.BaseRequestHandler):
        def handle(self):
            while data := self.request.recv(4096):
                self.request.sendall(answer_to(data))

    class _Server(socketserver.ThreadingTCPServer):
        daemon_threads = True
        request_queue_size = 256

    def __init__(self):
        self._server = self._Server(("127.0.0.1", 0), self._Handler)
        self.port = self._server.server_address[1]
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def close(self):
        self._server.shutdown()
        self._server.server_close()


def carries(port):
    """Whether bytes go through the tunnel behind a local port and come back."""
    said = os.urandom(16)
    try:
        with socket.create_connection(("127.0.0.1", port), timeout=2) as client:
            client.sendall(said)
            heard = b""
            while len(heard) < len(said):
                more = client.recv(64)
                if not more:
                    return False
                heard += more
            return heard == answer_to(said)
    except OSError:
        return False


def wait_until_carries(port, timeout=PATIENCE, still=lambda: True):
    """The moment from which it does; nothing when it does not within the time, or when there is no hope any more."""
    end = time.monotonic() + timeout
    while time.monotonic() < end and still():
        if carries(port):
            return time.monotonic()
        time.sleep(0.005)
    return None


class Sshd:
    def __init__(self, directory):
        self._directory = pathlib.Path(directory)
        self.port = free_ports(1)[0]
        for name in ("host", "user"):
            subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self._directory / name], check=True)
        self.key = self._directory / "user"
        (self._directory / "sshd.conf").write_text(f"""
Port {self.port}
ListenAddress 127.0.0.1
HostKey {self._directory}/host
AuthorizedKeysFile {self._directory}/user.pub
PasswordAuthentication no
KbdInteractiveAuthentication no
UsePAM no
StrictModes no
PermitRootLogin yes
PidFile none
MaxStartups 1000
""")
        if os.getuid() == 0:
            os.makedirs("/run/sshd", exist_ok=True)  # root's sshd insists on it
        self._process = None
        self.start()

    def start(self):
        with open(self._directory / "sshd.log", "ab") as log:
            self._process = subprocess.Popen(["/usr/sbin/sshd", "-D", "-e", "-f", self._directory / "sshd.conf"],
                                             stdin=subprocess.DEVNULL, stderr=log)
        end = time.monotonic() + PATIENCE
        while True:
            try:
                socket.create_connection(("127.0.0.1", self.port)).close()
                return
            except ConnectionRefusedError:
                if time.monotonic() > end or self._process.poll() is not None:
                    raise
                time.sleep(0.01)

    def stop(self):
        """Nobody listens any more, and all connections are cut."""
        sessions = descendants(self._process.pid)
        self._process.kill()
        for session in sessions:
            end(session)
        self._process.wait()

    def cut(self, client):
        """Ends the server's side of what this ssh is connected to; the moment at which that happened."""
        table = connections()
        ports = {table[inode][0] for inode in sockets(client) if table.get(inode, (0, 0))[1] == self.port}
        ours = {inode for inode, ends in table.items() if ends[0] == self.port and ends[1] in ports}
        victims = [pid for pid in descendants(self._process.pid) if sockets(pid) & ours]
        if not victims:
            raise RuntimeError("no session of sshd's belongs to this ssh")
        moment = time.monotonic()
        for victim in victims:
            end(victim)
        return moment
