"""What an update of 200 MB costs the program that runs: memory above idle, and how long its main thread is busy.

    VELMORA_PROGRAM=… VELMORA_SELF_INSTALLER=… bench/update.py [MEGABYTES]

The two programs come from a build with the tests.
"""

import os
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "../tests/desktop"))
os.environ.setdefault("VELMORA_PACKAGING", os.path.join(HERE, "../packaging/linux"))

from desktop import Desktop, Watcher, wait_until  # noqa: E402
from update_test import Process, Release  # noqa: E402


def memory(pid, name):
    """In MB; nothing when the process has gone."""
    try:
        with open(f"/proc/{pid}/status", encoding="utf-8") as file:
            for line in file:
                if line.startswith(name + ":"):
                    return int(line.split()[1]) / 1024
    except OSError:
        pass
    return None


def main():
    megabytes = int(sys.argv[1]) if len(sys.argv) > 1 else 200
    with Desktop() as desktop:
        release = Release(desktop, ballast=megabytes)
        desktop.environment["VELMORA_TEST_INSTALL_DELAY"] = "3000"
        watcher = Watcher(desktop)
        program = desktop.start(release.program)
        watcher.wait_for_item()
        time.sleep(3)  # before the first check
        idle = memory(program.pid, "VmRSS")
        peak = idle
        begin = None
        while program.poll() is None:
            peak = max(peak, memory(program.pid, "VmHWM") or 0)
            if begin is None and any(line.startswith("Downloading") for line in release.noted("status")):
                begin = time.monotonic()
            time.sleep(0.01)
        end = time.monotonic()
        Process(wait_until(release.running, "the new program runs")).end()
        assert release.version() == "2.0", release.noted("error")

        size = os.path.getsize(os.path.join(release.served, "Velmora-2.0.zip")) / (1 << 20)
        print(f"archive             {size:8.1f} MB, from a server on this machine")
        print(f"download to restart {end - begin:8.1f} s")
        print(f"memory when idle    {idle:8.1f} MB")
        print(f"peak above idle     {peak - idle:8.1f} MB")
        for line in release.noted("blocked"):
            phase, milliseconds = line.rsplit(" ", 1)
            print(f"main thread blocked {float(milliseconds):8.2f} ms at the longest: {phase}")


main()
