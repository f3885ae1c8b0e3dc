"""Memory and wake-ups of supervising connected tunnels: one velmora against one autossh a tunnel."""

import re
import subprocess
import tempfile
import time

from . import processes, stand, supervisors

SETTLE = 12  # seconds; by then windows are painted and the first look for updates is over
TUNNELS_OF_SLOPE = 500


def measure(programs, tunnels, seconds, say):
    arms = {
        "velmora": lambda directory, *where: supervisors.Velmora(programs / "velmora", *where),
        "velmora-window": lambda directory, *where: supervisors.Velmora(programs / "velmora", *where, tray=False),
        "autossh": supervisors.autossh,
    }
    results = {"tunnels": tunnels, "seconds": seconds, "arms": {}}
    echo = stand.Echo()
    for name, start in arms.items():
        with tempfile.TemporaryDirectory(prefix="velmora-compare-") as directory:
            sshd = stand.Sshd(directory)
            supervisor = None
            try:
                forwardings = [(port, echo.port) for port in stand.free_ports(tunnels)]
                supervisor = start(directory, sshd, forwardings)
                results["arms"][name] = _watch(supervisor, forwardings, seconds)
            finally:
                if supervisor:
                    supervisor.close()
                sshd.stop()
        say(f"{name}: {results['arms'][name]}")
    echo.close()
    output = subprocess.run([programs / "supervise", str(TUNNELS_OF_SLOPE), "1"], check=True, stdout=subprocess.PIPE,
                            text=True).stdout
    results["further_tunnel_kb"] = float(re.search(r"PSS a tunnel ([0-9.]+) KB", output).group(1))
    say(f"each further tunnel of velmora, of {TUNNELS_OF_SLOPE}: {results['further_tunnel_kb']} KB")
    return results


def _watch(supervisor, forwardings, seconds):
    for port, _ in forwardings:
        if not stand.wait_until_carries(port, still=lambda: supervisor.alive(port)):
            raise RuntimeError("a tunnel does not come up")
    time.sleep(SETTLE)
    own = supervisor.pids()
    ssh = processes.ssh_below(own)
    if len(ssh) != len(forwardings):
        raise RuntimeError(f"{len(ssh)} ssh for {len(forwardings)} tunnels")
    result = {"processes": len(own),
              "pss_kb": _sum(own, "Pss"), "private_kb": _sum(own, "Private_Dirty"), "ssh_pss_kb": _sum(ssh, "Pss")}
    before = [processes.sleeps(pids) for pids in (own, ssh)]
    time.sleep(seconds)
    after = [processes.sleeps(pids) for pids in (own, ssh)]
    result["wake_ups"], result["ssh_wake_ups"] = map(processes.wake_ups, before, after)
    if set(ssh) != set(processes.ssh_below(own)):
        raise RuntimeError("a tunnel broke while it was watched")
    return result


def _sum(pids, kind):
    return sum(processes.memory(pid, kind) for pid in pids)
