"""One instance, and every way to end it."""

import os
import shutil
import signal
import stat
import time

from desktop import (PROGRAM, Item, Watcher, host, read_lines, refusing_host, run_tests, runs, ssh_children, ssh_pids,
                     stays, wait_until)


def started(desktop, hosts):
    desktop.write_hosts(hosts)
    watcher = Watcher(desktop)
    program = desktop.start_program()
    return program, Item(desktop, watcher.wait_for_item()), watcher


def a_second_launch_opens_the_window_of_the_first_and_ends(desktop):
    program, _, watcher = started(desktop, [])
    assert not desktop.windows()
    for _ in range(2):
        second = desktop.start_program()
        assert second.wait(5) == 0
        window = wait_until(desktop.windows, "the window opens")
        assert len(window) == 1
    assert program.poll() is None
    assert len(watcher.items) == 1


def a_second_launch_needs_no_display(desktop):
    started(desktop, [])
    display = desktop.environment.pop("DISPLAY")
    second = desktop.start_program()
    desktop.environment["DISPLAY"] = display
    assert second.wait(5) == 0
    wait_until(desktop.windows, "the window opens")


def of_many_launches_at_once_one_runs(desktop):
    watcher = Watcher(desktop)
    programs = [desktop.start_program() for _ in range(6)]
    wait_until(lambda: [program.poll() for program in programs].count(0) == 5, "five end")
    watcher.wait_for_item()
    wait_until(desktop.windows, "the window opens")
    assert [program.poll() for program in programs].count(None) == 1
    assert len(watcher.items) == 1


def another_home_is_another_instance(desktop):
    started(desktop, [])
    home = desktop.environment["HOME"]
    desktop.environment["HOME"] = os.path.join(home, "other")
    other = desktop.start_program()
    desktop.environment["HOME"] = home
    stays(lambda: other.poll() is None, "it runs")


def a_crash_leaves_nothing_in_the_way(desktop):
    program, _, watcher = started(desktop, [])
    program.kill()
    program.wait()
    again = desktop.start_program()
    wait_until(lambda: len(watcher.items) == 2, "the next one starts")
    assert again.poll() is None


def a_home_with_a_very_long_path(desktop):
    desktop.environment["HOME"] = os.path.join(desktop.home, "long" * 50)
    watcher = Watcher(desktop)
    first = desktop.start_program()
    watcher.wait_for_item()
    assert desktop.start_program().wait(5) == 0
    wait_until(desktop.windows, "the window opens")
    assert first.poll() is None


def what_the_program_makes_is_private(desktop):
    started(desktop, [])
    os.umask(0)
    directory = os.path.join(desktop.home, ".local/share/Velmora")
    for name in os.listdir(directory):
        if name != "hosts.json":
            mode = stat.S_IMODE(os.stat(os.path.join(directory, name)).st_mode)
            assert mode == 0o600, f"{name} has mode {mode:o}"


def ends_at_once(desktop, number):
    program, item, _ = started(desktop, [host("web"), host("db")])
    item.click("Connect All")
    wait_until(lambda: len(ssh_children(program)) == 2, "both run")
    pids = desktop.run("pgrep", "-P", str(program.pid), "ssh").split()
    program.send_signal(number)
    assert program.wait(1) == 0
    wait_until(lambda: not any(runs(pid) for pid in pids), "every ssh has ended", timeout=2)


def a_standard_error_that_nobody_reads_does_not_end_it(desktop):
    program, _, _ = started(desktop, [])
    with open(f"/proc/{program.pid}/status", encoding="ascii") as status:
        ignored = next(int(line.split()[1], 16) for line in status if line.startswith("SigIgn:"))
    assert ignored & 1 << signal.SIGPIPE - 1


def sigterm_ends_it_in_order(desktop):
    ends_at_once(desktop, signal.SIGTERM)


def sigint_ends_it_in_order(desktop):
    ends_at_once(desktop, signal.SIGINT)


def sighup_ends_it_in_order(desktop):
    ends_at_once(desktop, signal.SIGHUP)


def ignore_and_block():
    signal.signal(signal.SIGCHLD, signal.SIG_IGN)
    signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGTERM, signal.SIGINT, signal.SIGHUP})


