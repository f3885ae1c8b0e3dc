#!/usr/bin/python3
"""Start to the main window mapped, and memory with it open, with 1,000 hosts: velmora against a minimal Qt window with
a list of 1,000 rows, in turns on one display.

usage: window.py VELMORA MINIMAL_WINDOW [ROUNDS]

Ends with 1 when a ratio of the medians is above its bar.
"""

import ctypes
import ctypes.util
import os
import select
import statistics
import subprocess
import sys
import time

VELMORA, MINIMAL = sys.argv[1:3]
ROUNDS = int(sys.argv[3]) if len(sys.argv) > 3 else 30
TIME_BAR = 1.4
MEMORY_BAR = 1.5
SMALLEST_WINDOW = 200  # pixels; what a toolkit maps besides is smaller

os.environ["VELMORA_PROGRAM"] = VELMORA
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../tests/desktop"))
sys.dont_write_bytecode = True
from desktop import Desktop, PATIENCE, host  # noqa: E402


class Display:
    """Sees windows being mapped on the screen of a display."""

    SUBSTRUCTURE_NOTIFY = 1 << 19
    MAP_NOTIFY = 19

    def __init__(self, name):
        self._x = ctypes.CDLL(ctypes.util.find_library("X11"))
        self._x.XOpenDisplay.restype = ctypes.c_void_p
        self._display = ctypes.c_void_p(self._x.XOpenDisplay(name.encode()))
        self._x.XDefaultRootWindow.restype = ctypes.c_ulong
        root = ctypes.c_ulong(self._x.XDefaultRootWindow(self._display))
        self._x.XSelectInput(self._display, root, ctypes.c_long(self.SUBSTRUCTURE_NOTIFY))
        self._x.XSync(self._display, 0)
        self._event = (ctypes.c_ulong * 24)()  # type, serial, send_event, display, parent, window, …

    def forget(self):
        self._x.XSync(self._display, 1)

    def wait_for_window(self):
        """The moment at which a window of some size is mapped."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            if not self._x.XPending(self._display):
                select.select([self._x.XConnectionNumber(self._display)], [], [], 1)
                continue
            self._x.XNextEvent(self._display, self._event)
            if self._event[0] & 0xFFFFFFFF == self.MAP_NOTIFY:
                now = time.monotonic()
                if self._width(self._event[5]) >= SMALLEST_WINDOW:
                    return now
        raise AssertionError("no window is mapped")

    def _width(self, window):
        root, x, y = ctypes.c_ulong(), ctypes.c_int(), ctypes.c_int()
        width, height, border, depth = ctypes.c_uint(), ctypes.c_uint(), ctypes.c_uint(), ctypes.c_uint()
        found = self._x.XGetGeometry(self._display, ctypes.c_ulong(window), *map(ctypes.byref, (
            root, x, y, width, height, border, depth)))
        return width.value if found else 0


def proportional_set(pid):
    """Kilobytes."""
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        return next(int(line.split()[1]) for line in file if line.startswith("Pss:"))


def settled_memory(pid):
    """Once it stays the same: the window is painted by then."""
    last = -1
    while True:
        time.sleep(0.25)
        now = proportional_set(pid)
        if abs(now - last) <= 8:
            return now
        last = now


def measure(desktop, display, program):
    """Seconds from the launch to the window, and kilobytes with the window open."""
    display.forget()
    start = time.monotonic()
    process = subprocess.Popen([program], env=desktop.environment)
    try:
        elapsed = display.wait_for_window() - start
        return elapsed, settled_memory(process.pid)
    finally:
        process.kill()
        process.wait()


def report(what, unit, results, bar):
    medians = {name: statistics.median(values) for name, values in results.items()}
    for name, values in results.items():
        print(f"{what:6} {name:8} {medians[name]:8.1f} {unit}   ({len(values)} runs, "
              f"{min(values):.1f} to {max(values):.1f})")
    ratio = medians["velmora"] / medians["minimal"]
    print(f"{what:6} ratio    {ratio:8.2f}   (bar {bar})")
    return ratio <= bar


def main():
    programs = {"velmora": VELMORA, "minimal": MINIMAL}
    times = {name: [] for name in programs}
    memory = {name: [] for name in programs}
    with Desktop() as desktop:
        desktop.write_hosts([host(f"host {number}") for number in range(1000)])
        display = Display(desktop.environment["DISPLAY"])
        for turn in range(ROUNDS + 2):
            for name in (list(programs) if turn % 2 else list(reversed(programs))):
                elapsed, kilobytes = measure(desktop, display, programs[name])
                if turn >= 2:  # the first ones find nothing in the caches
                    times[name].append(elapsed * 1000)
                    memory[name].append(kilobytes / 1024)
    held = [report("start", "ms", times, TIME_BAR), report("memory", "MB", memory, MEMORY_BAR)]
    return 0 if all(held) else 1


sys.exit(main())
