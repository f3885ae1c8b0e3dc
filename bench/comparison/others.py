"""What the benchmarks beside measure already: their programs are run, and their reports read."""

import re
import subprocess

from .supervisors import BENCH

PYTHON = "/usr/bin/python3"  # the one that has the system's bindings


def _report(script, *arguments, may_be=(0,)):
    done = subprocess.run([PYTHON, BENCH / script, *map(str, arguments)], stdout=subprocess.PIPE, text=True,
                          check=False)
    if done.returncode not in may_be:
        raise RuntimeError(f"{script} ended with status {done.returncode}")
    return done.stdout


def _found(pattern, report):
    match = re.search(pattern, report, re.MULTILINE)
    if not match:
        raise RuntimeError(f"nothing like {pattern!r} in this report:\n{report}")
    return match.groups()


def pac(programs, rounds, requests, say):
    report = _report("pac_server.py", programs, rounds, requests)
    say(report)
    servers = {}
    for name in ("velmora", "nginx-file", "nginx-memory", "nginx-multi"):
        rate, cost = _found(rf"^{name} +([0-9.]+) requests/s +([0-9.]+) us/request", report)
        servers[name] = {"rate": float(rate), "cost_us": float(cost)}
        if name != "velmora":
            rate, cost = _found(rf"^{name} .*ours: rate x([0-9.]+), processor time x([0-9.]+)", report)
            servers[name].update({"ours_rate": float(rate), "ours_cost": float(cost)})
    idle, beside, without, pss = _found(
        r"^with (\d+) idle connections (\d+) requests/s, without (\d+)[^\n]*\n.*PSS \+(-?\d+) kB", report)
    size, = _found(r"(\d+) bytes$", report)
    return {"rounds": rounds, "requests": requests, "bytes": int(size), "servers": servers, "idle": int(idle),
            "rate_beside_idle": int(beside), "rate_without_idle": int(without), "idle_pss_kb": int(pss)}


def startup(programs, rounds, say):
    # Status 1 only says that a ratio is above the bar of the benchmark.
    report = _report("startup.py", programs / "velmora", programs / "minimal_tray", rounds, may_be=(0, 1))
    say(report)
    tray = {}
    for name in ("velmora", "minimal"):
        wall, processor = _found(rf"^{name} +([0-9.]+) ms +processor +([0-9.]+) ms", report)
        tray[name] = {"ms": float(wall), "processor_ms": float(processor)}
    report = _report("window.py", programs / "velmora", programs / "minimal_window", rounds, may_be=(0, 1))
    say(report)
    window = {}
    for name in ("velmora", "minimal"):
        took, = _found(rf"^start +{name} +([0-9.]+) ms", report)
        memory, = _found(rf"^memory +{name} +([0-9.]+) MB", report)
        window[name] = {"ms": float(took), "mb": float(memory)}
    return {"rounds": rounds, "tray": tray, "window": window}
