"""What the desktop does to the program: bus, display, panel and keyring go and come, and the user logs out."""

import glob
import os
import signal
import subprocess

from desktop import (Item, Watcher, descriptors, host, read_lines, run_tests, runs, ssh_children, ssh_pids, stays,
                     wait_until)
from screen import Keyring, Screen
from session_manager import SessionManager
from walk import Walk


def connected(desktop, hosts, watcher=None):
    """The program with all of these running, and its icon."""
    desktop.write_hosts(hosts)
    watcher = watcher or Watcher(desktop)
    icons = len(watcher.items)
    program = desktop.start_program()
    wait_until(lambda: len(watcher.items) > icons, "the icon registers")
    item = Item(desktop, watcher.wait_for_item())
    item.click("Connect All")
    wait_until(lambda: len(ssh_pids(program)) == len(hosts), "all run")
    return program, item


def end(process, number=signal.SIGKILL):
    process.send_signal(number)
    process.wait()


def scripts(desktop):
    return glob.glob(os.path.join(desktop.runtime, "velmora-askpass-*"))


def keep_password(desktop, host_id, password):
    subprocess.run(["secret-tool", "store", "--label=Velmora", "service", "com.velmora.app", "account", host_id],
                   env=desktop.environment, input=password, text=True, check=True)


# The session bus


def without_a_session_bus_the_main_window_opens(desktop):
    """The user sees the main window; there is no icon, and tunnels run."""
    desktop.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={desktop.home}/no-bus"
    desktop.write_hosts([host("web", connectOnStartup=True)])
    program = desktop.start_program()
    wait_until(desktop.windows, "the main window opens")
    wait_until(lambda: ssh_children(program), "the tunnel runs")
    program.terminate()
    assert program.wait(5) == 0


def a_session_bus_that_goes_takes_no_tunnel_with_it(desktop):
    """The icon is gone with the panel that showed it. Whoever starts the program again gets the main window."""
    program, _ = connected(desktop, [host("web"), host("db")])
    running = ssh_pids(program)
    end(desktop.bus)
    stays(lambda: program.poll() is None, "the program runs on")
    assert ssh_pids(program) == running, "so do the tunnels"
    assert desktop.start_program().wait(10) == 0
    wait_until(desktop.windows, "the window opens")
    program.terminate()
    assert program.wait(5) == 0
    wait_until(lambda: not any(runs(pid) for pid in running), "every ssh has ended")


def a_session_bus_that_comes_back_brings_the_keyring_back(desktop):
    """Passwords are there again; for the icon the program has to be started anew, until then there is the window."""
    profile = host("web", authMethod="Password")
    keyring = Keyring(desktop)
    keep_password(desktop, profile["id"], "secret")
    program, item = connected(desktop, [profile])
    wait_until(lambda: scripts(desktop), "ssh has a script")
    end(desktop.bus)
    keyring.wait_for_end()
    stays(lambda: program.poll() is None, "the program runs on")
    desktop.start_bus()
    Keyring(desktop)
    for pid in ssh_pids(program):
        os.kill(pid, signal.SIGKILL)
    wait_until(lambda: not scripts(desktop), "the script goes with its ssh")
    wait_until(lambda: scripts(desktop), "the next one has the password")


# The keyring


def a_keyring_that_goes_and_comes_back_is_used_again(desktop):
    """While it is gone a tunnel runs without the password, and ssh says what it thinks of that; the field in the editor
    is empty. Afterwards all is as before."""
    profile = host("web", authMethod="Password")
    keyring = Keyring(desktop)
    keep_password(desktop, profile["id"], "secret")
    program, item = connected(desktop, [profile])
    assert len(scripts(desktop)) == 1
    item.click("Disconnect All")
    wait_until(lambda: not scripts(desktop) and not ssh_pids(program), "it is stopped")

    end(keyring.daemon)
    item.click("Connect All")
    wait_until(lambda: ssh_pids(program), "it runs")
    assert not scripts(desktop), "without a password"
    item.click("Disconnect All")
    wait_until(lambda: not ssh_pids(program), "it is stopped")

    Keyring(desktop)
    assert keyring.password(profile["id"]) == "secret"
    item.click("Connect All")
    wait_until(lambda: ssh_pids(program), "it runs")
    assert len(scripts(desktop)) == 1, "with the password"


# The display


