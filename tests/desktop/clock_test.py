"""Somebody sets the clock, or the machine sleeps, under the real program with a real ssh and a real server."""

import datetime
import glob
import os
import signal

from desktop import host, run_tests, ssh_pids, wait_until
from servers import Sshd
from walk import Walk

DAY = 24 * 60 * 60  # seconds
FIRST_DELAY = 5.0  # seconds before a tunnel that dropped is tried again


class Clock:
    """The time of day of what is started afterwards. The time since the start of the machine stays what it is."""

    def __init__(self, desktop):
        self._file = os.path.join(desktop.home, "clock")
        self.set(0)
        [library] = glob.glob("/usr/lib/*/faketime/libfaketime.so.1")
        desktop.environment |= {"LD_PRELOAD": library, "FAKETIME_TIMESTAMP_FILE": self._file, "FAKETIME_NO_CACHE": "1",
                                "FAKETIME_DONT_FAKE_MONOTONIC": "1", "FAKETIME_DONT_RESET": "1"}

    def set(self, ahead):
        with open(self._file + ".new", "w", encoding="utf-8") as file:
            file.write(f"{ahead:+d}\n")
        os.replace(self._file + ".new", self._file)


def connected(walk):
    return "1 connected" in walk.tray.property("ToolTip")[2]


def connected_host(desktop):
    """A walk with one tunnel that is up, and the pid of its ssh."""
    sshd = Sshd(desktop, "server", {})
    hosts = [host("web", port=sshd.port, username=sshd.user, identityFile=sshd.user_key, customOptions="",
                  strictHostKeyChecking=False)]
    clock = Clock(desktop)
    walk = Walk(desktop, hosts)
    walk.tray.click("web")
    wait_until(lambda: connected(walk), "the tunnel is up")
    [ssh] = ssh_pids(walk.program)
    return clock, walk, ssh


def shown(walk):
    return walk.row("web").name


def another_ssh(walk, before):
    return wait_until(lambda: [pid for pid in ssh_pids(walk.program) if pid != before],
                      "ssh runs again", FIRST_DELAY + 20)[0]


def a_clock_that_jumps_touches_no_tunnel(desktop):
    clock, walk, ssh = connected_host(desktop)
    wait_until(lambda: shown(walk) == "web, Connected · < 1m", "the row says so")
    for ahead in (DAY, -DAY, 0):
        clock.set(ahead)
        walk.tray.click("Open Main Window")
        assert connected(walk)
        assert ssh_pids(walk.program) == [ssh]

    os.kill(ssh, signal.SIGKILL)
    wait_until(lambda: "Reconnecting in 5s" in shown(walk), "it waits")
    clock.set(-DAY)  # which would be a day's wait if it counted
    again = another_ssh(walk, ssh)
    day_before = (datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(days=1)).date().isoformat()
    with open(os.path.join(desktop.home, ".local/state/Logs/Velmora/web.log"), encoding="utf-8") as log:
        assert any(line.startswith(f"[{day_before}") for line in log), "the clock was not set for the program"
    clock.set(DAY)  # and no seconds of survival
    wait_until(lambda: connected(walk), "the tunnel is up again")
    assert ssh_pids(walk.program) == [again]


def a_program_that_slept_brings_back_what_went_away_meanwhile(desktop):
    _, walk, ssh = connected_host(desktop)
    os.kill(walk.program.pid, signal.SIGSTOP)
    os.kill(ssh, signal.SIGKILL)
    os.kill(walk.program.pid, signal.SIGCONT)
    another_ssh(walk, ssh)
    wait_until(lambda: connected(walk), "the tunnel is up again")


if __name__ == "__main__":
    run_tests(a_clock_that_jumps_touches_no_tunnel, a_program_that_slept_brings_back_what_went_away_meanwhile)
