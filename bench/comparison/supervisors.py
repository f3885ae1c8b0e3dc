"""Who keeps a tunnel: velmora, autossh, and a loop that starts ssh again. All start it with the same arguments."""

import getpass
import os
import pathlib
import subprocess
import sys

from .processes import descendants, end

BENCH = pathlib.Path(__file__).resolve().parent.parent
REPOSITORY = BENCH.parent
SSH = "/usr/bin/ssh"
AUTOSSH = "/usr/bin/autossh"
RESTART_LOOP = BENCH / "comparison/restart-loop"
KEEP_ALIVE = {"ServerAliveInterval": 60, "ServerAliveCountMax": 3, "ConnectTimeout": 30}  # Velmora's own defaults


def desktop_of(program):
    """The desktop of the tests, for this program."""
    os.environ["VELMORA_PROGRAM"] = str(program)
    sys.path.insert(0, str(REPOSITORY / "tests/desktop"))
    import desktop  # noqa: PLC0415  it wants the environment at once
    return desktop


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
                end(pid)


def autossh(directory, sshd, forwardings, gate=False):
    """As the usual recipes have it. Without `gate` a first connection that ends soon counts like any other."""
    return Restarter(directory, sshd, forwardings, [AUTOSSH, "-M", "0"], {} if gate else {"AUTOSSH_GATETIME": "0"},
                     " starting ssh (")


def restart_loop(directory, sshd, forwardings, delay, limit=5):
    return Restarter(directory, sshd, forwardings, [RESTART_LOOP, str(delay), str(limit), SSH], {}, "start\n")