def a_display_that_goes_ends_the_program_in_order(desktop):
    """All windows of the user's are gone, and so is the program, with every tunnel and every password. On the next
    display it starts as ever."""
    hosts = [host("web", authMethod="Password"), host("db")]
    Keyring(desktop)
    keep_password(desktop, hosts[0]["id"], "secret")
    watcher = Watcher(desktop)
    program, item = connected(desktop, hosts, watcher)
    running = ssh_pids(program)
    assert len(scripts(desktop)) == 1
    before = desktop.saved_hosts()
    end(desktop.display)
    assert program.wait(10) == 1
    assert not scripts(desktop), "no password is left behind"
    wait_until(lambda: not any(runs(pid) for pid in running), "every ssh has ended", timeout=3)
    assert desktop.saved_hosts() == before

    desktop.start_display()
    program, item = connected(desktop, before, watcher)
    assert "web" in item.texts()


# The panel


def a_panel_that_restarts_again_and_again_costs_nothing(desktop):
    """Each time the icon is there again."""
    desktop.write_hosts([host("web")])
    watcher = Watcher(desktop)
    program = desktop.start_program()
    watcher.wait_for_item()
    counts = []
    for _ in range(20):
        watcher.stop()
        watcher = Watcher(desktop)
        assert "web" in Item(desktop, watcher.wait_for_item()).texts()
        counts.append(descriptors(program))
    assert counts[-1] < counts[0] + 10, counts


def a_panel_that_goes_for_good_leaves_the_second_launch(desktop):
    """No icon any more. Whoever starts the program again gets the main window."""
    watcher = Watcher(desktop)
    program = desktop.start_program()
    watcher.wait_for_item()
    watcher.stop()
    stays(lambda: program.poll() is None, "the program runs on")
    assert desktop.start_program().wait(10) == 0
    wait_until(desktop.windows, "the window opens")


# Launches


def of_a_hundred_launches_one_process_remains(desktop):
    """The window of the first comes to the front each time; nothing else happens."""
    watcher = Watcher(desktop)
    screen = Screen(desktop)
    first = desktop.start_program()
    item = Item(desktop, watcher.wait_for_item())
    assert desktop.start_program().wait(10) == 0
    screen.window("Velmora")
    item.click("About Velmora")
    screen.window("About Velmora")
    before = descriptors(first)
    for _ in range(100):
        later = desktop.start_program()
        assert later.wait(10) == 0
        desktop.processes.remove(later)
    screen.window("Velmora")  # the keys go to it, not to the one in front of it
    assert screen.titles() == ["About Velmora", "Velmora"]
    assert first.poll() is None
    assert len(watcher.items) == 1, "one icon"
    # Qt's drawing threads come with a few and take them along when they go.
    assert descriptors(first) < before + 10, "a hundred launches leave no descriptors"


def a_launch_while_a_dialog_is_open_keeps_the_dialog(desktop):
    """The dialog stays, and so does what was typed."""
    walk = Walk(desktop, [host("web")])
    walk.screen.choose(walk.main, "File", "New Tunnel")
    sheet = walk.screen.window("New Tunnel")
    walk.screen.fill(sheet.find("Host", "text"), "db.example.com")
    assert desktop.start_program().wait(10) == 0
    stays(lambda: walk.screen.titles() == ["New Tunnel", "Velmora"], "both are there")
    assert sheet.find("Host", "text").text == "db.example.com"


# The end of the session


def ends_with_a_dialog_open(desktop, opened, leave=lambda program: program.terminate()):
    """The dialog goes with the program, unanswered."""
    walk = Walk(desktop, [host("web", connectOnStartup=True)])
    wait_until(lambda: len(ssh_pids(walk.program)) == 1, "the tunnel runs")
    running = ssh_pids(walk.program)
    before = desktop.saved_hosts()
    opened(walk)
    leave(walk.program)
    assert walk.program.wait(2) == 0
    wait_until(lambda: not any(runs(pid) for pid in running), "every ssh has ended", timeout=3)
    assert desktop.saved_hosts() == before


def file_dialog(walk):
    walk.screen.choose(walk.main, "File", "Export Tunnels…")
    walk.screen.window("Export Velmora Hosts")


def question(walk):
    walk.screen.key("ctrl+f", "Down", "Delete")
    walk.screen.window_that_says("Delete Tunnel")


def sheet(walk):
    walk.screen.choose(walk.main, "File", "New Tunnel")
    walk.screen.window("New Tunnel")


def menu(walk):
    top = walk.main.find("File", "menu item")
    walk.screen.click(top)
    wait_until(lambda: any(node.name == "New Tunnel" for node in top.children[0].walk()), "the menu opens")


