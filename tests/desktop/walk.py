"""The program with all that it has around it, and a user who has opened the main window."""

import contextlib
import json
import os
import urllib.request

from desktop import Item, Watcher, wait_until
from screen import Gone, Keyring, Screen
from servers import free_port


class Walk:
    """The program, and a user in front of it with the main window open."""

    def __init__(self, desktop, hosts=()):
        self.desktop = desktop
        self.keyring = Keyring(desktop)
        self.screen = Screen(desktop)
        self.pac_port = free_port()
        desktop.environment["VELMORA_TEST_PAC_PORT"] = str(self.pac_port)
        if hosts:
            desktop.write_hosts(list(hosts))
        watcher = Watcher(desktop)
        self.program = desktop.start_program()
        self.tray = Item(desktop, watcher.wait_for_item())
        self.tray.click("Open Main Window")
        self.main = self.screen.window("Velmora")

    def rows(self):
        with contextlib.suppress(Gone):
            return [row.name for row in self.main.find("Tunnels", "list").children]
        return []

    def names(self):
        return [row.split(", ")[0] for row in self.rows()]

    def row(self, name):
        def seek():
            with contextlib.suppress(Gone):
                for row in self.main.find("Tunnels", "list").children:
                    if row.name.split(", ")[0] == name:
                        return row
            return None

        return wait_until(seek, f"the row of {name!r} is there")

    def saved_names(self):
        return [each["name"] for each in self.desktop.saved_hosts()]

    def served(self):
        with urllib.request.urlopen(f"http://127.0.0.1:{self.pac_port}/proxy.pac", timeout=20) as answer:
            return answer.read().decode()

    def core_tunnel_backup(self):
        """A file with two profiles: "web" and "imported"."""
        path = os.path.join(self.desktop.home, "tunnels.coretunnel")
        with open(path, "w", encoding="utf-8") as file:
            json.dump({"version": 3, "profiles": [
                {"name": "web", "address": "web.example.com"},
                {"name": "imported", "address": "db.example.com", "port": 2222, "user": "me", "forwardings": [
                    {"type": "local", "bindPort": 8080, "targetAddress": "db", "targetPort": 5432}]},
            ]}, file)
        return path


def files_with(directory, text):
    """Every file in a home that holds the text; the keyring's own are encrypted."""
    found = []
    for folder, _, names in os.walk(directory):
        for name in names:
            path = os.path.join(folder, name)
            if os.path.isfile(path):
                with open(path, "rb") as file:
                    if text.encode() in file.read():
                        found.append(path)
    return found
