"""A walk through all windows with mouse and keyboard, and real servers and a real keyring behind the program."""

import contextlib
import json
import os

from desktop import host, run_tests, ssh_children, stays, wait_until
from screen import ENABLED, FOCUSED, SELECTED
from servers import Sshd
from walk import Walk, files_with


class MouseWalk(Walk):
    """Everything that can be clicked is clicked."""

    def select(self, name):
        self.screen.click(self.row(name))
        wait_until(lambda: self.row(name).has(SELECTED), f"{name!r} is selected")
        wait_until(lambda: self.main.find("Name", "text").text == name, f"the editor shows {name!r}")

    def open_file(self, title, path):
        """Types a path into the file dialog that has come."""
        dialog = self.screen.window(title)
        self.screen.fill(dialog.find("File name:", "text"), path)
        self.screen.key("Return")
        self.screen.gone(title)

    def dismiss(self, message):
        """Reads what an import did, and says "OK"."""
        alert = self.screen.window_that_says("Import Complete")
        assert alert.shows(message), alert.texts()
        self.screen.click(alert.find("OK", "push button"))
        wait_until(lambda: self.screen.titles() == ["Velmora"], "it is dismissed")

    def create(self, fields, identity_file=None, password=None):
        """Makes a host in the sheet. It has no name before it is edited."""
        self.screen.choose(self.main, "File", "New Tunnel")
        sheet = self.screen.window("New Tunnel")
        for name, value in fields.items():
            self.screen.fill(sheet.find(name, "text"), value)
        if identity_file or password:
            self.screen.click(sheet.find("Connection", "radio button"))
        if identity_file:
            self.screen.fill(sheet.find("Identity File", "text"), identity_file)
        if password:
            self.screen.click(sheet.find("Password", "radio button"))
            self.screen.fill(sheet.find("Password", "text"), password)
        self.screen.click(sheet.find("Create", "push button"))
        self.screen.gone("New Tunnel")
        wait_until(lambda: self.row("Unnamed").has(SELECTED), "the new host is selected")


def a_host_is_created_connected_edited_and_saved(desktop):
    walk = MouseWalk(desktop)
    screen = walk.screen
    sshd = Sshd(desktop, "server", {})
    wait_until(lambda: walk.main.shows("No tunnel selected"), "there is nothing yet")
    walk.create({"Host": "127.0.0.1", "Port": str(sshd.port), "User": sshd.user}, identity_file=sshd.user_key)
    [saved] = wait_until(desktop.saved_hosts, "the new host is saved")
    assert (saved["hostname"], saved["port"], saved["username"], saved["identityFile"]) == (
        "127.0.0.1", sshd.port, sshd.user, sshd.user_key)

    assert walk.rows() == ["Unnamed, Not Connected"]
    screen.click(walk.row("Unnamed"), times=2)
    wait_until(lambda: walk.rows()[:1] and walk.rows()[0].startswith("Unnamed, Connected · "), "the row tells of it")
    footer = wait_until(lambda: [text for text in walk.main.texts() if text.startswith("Connected · ")],
                        "the footer tells of it")
    assert walk.rows() == [f"Unnamed, {footer[0]}"]
    assert walk.main.shows("Disconnect")
    wait_until(lambda: "Accepted publickey" in sshd.log(), "the server has let it in")
    assert not walk.tray.slashed()

    save = walk.main.find("Save", "push button")
    assert not save.has(ENABLED), "there is nothing to save"
    screen.fill(walk.main.find("Name", "text"), "prod-db")
    wait_until(lambda: save.has(ENABLED), "there is something to save")
    assert walk.names() == ["prod-db"], "the row follows each key"
    assert walk.saved_names() == ["Unnamed"], "nothing is saved before it is asked for"
    screen.key("ctrl+s")
    wait_until(lambda: walk.saved_names() == ["prod-db"], "it is saved")
    wait_until(lambda: not save.has(ENABLED), "there is nothing left to save")

    screen.click(walk.row("prod-db"), times=2)
    wait_until(lambda: walk.rows() == ["prod-db, Not Connected"], "a second double click disconnects")
    wait_until(lambda: not ssh_children(walk.program), "its ssh has ended")


