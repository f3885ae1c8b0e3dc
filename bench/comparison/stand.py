"""What the comparisons stand on: an sshd of their own on a loopback port, something behind it that echoes, the
supervisors that keep a tunnel to it, and what the kernel tells about processes.

Nothing here reads or changes what belongs to whoever runs it. Times are seconds, memory is kilobytes.
"""

import getpass
import os
import pathlib
import signal
import socket
import socketserver
import subprocess
import sys
import threading
import time

BENCH = pathlib.Path(__file__).resolve().parent.parent
REPOSITORY = BENCH.parent
SSH = "/usr/bin/ssh"
AUTOSSH = "/usr/bin/autossh"
RESTART_LOOP = pathlib.Path(__file__).resolve().parent / "restart-loop"
KEEP_ALIVE = {"ServerAliveInterval": 60, "ServerAliveCountMax": 3, "ConnectTimeout": 30}  # Velmora's own defaults
PATIENCE = 60


def desktop_of(program):
    """The desktop of the tests, for this program."""
    os.environ["VELMORA_PROGRAM"] = str(program)
    sys.path.insert(0, str(REPOSITORY / "tests/desktop"))
    import desktop  # noqa: PLC0415  it wants the environment at once
    return desktop


# ---- what the kernel tells ----

def children(pid):
    found = []
    for task in pathlib.Path(f"/proc/{pid}/task").glob("*/children"):
        try:
            found += map(int, task.read_text().split())
        except OSError:
            pass
    return found


def descendants(pid):
    found = []
    for child in children(pid):
        found += [child, *descendants(child)]
    return found


def command_of(pid):
    try:
        return pathlib.Path(f"/proc/{pid}/comm").read_text().strip()
    except OSError:
        return ""


def ssh_below(pids):
    return [child for pid in pids for child in descendants(pid) if command_of(child) == "ssh"]


def ssh_of(pids, port):
    """The one below these processes that forwards this local port."""
    for pid in ssh_below(pids):
        if f"127.0.0.1:{port}:".encode() in pathlib.Path(f"/proc/{pid}/cmdline").read_bytes():
            return pid
    raise RuntimeError(f"no ssh forwards port {port}")


def memory(pid, kind):
    """`kind` as smaps_rollup calls it."""
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        return next(int(line.split()[1]) for line in file if line.startswith(kind + ":"))


def wake_ups(pid):
    """How often any thread has gone to sleep of its own accord so far, and so has been woken."""
    total = 0
    for status in pathlib.Path(f"/proc/{pid}/task").glob("*/status"):
        lines = status.read_text().splitlines()
        total += next(int(line.split()[1]) for line in lines if line.startswith("voluntary_ctxt_switches"))
    return total


def connections():
    """Socket inode to (local port, remote port) of all established IPv4 connections."""
    found = {}
    for line in pathlib.Path("/proc/net/tcp").read_text().splitlines()[1:]:
        fields = line.split()
        if fields[3] == "01":
            found[fields[9]] = tuple(int(fields[side].split(":")[1], 16) for side in (1, 2))
    return found


def sockets(pid):
    found = set()
    try:
        for entry in os.scandir(f"/proc/{pid}/fd"):
            target = os.readlink(entry.path)
            if target.startswith("socket:["):
                found.add(target[8:-1])
    except OSError:
        pass  # it has gone
    return found


def free_ports(count):
    probes = [socket.socket() for _ in range(count)]
    for probe in probes:
        probe.bind(("127.0.0.1", 0))
    ports = [probe.getsockname()[1] for probe in probes]
    for probe in probes:
        probe.close()
    return ports


# ---- what is tunnelled to ----

class Echo:
    """Sends back what it gets."""

    class _Handler(socketserver.BaseRequestHandler):
        def handle(self):
            while data := self.request.recv(4096):
                self.request.sendall(data)

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
            return heard == said
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
            _end(session)
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
            _end(victim)
        return moment


def _end(pid):
    try:
        os.kill(pid, signal.SIGKILL)
    except ProcessLookupError:
        pass


# ---- who keeps a tunnel ----

