#!/usr/bin/python3
"""Start to the status icon registered: velmora against a minimal Qt tray program, in turns under one panel.

usage: startup.py VELMORA MINIMAL_TRAY [ROUNDS]

Ends with 1 when the ratio of the medians is above the bar.
"""

import os
import statistics
import subprocess
import sys
import time

VELMORA, MINIMAL = sys.argv[1:3]
ROUNDS = int(sys.argv[3]) if len(sys.argv) > 3 else 40
BAR = 1.3

os.environ["VELMORA_PROGRAM"] = VELMORA
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../tests/desktop"))
sys.dont_write_bytecode = True
from desktop import Desktop, Watcher, host, wait_until  # noqa: E402


def measure(desktop, watcher, program):
    """Seconds of wall clock, and of processor time, from the launch to the icon's registration."""
    before = len(watcher.items)
    start = time.monotonic()
    process = subprocess.Popen([program], env=desktop.environment)
    wait_until(lambda: len(watcher.items) > before, "the icon registers")
    elapsed = watcher.registered_at - start
    process.kill()
    usage = os.wait4(process.pid, 0)[2]
    return elapsed, usage.ru_utime + usage.ru_stime


def main():
    programs = {"velmora": VELMORA, "minimal": MINIMAL}
    times = {name: [] for name in programs}
    with Desktop() as desktop:
        desktop.write_hosts([host(f"host {number}") for number in range(20)])
        watcher = Watcher(desktop)
        for turn in range(ROUNDS + 3):
            for name in (list(programs) if turn % 2 else list(reversed(programs))):
                result = measure(desktop, watcher, programs[name])
                if turn >= 3:  # the first ones find nothing in the caches
                    times[name].append(result)
    medians = {}
    for name, results in times.items():
        medians[name] = statistics.median(wall for wall, _ in results)
        processor = statistics.median(used for _, used in results)
        print(f"{name:8} {medians[name] * 1000:7.1f} ms   processor {processor * 1000:6.1f} ms   ({len(results)} runs)")
    ratio = medians["velmora"] / medians["minimal"]
    print(f"ratio    {ratio:7.2f}   (bar {BAR})")
    return 0 if ratio <= BAR else 1


sys.exit(main())