def rows_are_dragged_searched_and_deleted(desktop):
    walk = MouseWalk(desktop, [host("web"), host("prod-db"), host("other", hostname="db.PROD.internal"),
                          host("tagged", tags="prod")])
    screen = walk.screen

    def drag_last_to_the_top():
        x, top, width, _ = walk.row("web").extents
        screen.drag(walk.row("tagged"), x + width // 2, top + 1)
        with contextlib.suppress(AssertionError):
            wait_until(lambda: walk.saved_names()[0] == "tagged", "the order is saved", timeout=3)
        return walk.saved_names()[0] == "tagged"

    wait_until(drag_last_to_the_top, "a row can be dragged")
    assert walk.saved_names() == ["tagged", "web", "prod-db", "other"]
    wait_until(lambda: walk.names() == ["tagged", "web", "prod-db", "other"], "the list shows the new order")

    walk.select("web")
    search = walk.main.find("Search", "text")
    screen.fill(search, "PROD")
    wait_until(lambda: walk.names() == ["prod-db", "other"], "those with it in name or host name are left")
    assert walk.main.find("Name", "text").text == "web", "the editor of a host that is not among them stays"
    screen.key("Escape")
    wait_until(lambda: len(walk.names()) == 4, "all are back")

    for answer, left in (("Cancel", ["tagged", "web", "prod-db", "other"]), ("Delete", ["tagged", "prod-db", "other"])):
        screen.choose(walk.main, "Tunnel", "Delete…")
        question = screen.window_that_says("Delete Tunnel")
        assert question.shows('Are you sure you want to delete "web"? This cannot be undone.')
        screen.click(question.find(answer, "push button"))
        wait_until(lambda: len(screen.windows()) == 1, "the question is answered")
        wait_until(lambda left=left: walk.names() == left, f"{answer} leaves {left}")
        assert walk.saved_names() == left
        assert walk.main.shows("No tunnel selected") == (answer == "Delete")


def an_exception_that_is_added_from_the_menu_is_served(desktop):
    walk = MouseWalk(desktop)
    assert "intranet" not in walk.served()
    walk.tray.click("Add Proxy Exception…")
    panel = walk.screen.window("Add Proxy Exception")
    assert not panel.find("Add", "push button").has(ENABLED)
    wait_until(lambda: panel.find("Host", "text").has(FOCUSED), "the field has the keys")
    walk.screen.type("*.intranet.example")
    walk.screen.click(panel.find("Add", "push button"))
    walk.screen.gone("Add Proxy Exception")
    wait_until(lambda: '"*.intranet.example")) return "DIRECT"' in walk.served(), "the exception is served")

    walk.screen.choose(walk.main, "Tools", "Proxy Exceptions…")
    editor = walk.screen.window("Proxy Exceptions")
    assert editor.find("Hosts that bypass the proxy, one per line").text == "*.intranet.example"
    assert editor.shows("1 exception — matching hosts connect DIRECT")


def the_script_is_edited_applied_and_made_anew(desktop):
    walk = MouseWalk(desktop)
    generated = walk.served()
    walk.screen.choose(walk.main, "Tools", "PAC Editor…")
    editor = walk.screen.window("PAC Editor")
    script = editor.find("PAC script")
    assert script.text == generated
    assert editor.shows("Auto-generated from hosts")

    walk.screen.click(script)
    walk.screen.key("ctrl+Home")
    walk.screen.type("// by hand")
    walk.screen.key("Return")
    wait_until(lambda: script.text == "// by hand\n" + generated, "the script is typed")
    assert walk.served() == generated, "nothing is served before it is applied"
    walk.screen.click(editor.find("Apply", "push button"))
    wait_until(lambda: editor.shows("Custom (manual edits)"), "the mode changes")
    assert walk.served() == "// by hand\n" + generated

    walk.screen.click(editor.find("Regenerate from Hosts", "push button"))
    wait_until(lambda: editor.shows("Auto-generated from hosts"), "the mode is back")
    assert script.text == generated
    assert walk.served() == generated


def tunnels_are_imported_and_exported_through_the_file_dialogs(desktop):
    walk = MouseWalk(desktop, [host("web")])
    walk.screen.choose(walk.main, "File", "Import from Core Tunnel…")
    walk.open_file("Select Core Tunnel Backup — Choose a .coretunnel backup file", walk.core_tunnel_backup())
    walk.dismiss("Imported 1 tunnel. Skipped 1 duplicate.")
    wait_until(lambda: walk.names() == ["web", "imported"], "the list shows it")
    imported = desktop.saved_hosts()[1]
    assert (imported["hostname"], imported["port"], imported["username"]) == ("db.example.com", 2222, "me")
    assert imported["forwardingRules"][0]["bindPort"] == 8080

    exported = os.path.join(desktop.home, "export.json")
    walk.screen.choose(walk.main, "File", "Export Tunnels…")
    walk.open_file("Export Velmora Hosts", exported)
    wait_until(lambda: os.path.exists(exported), "the file is written")
    with open(exported, encoding="utf-8") as file:
        assert json.load(file) == desktop.saved_hosts()

    walk.screen.choose(walk.main, "File", "Import from Velmora Backup…")
    walk.open_file("Select Velmora Backup — Choose a velmora-backup.json file", exported)
    walk.dismiss("Imported 0 tunnels. Skipped 2 duplicates.")
    assert walk.saved_names() == ["web", "imported"]


def each_window_opens_once_and_the_program_outlives_them(desktop):
    walk = MouseWalk(desktop, [host("web")])
    screen = walk.screen
    doors = {
        "PAC Editor": [("Tools", "PAC Editor…")] * 2,
        "Proxy Exceptions": [("Tools", "Proxy Exceptions…")] * 2,
        "Add Proxy Exception": [("Tools", "Add Proxy Exception…"), "Add Proxy Exception…"],
        "Settings": [("Tools", "Settings…"), "Settings…"],
        "About Velmora": [("Help", "About Velmora"), "About Velmora"],
        "Velmora": ["Open Main Window"] * 2,
    }
    opened = {"Velmora"}
    for title, ways in doors.items():
        for way in ways:
            walk.tray.click("Open Main Window")
            screen.window("Velmora")
            if isinstance(way, tuple):
                screen.choose(walk.main, *way)
            else:
                walk.tray.click(way)
            screen.window(title)
            opened.add(title)
            stays(lambda: screen.titles() == sorted(opened), f"one window of each: {screen.titles()}", 0.2)

    while screen.windows():
        title = wait_until(screen.active, "one of them has the keyboard").title()
        screen.close(title)
        opened.remove(title)
        assert screen.titles() == sorted(opened), f"only {title} was closed"
    assert not screen.windows()
    stays(lambda: walk.program.poll() is None, "the program runs on")
    walk.tray.click("Quit Velmora")
    assert walk.program.wait(10) == 0


def a_password_goes_to_the_keyring_and_nowhere_else(desktop):
    walk = MouseWalk(desktop)
    password = "correct-horse-battery"
    walk.create({"Host": "db.example.com"}, password=password)
    [saved] = wait_until(desktop.saved_hosts, "the host is saved")
    assert saved["authMethod"] == "Password"
    wait_until(lambda: walk.keyring.password(saved["id"]) == password, "the keyring has it")

    walk.screen.click(walk.main.find("Connection", "radio button"))
    field = walk.main.find("Password", "text")
    assert password not in field.text, "not even an assistive program is told"
    walk.screen.fill(field, "changed-horse")
    walk.screen.key("ctrl+s")
    wait_until(lambda: walk.keyring.password(saved["id"]) == "changed-horse", "the keyring has the new one")
    for secret in (password, "changed-horse"):
        assert not files_with(desktop.home, secret), files_with(desktop.home, secret)


if __name__ == "__main__":
    run_tests(
        a_host_is_created_connected_edited_and_saved,
        rows_are_dragged_searched_and_deleted,
        an_exception_that_is_added_from_the_menu_is_served,
        the_script_is_edited_applied_and_made_anew,
        tunnels_are_imported_and_exported_through_the_file_dialogs,
        each_window_opens_once_and_the_program_outlives_them,
        a_password_goes_to_the_keyring_and_nowhere_else,
    )
