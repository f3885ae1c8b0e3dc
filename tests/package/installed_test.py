"""The installed program keeps tunnels up: started by a normal user in the bare system VELMORA_ROOT, on a desktop and with
an sshd that are outside of it.

The sockets of X server, session bus and sshd are reached through the network namespace that both sides share.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import time
import urllib.request

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "desktop"))
from desktop import BUS_CONFIGURATION, Desktop, Item, Watcher, host, ssh_children, wait_until  # noqa: E402
from servers import PageServer, Sshd, free_port, listens  # noqa: E402

ROOT = os.environ["VELMORA_ROOT"]
USER = "anna"
GREEN = (0x34, 0xA8, 0x53)  # of a connected host
ENTER = 'mount -t proc proc "$0/proc" && exec chroot --userspec="$1" "$0" env -i "${@:2}"'


class BareDesktop(Desktop):
    """A desktop whose program runs in the bare system, as its user and with its user's home."""

    def __enter__(self):
        with open(os.path.join(ROOT, "etc/passwd"), encoding="utf-8") as file:
            fields = next(line.split(":") for line in file if line.startswith(USER + ":"))
        self.uid, self.user_home = int(fields[2]), fields[5]
        self.user_environment = {
            "HOME": self.user_home,
            "XDG_RUNTIME_DIR": f"/run/user/{self.uid}",
            "PATH": "/usr/bin:/bin",
            "LANG": "C.UTF-8",
        }
        self.own_folder(self.user_environment["XDG_RUNTIME_DIR"])
        return super().__enter__()

    def start_bus(self):
        # By itself a session bus lets in nobody but the user who started it.
        self.bus_address = "unix:abstract=/velmora-package-bus"
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus_address
        configuration = os.path.join(self.runtime, "bus.conf")
        with open(configuration, "w", encoding="utf-8") as file:
            file.write(BUS_CONFIGURATION.format(address=self.bus_address).replace(
                '<policy context="default">', '<policy context="default"><allow user="*"/>'))
        self.bus = self.start("dbus-daemon", "--config-file", configuration, "--nofork", "--print-address=1",
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.bus.stdout.readline()

    def inside(self, path):
        return ROOT + path

    def own_folder(self, path):
        os.makedirs(self.inside(path), 0o700, exist_ok=True)
        os.chown(self.inside(path), self.uid, self.uid)

    def give(self, source, path):
        shutil.copy(source, self.inside(path))
        os.chown(self.inside(path), self.uid, self.uid)
        os.chmod(self.inside(path), 0o600)

    @property
    def hosts_path(self):
        return self.inside(f"{self.user_home}/.local/share/Velmora/hosts.json")

    def write_hosts(self, hosts):
        super().write_hosts(hosts)
        for folder, _, names in os.walk(self.inside(f"{self.user_home}/.local")):
            for path in (folder, *(os.path.join(folder, name) for name in names)):
                os.chown(path, self.uid, self.uid)

    def start_program(self):
        variables = {**self.user_environment, "DISPLAY": self.environment["DISPLAY"],
                     "DBUS_SESSION_BUS_ADDRESS": self.bus_address}
        return self.start("unshare", "--mount", "bash", "-c", ENTER, ROOT, f"{self.uid}:{self.uid}",
                          *(f"{name}={value}" for name, value in variables.items()), "velmora")


def told(what):
    print(f"  {what}", flush=True)


def fetched(port, *arguments, name="127.0.0.1"):
    return subprocess.run(["curl", "--silent", "--show-error", "--fail", "--max-time", "20", *arguments, f"http://{name}:{port}/"],
                          stdout=subprocess.PIPE, check=True, text=True).stdout


class Scene:
    """The program with one host that connects by itself, and the three kinds of forwarding to a page."""

    def __init__(self, desktop):
        self.desktop = desktop
        self.page = PageServer(["127.0.0.1"])
        self.sshd = Sshd(desktop, "server", {"page.example": "127.0.0.1"})
        self.sshd_process = desktop.processes[-1]
        self.local, self.remote, self.dynamic = free_port(), free_port(), free_port()
        desktop.own_folder(f"{desktop.user_home}/.ssh")
        desktop.give(self.sshd.user_key, f"{desktop.user_home}/.ssh/id_ed25519")
        to_page = {"targetAddress": "127.0.0.1", "targetPort": self.page.port}
        desktop.write_hosts([host(
            "Server", port=self.sshd.port, username=self.sshd.user, identityFile="~/.ssh/id_ed25519", connectOnStartup=True,
            customOptions="IdentitiesOnly=yes", forwardingRules=[
                {"type": "Local", "bindAddress": "127.0.0.1", "bindPort": self.local, **to_page},
                {"type": "Remote", "bindAddress": "127.0.0.1", "bindPort": self.remote, **to_page},
                {"type": "Dynamic", "bindAddress": "127.0.0.1", "bindPort": self.dynamic, "pacPatterns": "*.example"}]),
            host("With a password", port=self.sshd.port, username=self.sshd.user, authMethod="Password")])
        watcher = Watcher(desktop)
        self.started = time.monotonic()
        self.program = desktop.start_program()
        self.item = Item(desktop, watcher.wait_for_item())

    def carries(self):
        return all(listens(port) for port in (self.local, self.remote, self.dynamic))

    def connected(self):
        return self.item.entry("Server").dot() == GREEN and "1 connected" in self.item.property("ToolTip")[2]

    def log(self):
        path = self.desktop.inside(f"{self.desktop.user_home}/.local/state/Logs/Velmora/Server.log")
        return pathlib.Path(path).read_text(encoding="utf-8", errors="replace")

    def cut(self):
        """Kills what serves the connection at the server."""
        subprocess.run(["pkill", "-KILL", "-P", str(self.sshd_process.pid)], check=True)


def it_connects_and_carries_bytes(desktop, scene):
    wait_until(scene.carries, "all three forwardings listen")
    told(f"forwarding {time.monotonic() - scene.started:.1f} s after the start")
    expected = "127.0.0.1 at 127.0.0.1"
    assert expected in fetched(scene.local)
    assert expected in fetched(scene.remote)
    assert "page.example at 127.0.0.1" in fetched(
        scene.page.port, "--socks5-hostname", f"127.0.0.1:{scene.dynamic}", name="page.example")
    told("Local, Remote and Dynamic carry bytes")
    wait_until(scene.connected, "the menu says that the host is connected")
    told(scene.item.property("ToolTip")[2])
    status = pathlib.Path(f"/proc/{scene.program.pid}/status").read_text(encoding="utf-8")
    assert f"Uid:\t{desktop.uid}\t" in status, "a normal user runs it"
    log = scene.log()
    assert f"-p {scene.sshd.port}" in log and f"-L 127.0.0.1:{scene.local}:127.0.0.1:{scene.page.port}" in log, log
    told("log: " + log.splitlines()[0][:100] + "…")


def it_serves_the_proxy_script(_desktop, scene):
    with urllib.request.urlopen("http://127.0.0.1:18087/proxy.pac", timeout=10) as answer:
        script = answer.read().decode()
    assert f"SOCKS5 127.0.0.1:{scene.dynamic}" in script, script


def its_own_libraries_are_found(_desktop, scene):
    def loaded(name):
        maps = pathlib.Path(f"/proc/{scene.program.pid}/maps").read_text(encoding="utf-8")
        return re.search(rf"/usr/lib/[^/]+/velmora/{name}$", maps, re.MULTILINE)

    wait_until(lambda: loaded("network.so"), "it looks for updates")
    scene.item.click("With a password")
    wait_until(lambda: loaded("keyring.so"), "it asks for the password")
    scene.item.click("With a password")
    wait_until(lambda: scene.connected(), "one host is connected")
    assert scene.program.poll() is None


def its_window_belongs_to_the_desktop_entry(desktop, scene):
    scene.item.click("Open Main Window")
    window = wait_until(desktop.windows, "the main window opens")[0]
    told(desktop.run("xprop", "-id", window, "WM_CLASS").strip())
    entry = pathlib.Path(desktop.inside("/usr/share/applications/com.velmora.app.desktop")).read_text(encoding="utf-8")
    of_class = next(line for line in entry.splitlines() if line.startswith("StartupWMClass="))
    assert f'"{of_class.partition("=")[2]}"' in desktop.run("xprop", "-id", window, "WM_CLASS")
    time.sleep(1)  # until everything is drawn
    desktop.run("import", "-window", "root", os.environ["VELMORA_PICTURE"])


def a_cut_connection_comes_back(_desktop, scene):
    start = time.monotonic()
    scene.cut()
    wait_until(lambda: not listens(scene.local), "the tunnel is down")
    wait_until(scene.carries, "the tunnel comes back")
    waited = time.monotonic() - start
    assert 5 <= waited < 15, waited
    told(f"back {waited:.1f} s after the connection was cut")
    assert "127.0.0.1 at 127.0.0.1" in fetched(scene.local)
    assert scene.log().count(f" -p {scene.sshd.port} ") == 2 and "[exit 255]" in scene.log()


def it_quits_and_takes_ssh_along(_desktop, scene):
    assert len(ssh_children(scene.program)) == 1
    scene.item.click("Quit Velmora")
    assert scene.program.wait(5) == 0
    wait_until(lambda: not listens(scene.local), "ssh has ended")


def main():
    with BareDesktop() as desktop:
        scene = Scene(desktop)
        for test in (it_connects_and_carries_bytes, it_serves_the_proxy_script, its_own_libraries_are_found,
                     its_window_belongs_to_the_desktop_entry, a_cut_connection_comes_back, it_quits_and_takes_ssh_along):
            test(desktop, scene)
            print(f"ok      {test.__name__}", flush=True)


if __name__ == "__main__":
    main()
