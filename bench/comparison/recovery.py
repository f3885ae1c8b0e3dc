"""How long a tunnel carries nothing after its connection was cut: velmora, autossh, and loops as in units of systemd.

All have the same sshd and start ssh with the same arguments. A cut kills sshd's process of that connection, so that
each ssh sees its connection closed at that moment.
"""

import contextlib
import subprocess
import tempfile
import threading
import time

from . import processes, stand, supervisors

BETWEEN = 4  # seconds from carrying bytes again to the next cut; a tunnel of Velmora's counts as connected after three
LONG = 75  # seconds; who is not back by then is not waited for
SETTLED = 65  # seconds; a connection that lasted a minute counts as a good one with autossh
ALONE = 5

PEERS = {
    "velmora": lambda programs, directory, *where: supervisors.Velmora(programs / "velmora", *where),
    "autossh": lambda programs, *where: supervisors.autossh(*where),
    "loop-100ms": lambda programs, *where: supervisors.restart_loop(*where, 0.1),
    "loop-100ms-unlimited": lambda programs, *where: supervisors.restart_loop(*where, 0.1, limit=0),
    "loop-5s": lambda programs, *where: supervisors.restart_loop(*where, 5),
}
CUT_ONE_BY_ONE = ("velmora", "autossh", "loop-100ms", "loop-5s")  # the start limit makes no difference there


def measure(programs, cuts, away, say):
    with contextlib.ExitStack() as stack:
        directory = stack.enter_context(tempfile.TemporaryDirectory(prefix="velmora-compare-"))
        echo = stand.Echo()
        stack.callback(echo.close)
        sshd = stand.Sshd(directory)
        stack.callback(sshd.stop)
        results = {"alone": [_alone(sshd, echo) for _ in range(ALONE)], "away_seconds": away}
        say(f"ssh alone: {_text(results['alone'])}")
        results["gate_ends_autossh"] = _ends_at_the_gate(directory, sshd, echo)
        say(f"autossh ends when its first connection is cut soon: {results['gate_ends_autossh']}")

        # Each keeps two tunnels: one is cut again and again, the other has been up for a while when the server goes
        # away.
        busy, quiet = {}, {}
        for name, start in PEERS.items():
            ports = stand.free_ports(2)
            peer = start(programs, directory, sshd, [(port, echo.port) for port in ports])
            stack.callback(peer.close)
            busy[name], quiet[name] = (Tunnel(peer, port, sshd) for port in ports)
        for name, tunnel in [*busy.items(), *quiet.items()]:
            if not tunnel.wait():
                raise RuntimeError(f"the tunnel of {name} does not come up")
        settled = time.monotonic() + SETTLED
        results["cuts"] = _at_once({name: busy[name] for name in CUT_ONE_BY_ONE}, lambda tunnel: tunnel.cut_often(cuts))
        for name, times in results["cuts"].items():
            say(f"{name}: back after {_text(times)}")
        time.sleep(max(0, settled - time.monotonic()))
        results["away"] = _go_away(sshd, quiet, away)
        for name, result in results["away"].items():
            say(f"{name}, sshd away for {away} s: {result}")
        return results


def _text(times):
    return " ".join("never" if each is None else f"{each:.2f}" for each in times)


class Tunnel:
    def __init__(self, peer, port, sshd):
        self.peer, self.port, self._sshd = peer, port, sshd

    def wait(self, timeout=LONG):
        return stand.wait_until_carries(self.port, timeout, lambda: self.peer.alive(self.port))

    def cut_often(self, cuts):
        times = []
        for _ in range(cuts):
            time.sleep(BETWEEN)
            moment = self._sshd.cut(processes.ssh_of(self.peer.pids(), self.port))
            back = self.wait()
            times.append(back and back - moment)
            if not back:
                break
        return times


def _at_once(tunnels, action):
    """Name to what the action returned, side by side."""
    results, broken = {}, []

    def run(name, tunnel):
        try:
            results[name] = action(tunnel)
        except Exception as error:  # noqa: BLE001  told below
            broken.append(f"{name}: {error}")

    threads = [threading.Thread(target=run, args=each) for each in tunnels.items()]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    if broken:
        raise RuntimeError("; ".join(broken))
    return {name: results[name] for name in tunnels}


def _go_away(sshd, tunnels, away):
    before = {name: tunnel.peer.starts(tunnel.port) for name, tunnel in tunnels.items()}
    sshd.stop()
    time.sleep(away)
    sshd.start()
    returned = time.monotonic()
    back = _at_once(tunnels, lambda tunnel: tunnel.wait())
    return {name: {"back": back[name] and back[name] - returned,
                   "starts": tunnel.peer.starts(tunnel.port) - before[name]} for name, tunnel in tunnels.items()}


def _alone(sshd, echo):
    port = stand.free_ports(1)[0]
    start = time.monotonic()
    command = [supervisors.SSH, *supervisors.ssh_arguments(sshd, [(port, echo.port)])]
    with subprocess.Popen(command, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
        back = stand.wait_until_carries(port)
        process.kill()
    return back - start


def _ends_at_the_gate(directory, sshd, echo):
    port = stand.free_ports(1)[0]
    peer = supervisors.autossh(directory, sshd, [(port, echo.port)], gate=True)
    try:
        tunnel = Tunnel(peer, port, sshd)
        if not tunnel.wait():
            raise RuntimeError("the tunnel of autossh does not come up")
        return tunnel.cut_often(1) == [None]
    finally:
        peer.close()
