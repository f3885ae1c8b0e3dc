"""The same walk without a mouse: everything in the windows is reached and done by keys. The eyes only look on."""

import json
import os

from desktop import host, run_tests, ssh_children, stays, wait_until
from screen import ENABLED, FOCUSED, SELECTED
from servers import Sshd
from walk import Walk

TAB_STOPS = 60  # no window has more


class KeyWalk(Walk):
    """Everything that can be reached by Tab is reached by Tab."""

    def focus(self):
        """Name of what has the keys."""
        node = self.screen.focused()
        return node and node.name

    def tab_to(self, name, key="Tab"):
        """Tabs on until the keys go to what is called so."""
        passed = []
        for _ in range(TAB_STOPS):
            before = wait_until(self.screen.focused, "something has the keys")
            if before.name == name:
                return before
            passed.append(before.name)
            self.screen.key(key)
            wait_until(lambda: not before.has(FOCUSED), f"{key} leads on from {before.name!r}")
        raise AssertionError(f"{key} does not lead to {name!r}, but to {passed}")

    def write(self, name, text):
        """Goes to a field and writes it anew."""
        field = self.tab_to(name)
        self.screen.key("ctrl+a")
        self.screen.type(text)
        wait_until(lambda: field.text == text, f"{name!r} is written")

    def in_list(self):
        self.screen.key("ctrl+f")
        wait_until(lambda: self.focus() == "Search", "the search has the keys")
        self.screen.key("Down")
        wait_until(lambda: self.focus() != "Search", "the list has the keys")

    def menu(self, keys, title):
        """Opens a window by the mnemonics of the main window's menus."""
        self.screen.key(*keys)
        return self.screen.window(title)

    def close(self, title):
        self.screen.key("alt+F4")
        self.screen.gone(title)
        self.screen.window("Velmora")

    def path(self, title, path):
        """Types a path into a file dialog; its field has the keys."""
        dialog = self.screen.window(title)
        wait_until(lambda: self.focus() == "File name:", "the name has the keys")
        self.screen.key("ctrl+a")
        self.screen.type(path)
        wait_until(lambda: dialog.find("File name:", "text").text == path, "the path is written")
        self.screen.key("Return")
        self.screen.gone(title)


def a_host_is_created_connected_saved_found_and_deleted(desktop):
    walk = KeyWalk(desktop)
    screen = walk.screen
    sshd = Sshd(desktop, "server", {})
    screen.key("ctrl+n")
    sheet = screen.window("New Tunnel")
    wait_until(lambda: walk.focus() == "Host", "the first field has the keys")
    screen.key("Escape")
    screen.gone("New Tunnel")
    screen.window("Velmora")
    screen.key("alt+f", "n")
    sheet = screen.window("New Tunnel")
    wait_until(lambda: walk.focus() == "Host", "the first field has the keys")
    walk.write("Host", "127.0.0.1")
    walk.write("Port", str(sshd.port))
    walk.write("User", sshd.user)
    walk.tab_to("General", "shift+Tab")
    screen.key("Right")
    wait_until(lambda: sheet.shows("Identity File"), "the arrow leads to the next tab")
    walk.write("Identity File", sshd.user_key)
    screen.key("Return")
    screen.gone("New Tunnel")
    screen.window("Velmora")
    [saved] = wait_until(desktop.saved_hosts, "Return creates it")
    assert (saved["hostname"], saved["port"], saved["username"], saved["identityFile"]) == (
        "127.0.0.1", sshd.port, sshd.user, sshd.user_key)

    wait_until(lambda: walk.row("Unnamed").has(SELECTED), "it is selected")
    walk.in_list()
    screen.key("Return")
    wait_until(lambda: walk.rows()[0].startswith("Unnamed, Connected · "), "Return connects it")
    assert "Accepted publickey" in sshd.log()
    walk.write("Name", "prod-db")
    screen.key("ctrl+s")
    wait_until(lambda: walk.saved_names() == ["prod-db"], "it is saved")
    screen.key("alt+t", "c")
    wait_until(lambda: walk.rows() == ["prod-db, Not Connected"], "the menu disconnects it")
    wait_until(lambda: not ssh_children(walk.program), "its ssh has ended")
    walk.tab_to("Connect")
    screen.key("space")
    wait_until(lambda: walk.rows()[0].startswith("prod-db, Connected · "), "so does the button connect")

    screen.key("ctrl+f")
    screen.type("nothing")
    wait_until(lambda: not walk.rows(), "nothing is found")
    screen.key("Escape")
    wait_until(walk.rows, "all is back")
    walk.in_list()
    screen.key("Delete")
    question = screen.window_that_says("Delete Tunnel")
    assert walk.focus() == "Cancel", "the harmless answer is the first"
    screen.key("Escape")
    wait_until(lambda: len(screen.windows()) == 1, "the question is answered")
    assert walk.saved_names() == ["prod-db"]
    screen.window("Velmora")
    screen.key("alt+t", "e")
    question = screen.window_that_says("Delete Tunnel")
    assert question.find("Delete", "push button").has(ENABLED)
    walk.tab_to("Delete")
    screen.key("space")
    wait_until(lambda: not walk.rows(), "it is deleted")
    assert walk.saved_names() == []
    wait_until(lambda: not ssh_children(walk.program), "its ssh has ended")


