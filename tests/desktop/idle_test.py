"""A program that nobody looks at and that has nothing to do does not wake the machine."""

import os
import time

from desktop import host, run_tests, read_lines, wait_until
from walk import Walk

QUIET_FOR = 35.0  # seconds; longer than anything that a toolkit puts off
# Qt draws large areas on threads of its own. When they have had nothing to do for half a minute they end, for good.
DRAWING_THREAD = "Thread (pooled)"


def wake_ups(process):
    """How often each thread has gone to sleep or was put off, by thread number; asking wakes nobody."""
    counts = {}
    for thread in os.listdir(f"/proc/{process.pid}/task"):
        fields = dict(line.split(":\t", 1) for line in read_lines(f"/proc/{process.pid}/task/{thread}/status")
                      if ":\t" in line)
        if fields["Name"] != DRAWING_THREAD:
            counts[thread] = (fields["Name"], int(fields["voluntary_ctxt_switches"]) +
                              int(fields["nonvoluntary_ctxt_switches"]))
    return counts


def does_not_wake_up(process):
    before = wake_ups(process)
    time.sleep(QUIET_FOR)
    after = wake_ups(process)
    assert before == after, f"{before} became {after}"


def turn_automatic_updates_off(desktop):
    os.makedirs(os.path.join(desktop.home, ".config"))
    with open(os.path.join(desktop.home, ".config/com.velmora.app.conf"), "w", encoding="utf-8") as file:
        file.write("[General]\nautoUpdate=false\n")


def with_every_window_closed_again_nothing_wakes_it(desktop):
    turn_automatic_updates_off(desktop)
    walk = Walk(desktop, [host("web")])
    screen = walk.screen
    for way, title in {("Tools", "PAC Editor…"): "PAC Editor", ("Tools", "Proxy Exceptions…"): "Proxy Exceptions",
                       "Settings…": "Settings", "About Velmora": "About Velmora",
                       "Add Proxy Exception…": "Add Proxy Exception"}.items():
        if isinstance(way, tuple):
            walk.tray.click("Open Main Window")
            screen.window("Velmora")
            screen.choose(walk.main, *way)
        else:
            walk.tray.click(way)
        screen.window(title)
    assert len(screen.titles()) == 6, screen.titles()
    while screen.windows():
        title = wait_until(screen.active, "one of them has the keyboard").title()
        screen.close(title)
    time.sleep(2)  # the screen is told of the last one
    does_not_wake_up(walk.program)


if __name__ == "__main__":
    run_tests(with_every_window_closed_again_nothing_wakes_it)
