"""The status icon and its menu, read and clicked from outside the program, as a panel does."""

import http.server
import json
import os
import subprocess
import threading

from desktop import Item, Watcher, host, refusing_host, run_tests, ssh_children, stays, wait_until

WINDOW_ENTRIES = ["Add Proxy Exception…", "-", "Open Main Window", "Settings…", "About Velmora", "-", "Quit Velmora"]
GREEN, YELLOW, WHITE, RED = (0x34, 0xA8, 0x53), (0xF2, 0xB0, 0x1E), (0xFF, 0xFF, 0xFF), (0xE5, 0x48, 0x4D)


def start(desktop, hosts):
    desktop.write_hosts(hosts)
    watcher = Watcher(desktop)
    program = desktop.start_program()
    return program, Item(desktop, watcher.wait_for_item())


def without_hosts_nothing_can_be_connected_and_the_icon_is_slashed(desktop):
    _, item = start(desktop, [])
    assert item.texts() == ["Connect All", "Disconnect All", "-", *WINDOW_ENTRIES]
    assert not item.entry("Connect All").enabled
    assert not item.entry("Disconnect All").enabled
    assert item.slashed()
    assert not desktop.windows(), "with a tray no window opens"


def entries_stand_in_the_order_of_the_list(desktop):
    _, item = start(desktop, [host("web"), host("db"), host("app")])
    assert item.texts() == ["Connect All", "Disconnect All", "-", "web", "db", "app", "-", *WINDOW_ENTRIES]
    assert item.entry("Connect All").enabled
    assert not item.entry("Disconnect All").enabled
    assert item.entry("web").dot() == WHITE
    assert sorted(item.pixmaps()) == [16, 18, 22, 24, 32, 36, 48]


def names_read_as_they_are_and_mark_no_mnemonic(desktop):
    names = ["a & b", "a_b", "R&D_x & more", "&", "_", "__init__", "tail&", "tail_", "&&", "a&&b_&_c", "plain", "ünïcødé 東京",
             "_&", "&_"]
    _, item = start(desktop, [host(name) for name in names])
    hosts = item.entries()[3:3 + len(names)]
    assert [entry.text for entry in hosts] == names
    for entry in hosts:
        assert entry.mnemonic in ("", "\u2060"), f"{entry.label!r} marks {entry.mnemonic!r}"


def odd_names_stay_on_one_line_of_sensible_length(desktop):
    _, item = start(desktop, [host("two\nlines\tand a tab"), host(""), host(" \n "), host("x" * 5000)])
    texts = item.texts()[3:7]
    assert texts[:3] == ["two lines and a tab", "Unnamed", "Unnamed"]
    assert len(texts[3]) <= 64 and "…" in texts[3]


def choosing_a_host_connects_it_and_choosing_it_again_disconnects_it(desktop):
    program, item = start(desktop, [host("web"), host("db")])
    item.click("db")
    wait_until(lambda: len(ssh_children(program)) == 1, "ssh runs")
    wait_until(lambda: item.entry("db").dot() == YELLOW, "connecting is yellow")
    assert item.entry("web").dot() == WHITE
    assert item.entry("Disconnect All").enabled and item.entry("Connect All").enabled
    wait_until(lambda: not item.slashed(), "the icon shows an active host")
    wait_until(lambda: item.entry("db").dot() == GREEN, "connected is green")
    assert "1 connected" in item.property("ToolTip")[2]
    item.click("db")
    wait_until(lambda: item.entry("db").dot() == WHITE, "disconnected is white")
    wait_until(lambda: not ssh_children(program), "ssh has ended")
    wait_until(item.slashed, "the icon is slashed again")


def connect_all_and_disconnect_all(desktop):
    program, item = start(desktop, [host("web"), host("db"), host("app")])
    item.click("web")
    wait_until(lambda: len(ssh_children(program)) == 1, "one ssh runs")
    item.click("Connect All")
    wait_until(lambda: len(ssh_children(program)) == 3, "three run")
    wait_until(lambda: not item.entry("Connect All").enabled, "nobody is idle")
    item.click("Disconnect All")
    wait_until(lambda: not ssh_children(program), "none runs")
    wait_until(lambda: not item.entry("Disconnect All").enabled, "nobody is active")
    assert item.entry("Connect All").enabled


def a_host_in_error_counts_as_idle_and_its_dot_is_red(desktop):
    _, item = start(desktop, [refusing_host("gone")])
    item.click("gone")
    wait_until(lambda: item.entry("gone").dot() == RED, "an error is red")
    assert item.entry("Connect All").enabled
    assert not item.entry("Disconnect All").enabled
    assert item.slashed()
    item.click("Connect All")
    wait_until(lambda: item.entry("gone").dot() == YELLOW or "connecting" in item.property("ToolTip")[2],
               "it connects again", timeout=4)