def rows_are_moved(desktop):
    walk = KeyWalk(desktop, [host("one"), host("two"), host("three")])
    walk.in_list()
    walk.screen.key("End")
    wait_until(lambda: walk.row("three").has(SELECTED), "the last is selected")
    walk.screen.key("alt+Up")
    wait_until(lambda: walk.saved_names() == ["one", "three", "two"], "it is one up, and saved")
    walk.screen.key("alt+Up")
    wait_until(lambda: walk.saved_names() == ["three", "one", "two"], "and another")
    walk.screen.key("alt+Down")
    wait_until(lambda: walk.names() == ["one", "three", "two"], "and down again")


def the_script_and_its_exceptions_are_edited(desktop):
    walk = KeyWalk(desktop)
    screen = walk.screen
    generated = walk.served()
    editor = walk.menu(["alt+o", "p"], "PAC Editor")
    wait_until(lambda: walk.focus() == "PAC script", "the text has the keys")
    screen.key("ctrl+Home")
    screen.type("// by hand")
    screen.key("Return", "ctrl+s")
    wait_until(lambda: editor.shows("Custom (manual edits)"), "it is applied")
    assert walk.served() == "// by hand\n" + generated
    walk.tab_to("Regenerate from Hosts", "shift+Tab")
    screen.key("space")
    wait_until(lambda: editor.shows("Auto-generated from hosts"), "it is made anew")
    assert walk.served() == generated
    walk.close("PAC Editor")

    walk.menu(["alt+o", "a"], "Add Proxy Exception")
    wait_until(lambda: walk.focus() == "Host", "the field has the keys")
    screen.type("*.one.example")
    screen.key("Return")
    screen.gone("Add Proxy Exception")
    wait_until(lambda: '"*.one.example")) return "DIRECT"' in walk.served(), "Return adds it")
    screen.window("Velmora")
    walk.menu(["alt+o", "a"], "Add Proxy Exception")
    screen.key("Escape")
    screen.gone("Add Proxy Exception")
    screen.window("Velmora")

    editor = walk.menu(["alt+o", "e"], "Proxy Exceptions")
    wait_until(lambda: walk.focus() == "Add host to bypass proxy", "the field has the keys")
    screen.type("*.two.example")
    screen.key("Return")
    wait_until(lambda: editor.shows("2 exceptions — matching hosts connect DIRECT"), "Return adds it")
    walk.tab_to("Save")
    screen.key("space")
    wait_until(lambda: '"*.two.example")) return "DIRECT"' in walk.served(), "it is saved")
    walk.close("Proxy Exceptions")


def settings_are_changed_and_their_buttons_open_the_editors(desktop):
    walk = KeyWalk(desktop)
    screen = walk.screen
    screen.key("ctrl+comma")
    screen.window("Settings")
    walk.write("Global ProxyJump", "me@jump.example")
    for button, title in {"Edit Exceptions…": "Proxy Exceptions", "Edit PAC…": "PAC Editor"}.items():
        walk.tab_to(button)
        screen.key("space")
        screen.window(title)
        screen.key("alt+F4")
        screen.gone(title)
        screen.window("Settings")
    walk.close("Settings")
    settings = walk.menu(["alt+o", "s"], "Settings")
    assert settings.find("Global ProxyJump", "text").text == "me@jump.example"
    walk.close("Settings")
    about = walk.menu(["alt+h", "a"], "About Velmora")
    assert about.shows("Changes")
    walk.close("About Velmora")


def tunnels_are_imported_and_exported_and_the_program_is_quit(desktop):
    walk = KeyWalk(desktop, [host("web")])
    screen = walk.screen
    screen.key("ctrl+i")
    walk.path("Select Core Tunnel Backup — Choose a .coretunnel backup file", walk.core_tunnel_backup())
    dismiss(walk, "Imported 1 tunnel. Skipped 1 duplicate.")
    assert walk.saved_names() == ["web", "imported"]

    exported = os.path.join(desktop.home, "export.json")
    screen.key("ctrl+e")
    walk.path("Export Velmora Hosts", exported)
    wait_until(lambda: os.path.exists(exported), "the file is written")
    with open(exported, encoding="utf-8") as file:
        assert json.load(file) == desktop.saved_hosts()
    screen.window("Velmora")
    screen.key("alt+f", "b")
    walk.path("Select Velmora Backup — Choose a velmora-backup.json file", exported)
    dismiss(walk, "Imported 0 tunnels. Skipped 2 duplicates.")

    screen.key("ctrl+w")
    screen.gone("Velmora")
    stays(lambda: walk.program.poll() is None, "the program runs on")
    assert desktop.start_program().wait(10) == 0
    screen.window("Velmora")
    screen.key("alt+f", "q")
    assert walk.program.wait(10) == 0


def dismiss(walk, message):
    alert = walk.screen.window_that_says("Import Complete")
    assert alert.shows(message), alert.texts()
    walk.screen.key("Return")
    wait_until(lambda: walk.screen.titles() == ["Velmora"], "Return dismisses it")
    walk.screen.window("Velmora")


if __name__ == "__main__":
    run_tests(
        a_host_is_created_connected_saved_found_and_deleted,
        rows_are_moved,
        the_script_and_its_exceptions_are_edited,
        settings_are_changed_and_their_buttons_open_the_editors,
        tunnels_are_imported_and_exported_and_the_program_is_quit,
    )