def a_log_out_ends_it_while_a_file_dialog_is_open(desktop):
    ends_with_a_dialog_open(desktop, file_dialog)


def a_log_out_ends_it_while_a_question_is_open(desktop):
    ends_with_a_dialog_open(desktop, question)


def a_log_out_ends_it_while_the_sheet_is_open(desktop):
    ends_with_a_dialog_open(desktop, sheet)


def a_log_out_ends_it_while_a_menu_is_open(desktop):
    ends_with_a_dialog_open(desktop, menu)


def silent_prompter(desktop):
    """Stands where the desktop would ask for the keyring's password, and never answers."""
    program = ("import os, signal; from gi.repository import Gio, GLib; bus = Gio.bus_get_sync(Gio.BusType.SESSION);"
               "bus.call_sync('org.freedesktop.DBus', '/org/freedesktop/DBus', 'org.freedesktop.DBus', 'RequestName',"
               "GLib.Variant('(su)', ('org.gnome.keyring.SystemPrompter', 4)), None, 0, -1, None);"
               "os.kill(os.getpid(), signal.SIGSTOP)")
    prompter = desktop.start("/usr/bin/python3", "-c", program)
    wait_until(lambda: state(prompter.pid) == "T", "the prompter is there")
    return prompter


def state(pid):
    for line in read_lines(f"/proc/{pid}/stat"):
        return line.rsplit(")", 1)[1].split()[0]
    return None


def a_log_out_ends_it_while_the_keyring_asks_for_its_password(desktop):
    """A tunnel with a password runs without it until the user has answered. The question goes with the session."""
    profile = host("web", authMethod="Password")
    keyring = Keyring(desktop)
    keep_password(desktop, profile["id"], "secret")
    keyring.lock()
    prompter = silent_prompter(desktop)
    heard = os.path.join(desktop.home, "bus")
    with open(heard, "wb") as file:
        desktop.start("dbus-monitor", "--session", stdout=file, stderr=subprocess.DEVNULL)
    wait_until(lambda: read_lines(heard), "the bus is listened to")
    try:
        program, _ = connected(desktop, [profile])
        running = ssh_pids(program)
        assert not scripts(desktop), "the keyring is locked"
        wait_until(lambda: any("member=BeginPrompting" in line for line in read_lines(heard)), "the user is asked")
        program.terminate()
        assert program.wait(2) == 0
        wait_until(lambda: not any(runs(pid) for pid in running), "every ssh has ended", timeout=3)
    finally:
        prompter.send_signal(signal.SIGCONT)


def a_session_manager_ends_it_in_order(desktop):
    """Nothing is asked, and nothing is started again by the session at the next log-in."""
    with SessionManager(desktop) as manager:
        program, _ = connected(desktop, [host("web")])
        running = ssh_pids(program)
        manager.wait_for_client()
        manager.end_session()
        assert program.wait(2) == 0
    wait_until(lambda: not any(runs(pid) for pid in running), "every ssh has ended", timeout=3)


def a_session_manager_ends_it_while_a_file_dialog_is_open(desktop):
    with SessionManager(desktop) as manager:
        ends_with_a_dialog_open(desktop, file_dialog, lambda program: manager.end_session())


def a_session_manager_ends_it_while_a_question_is_open(desktop):
    with SessionManager(desktop) as manager:
        ends_with_a_dialog_open(desktop, question, lambda program: manager.end_session())


if __name__ == "__main__":
    run_tests(
        without_a_session_bus_the_main_window_opens,
        a_session_bus_that_goes_takes_no_tunnel_with_it,
        a_session_bus_that_comes_back_brings_the_keyring_back,
        a_keyring_that_goes_and_comes_back_is_used_again,
        a_display_that_goes_ends_the_program_in_order,
        a_panel_that_restarts_again_and_again_costs_nothing,
        a_panel_that_goes_for_good_leaves_the_second_launch,
        of_a_hundred_launches_one_process_remains,
        a_launch_while_a_dialog_is_open_keeps_the_dialog,
        a_log_out_ends_it_while_a_file_dialog_is_open,
        a_log_out_ends_it_while_a_question_is_open,
        a_log_out_ends_it_while_the_sheet_is_open,
        a_log_out_ends_it_while_a_menu_is_open,
        a_log_out_ends_it_while_the_keyring_asks_for_its_password,
        a_session_manager_ends_it_in_order,
        a_session_manager_ends_it_while_a_file_dialog_is_open,
        a_session_manager_ends_it_while_a_question_is_open,
    )