def open_main_window_brings_the_one_window_forward(desktop):
    _, item = start(desktop, [host("web")])
    item.click("Open Main Window")
    window = wait_until(desktop.windows, "the window opens")
    assert len(window) == 1
    item.click("Open Main Window")
    item.activate()
    stays(lambda: desktop.windows() == window, "the same window and no other")


def titled(desktop, title):
    """The visible windows of this title."""
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{title}$"], env=desktop.environment,
                           stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False)
    return found.stdout.split()


def every_window_opens_once_and_quitting_takes_them_along(desktop):
    program, item = start(desktop, [host("web")])
    windows = {"Add Proxy Exception…": "Add Proxy Exception", "Settings…": "Settings", "About Velmora": "About Velmora"}
    for entry, title in windows.items():
        item.click(entry)
        window = wait_until(lambda title=title: titled(desktop, title), f"{title} opens")
        item.click(entry)
        stays(lambda title=title, window=window: titled(desktop, title) == window, "the same window and no other", 0.3)
    item.click("Quit Velmora")
    assert program.wait(2) == 0


class Feed(http.server.ThreadingHTTPServer):
    """Offers an update whose archive never comes."""

    daemon_threads = True

    def __init__(self, version):
        self.asked = threading.Event()  # for the archive
        self.answer = threading.Event()
        feed = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):  # noqa: N802  the base class calls it so
                if self.path == "/archive.zip":
                    feed.asked.set()
                    feed.answer.wait()
                    self.send_error(404)
                    return
                body = json.dumps({"version": version, "url": feed.url("archive.zip"), "sha256": "0" * 64}).encode()
                self.send_response(200)
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *_):
                pass

        super().__init__(("127.0.0.1", 0), Handler)
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def url(self, path):
        return f"http://127.0.0.1:{self.server_address[1]}/{path}"


def an_update_stands_first_and_cannot_be_chosen_while_it_installs(desktop):
    feed = Feed("99.1")
    settings = os.path.join(desktop.home, ".config")
    os.makedirs(settings, exist_ok=True)
    with open(os.path.join(settings, "com.velmora.app.conf"), "w", encoding="utf-8") as file:
        file.write(f"[General]\nupdateFeedURL={feed.url('appcast.json')}\n")
    _, item = start(desktop, [host("web")])
    assert item.texts()[0] == "Connect All"
    update = "Update to v99.1 & Relaunch"
    wait_until(lambda: item.texts()[:3] == [update, "-", "Connect All"], "the update is found")
    assert item.entry(update).enabled
    assert item.entry(update).mnemonic in ("", "\u2060")
    item.click(update)
    assert feed.asked.wait(20), "the archive is asked for"
    wait_until(lambda: not item.entry(update).enabled, "one at a time")
    feed.answer.set()
    wait_until(lambda: titled(desktop, "Velmora"), "the failure is told")
    feed.shutdown()


def quit_ends_the_program_and_every_ssh(desktop):
    program, item = start(desktop, [host("web"), host("db")])
    item.click("Connect All")
    wait_until(lambda: len(ssh_children(program)) == 2, "both run")
    pids = desktop.run("pgrep", "-P", str(program.pid), "ssh").split()
    item.click("Quit Velmora")
    assert program.wait(1) == 0
    wait_until(lambda: all(ended(pid) for pid in pids), "every ssh has ended")


def ended(pid):
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8") as file:
            return file.read().rsplit(")", 1)[1].split()[0] == "Z"
    except OSError:
        return True


def hundreds_of_hosts(desktop):
    _, item = start(desktop, [host(f"host {number}") for number in range(500)])
    assert item.texts()[3:503] == [f"host {number}" for number in range(500)]
    item.click("host 250")
    wait_until(lambda: item.entry("host 250").dot() == YELLOW, "one dot changes")


if __name__ == "__main__":
    run_tests(
        without_hosts_nothing_can_be_connected_and_the_icon_is_slashed,
        entries_stand_in_the_order_of_the_list,
        names_read_as_they_are_and_mark_no_mnemonic,
        odd_names_stay_on_one_line_of_sensible_length,
        choosing_a_host_connects_it_and_choosing_it_again_disconnects_it,
        connect_all_and_disconnect_all,
        a_host_in_error_counts_as_idle_and_its_dot_is_red,
        open_main_window_brings_the_one_window_forward,
        every_window_opens_once_and_quitting_takes_them_along,
        an_update_stands_first_and_cannot_be_chosen_while_it_installs,
        quit_ends_the_program_and_every_ssh,
        hundreds_of_hosts,
    )