def what_it_was_started_with_ignored_and_blocked_changes_nothing(desktop):
    desktop.program_options["preexec_fn"] = ignore_and_block
    program, item, _ = started(desktop, [host("web"), refusing_host("refused")])
    item.click("Connect All")
    log = os.path.join(desktop.home, ".local/state/Logs/Velmora/refused.log")
    wait_until(lambda: "[exit 255]" in read_lines(log), "it learns how one ended")
    pids = ssh_pids(program)
    assert pids
    item.click("Disconnect All")
    wait_until(lambda: not any(runs(pid) for pid in pids), "the other has ended")
    program.terminate()
    assert program.wait(5) == 0


def closing_the_window_does_not_end_it(desktop):
    program, item, _ = started(desktop, [])
    item.click("Open Main Window")
    window = wait_until(desktop.windows, "the window opens")
    manager = desktop.start("openbox", stderr=-3)
    wait_until(lambda: "openbox" in desktop.run("sh", "-c", "xprop -root _NET_SUPPORTING_WM_CHECK | "
               "sed 's/.*# //' | xargs -I{} xprop -id {} _NET_WM_NAME 2>/dev/null || true").lower(), "openbox runs")
    assert manager.poll() is None

    def closed():
        # Again and again: a window manager that has just come takes over the windows that are there one by one.
        if desktop.windows():
            desktop.run("sh", "-c", f"timeout 2 xdotool windowactivate --sync {window[0]} key alt+F4 || true")
            time.sleep(0.2)
        return not desktop.windows()

    wait_until(closed, "the window closes")
    stays(lambda: program.poll() is None, "the program runs on")
    item.click("Open Main Window")
    wait_until(desktop.windows, "the window opens again")


def ctrl_q_in_the_window_ends_it(desktop):
    program, item, _ = started(desktop, [])
    item.click("Open Main Window")
    window = wait_until(desktop.windows, "the window opens")
    desktop.run("xdotool", "windowfocus", "--sync", window[0], "key", "ctrl+q")
    assert program.wait(5) == 0


def the_network_and_the_keyring_are_loaded_when_they_are_needed(desktop):
    def loaded(library):
        with open(f"/proc/{program.pid}/maps", encoding="utf-8") as file:
            return library in file.read()

    program, item, _ = started(desktop, [host("web", authMethod="Password")])
    item.click("Open Main Window")
    wait_until(desktop.windows, "the window opens")
    for library in ("lib/velmora/", "libsecret", "libQt6Network"):
        assert not loaded(library), library
    item.click("Connect All")
    wait_until(lambda: loaded("lib/velmora/keyring.so"), "a connect asks the keyring")
    wait_until(lambda: ssh_children(program), "and goes on")
    wait_until(lambda: loaded("lib/velmora/network.so"), "the first look for updates needs the network")
    stays(lambda: program.poll() is None, "the program runs on")


def without_its_libraries_it_keeps_tunnels_all_the_same(desktop):
    desktop.write_hosts([host("web", authMethod="Password", connectOnStartup=True)])
    alone = os.path.join(desktop.home, "velmora")
    shutil.copy(PROGRAM, alone)
    watcher = Watcher(desktop)
    log = os.path.join(desktop.home, "log")
    with open(log, "wb") as file:
        program = desktop.start(alone, stderr=file)
    watcher.wait_for_item()
    wait_until(lambda: ssh_children(program), "its tunnel starts")

    def complaints():
        with open(log, encoding="utf-8") as file:
            return [line for line in file if "cannot be loaded" in line]

    wait_until(lambda: len(complaints()) == 2, "the first look for updates fails, too")
    assert "keyring.so: No such file" in complaints()[0] and "network.so: No such file" in complaints()[1], complaints()
    stays(lambda: ssh_children(program), "the tunnel stays")
    program.terminate()
    assert program.wait(5) == 0


if __name__ == "__main__":
    run_tests(
        a_second_launch_opens_the_window_of_the_first_and_ends,
        a_second_launch_needs_no_display,
        of_many_launches_at_once_one_runs,
        another_home_is_another_instance,
        a_crash_leaves_nothing_in_the_way,
        a_home_with_a_very_long_path,
        what_the_program_makes_is_private,
        a_standard_error_that_nobody_reads_does_not_end_it,
        sigterm_ends_it_in_order,
        sigint_ends_it_in_order,
        sighup_ends_it_in_order,
        what_it_was_started_with_ignored_and_blocked_changes_nothing,
        closing_the_window_does_not_end_it,
        ctrl_q_in_the_window_ends_it,
        the_network_and_the_keyring_are_loaded_when_they_are_needed,
        without_its_libraries_it_keeps_tunnels_all_the_same,
    )