def ssh_arguments(sshd, forwardings):
    """What all supervisors start ssh with; it is what Velmora makes of `host_profile`."""
    options = {"StrictHostKeyChecking": "no", "UserKnownHostsFile": "/dev/null", **KEEP_ALIVE}
    arguments = ["-N", "-p", str(sshd.port), "-i", str(sshd.key)]
    for name, value in options.items():
        arguments += ["-o", f"{name}={value}"]
    for local, target in forwardings:
        arguments += ["-L", f"127.0.0.1:{local}:127.0.0.1:{target}"]
    return [*arguments, "-o", "IdentitiesOnly=yes", f"{getpass.getuser()}@127.0.0.1"]


def host_profile(desktop, name, sshd, forwardings):
    return desktop.host(
        name, connectOnStartup=True, port=sshd.port, username=getpass.getuser(), identityFile=str(sshd.key),
        customOptions="IdentitiesOnly=yes",
        serverAliveInterval=KEEP_ALIVE["ServerAliveInterval"],
        serverAliveCountMax=KEEP_ALIVE["ServerAliveCountMax"], connectTimeout=KEEP_ALIVE["ConnectTimeout"],
        forwardingRules=[{"type": "Local", "bindAddress": "127.0.0.1", "bindPort": local,
                          "targetAddress": "127.0.0.1", "targetPort": target} for local, target in forwardings])


class Velmora:
    """One program for all tunnels, on a desktop of its own. Without a tray its main window opens by itself."""

    def __init__(self, program, sshd, forwardings, tray=True):
        module = desktop_of(program)
        self._desktop = module.Desktop().__enter__()
        try:
            hosts = [host_profile(module, f"host {number}", sshd, [each]) for number, each in enumerate(forwardings)]
            self._desktop.write_hosts(hosts)
            configuration = pathlib.Path(self._desktop.home, ".config/com.velmora.app.conf")
            configuration.parent.mkdir(exist_ok=True)
            # It looks for updates as always, but not outside.
            configuration.write_text("[General]\nupdateFeedURL=https://127.0.0.1:1/velmora/appcast.json\n")
            self._watcher = module.Watcher(self._desktop) if tray else None
            self.process = self._desktop.start_program()
            if not tray:
                module.wait_until(self._desktop.windows, "the window opens")
        except BaseException:
            self.close()
            raise

    def alive(self, _port):
        return self.process.poll() is None

    def pids(self):
        return [self.process.pid]

    def starts(self, port):
        """How often it has started the ssh that forwards this local port."""
        logs = pathlib.Path(self._desktop.home, ".local/state/Logs/Velmora").glob("*.log")
        return sum("] ssh " in line and f"127.0.0.1:{port}:" in line
                   for log in logs for line in log.read_text(errors="replace").splitlines())

    def close(self):
        self._desktop.__exit__(None, None, None)


class Restarter:
    """A program for each tunnel that runs ssh again when it ends: autossh, or a loop as in a unit of systemd."""

    def __init__(self, directory, sshd, forwardings, command, environment, started):
        self._started = started
        self._logs = {port: pathlib.Path(directory, f"starts-{port}.log") for port, _ in forwardings}
        surroundings = {"PATH": os.environ["PATH"], "HOME": str(directory), "LANG": "C.UTF-8", **environment}
        self._processes = {}
        for port, target in forwardings:
            log = str(self._logs[port])
            self._processes[port] = subprocess.Popen(
                [*command, *ssh_arguments(sshd, [(port, target)])], stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                env={**surroundings, "AUTOSSH_LOGFILE": log, "RESTART_LOG": log})

    def alive(self, port):
        return self._processes[port].poll() is None

    def pids(self):
        return [process.pid for process in self._processes.values()]

    def starts(self, port):
        return self._logs[port].read_text(errors="replace").count(self._started)

    def close(self):
        for process in self._processes.values():
            below = descendants(process.pid)
            process.kill()
            process.wait()
            for pid in below:
                _end(pid)


def autossh(directory, sshd, forwardings, gate=False):
    """As the usual recipes have it. Without `gate` a first connection that ends soon counts like any other."""
    return Restarter(directory, sshd, forwardings, [AUTOSSH, "-M", "0"], {} if gate else {"AUTOSSH_GATETIME": "0"},
                     " starting ssh (")


def restart_loop(directory, sshd, forwardings, delay, limit=5):
    return Restarter(directory, sshd, forwardings, [RESTART_LOOP, str(delay), str(limit), SSH], {}, "start\n")
