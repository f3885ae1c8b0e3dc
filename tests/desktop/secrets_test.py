"""Where the password of a tunnel is found during a whole session, and after a crash: in the keyring, and as long as its
ssh runs in a script that nobody else can read. Nowhere else."""

import base64
import contextlib
import os
import resource
import secrets
import signal
import stat
import subprocess
import threading
import time

from desktop import PROGRAM, Item, Watcher, descendants, host, run_tests, runs, ssh_pids, wait_until, words_of
from screen import ENABLED, SELECTED, Keyring
from servers import Sshd
from walk import Walk


class Needles:
    """The shapes in which a password can stand somewhere."""

    def __init__(self, password):
        raw = password.encode()
        self.shapes = {"plain": raw, "UTF-16": password.encode("utf-16-le"), "hexadecimal": raw.hex().encode()}
        for before in range(3):
            encoded = base64.b64encode(b"x" * before + raw)
            # Without the characters at either end that its neighbours have a share in.
            self.shapes[f"Base64 after {before}"] = encoded[(before * 8 + 5) // 6:(before + len(raw)) * 8 // 6]

    def found_in(self, data):
        return [name for name, shape in self.shapes.items() if shape in data]

    def found_below(self, *directories):
        """Every file that holds it, with its shape."""
        found = set()
        for directory in directories:
            for folder, _, names in os.walk(directory):
                for path in (os.path.join(folder, name) for name in names):
                    with contextlib.suppress(OSError):
                        if stat.S_ISREG(os.stat(path).st_mode):
                            with open(path, "rb") as file:
                                found |= {(path, shape) for shape in self.found_in(file.read())}
        return found


class Watch:
    """Looks all the time at whatever the program runs, and at every file that it can reach in the test's home."""

    def __init__(self, desktop, program, needles):
        self._desktop, self._program, self._needles = desktop, program, needles
        self.processes = set()  # names of all that were seen
        self.leaks = set()
        self.files = set()
        self._stop = threading.Event()
        self._threads = [threading.Thread(target=look) for look in (self._look_at_processes, self._look_at_files)]
        for thread in self._threads:
            thread.start()

    def _look_at_processes(self):
        while not self._stop.wait(0.002):
            for pid in [self._program.pid, *descendants(self._program.pid)]:
                arguments = words_of(pid)
                self.processes.add(os.path.basename(arguments[0]).decode())
                for kind, words in (("arguments", arguments), ("environment", words_of(pid, "environ"))):
                    self.leaks |= {(kind, arguments[0], shape) for shape in self._needles.found_in(b"\0".join(words))}

    def _look_at_files(self):
        while not self._stop.wait(0.1):
            self.files |= self._needles.found_below(self._desktop.home)

    def end(self):
        self._stop.set()
        for thread in self._threads:
            thread.join()


def is_script(desktop, path):
    return os.path.dirname(path) == desktop.runtime and os.path.basename(path).startswith("velmora-askpass-")


def scripts_in(directory):
    return [os.path.join(directory, name) for name in os.listdir(directory) if name.startswith("velmora-askpass-")]


def new_password():
    return "pw-" + secrets.token_hex(12)


def keep_settings(desktop, **values):
    os.makedirs(os.path.join(desktop.home, ".config"))
    with open(os.path.join(desktop.home, ".config/com.velmora.app.conf"), "w", encoding="utf-8") as file:
        file.write("[General]\n" + "".join(f"{key}={value}\n" for key, value in values.items()))


class Session(Walk):
    """A user who does with a password host whatever can be done with one."""

    def create(self, sshd, password):
        self.screen.choose(self.main, "File", "New Tunnel")
        sheet = self.screen.window("New Tunnel")
        for name, value in {"Host": "127.0.0.1", "Port": str(sshd.port), "User": sshd.ACCOUNT}.items():
            self.screen.fill(sheet.find(name, "text"), value)
        self.screen.click(sheet.find("Connection", "radio button"))
        self.screen.click(sheet.find("Password", "radio button"))
        self.screen.fill(sheet.find("Password", "text"), password)
        self.screen.click(sheet.find("Create", "push button"))
        self.screen.gone("New Tunnel")
        wait_until(lambda: self.row("Unnamed").has(SELECTED), "the new host is selected")

    def all(self, entry, name, status):
        self.tray.click(entry)
        wait_until(lambda: self.rows()[0].startswith(f"{name}, {status}"), f"{name!r} is {status}")

    def rename(self, name):
        self.screen.fill(self.main.find("Name", "text"), name)
        self.screen.key("ctrl+s")
        wait_until(lambda: self.saved_names()[0] == name, "it is saved")
        wait_until(lambda: not self.main.find("Save", "push button").has(ENABLED), "there is nothing left to save")

    def path(self, entry, title, path):
        self.screen.choose(self.main, "File", entry)
        dialog = self.screen.window(title)
        self.screen.fill(dialog.find("File name:", "text"), path)
        self.screen.key("Return")
        self.screen.gone(title)

    def export_and_import(self, path):
        self.path("Export Tunnels…", "Export Velmora Hosts", path)
        wait_until(lambda: os.path.exists(path), "the file is written")
        self.path("Import from Velmora Backup…", "Select Velmora Backup — Choose a velmora-backup.json file", path)
        alert = self.screen.window_that_says("Import Complete")
        self.screen.click(alert.find("OK", "push button"))
        wait_until(lambda: self.screen.titles() == ["Velmora"], "it is dismissed")


def a_whole_session_leaves_the_password_in_the_keyring_alone(desktop):
    password = new_password()
    needles = Needles(password)
    shared, exported = os.path.join(desktop.home, "shared"), os.path.join(desktop.home, "velmora-backup.json")
    os.mkdir(shared)
    desktop.environment["TMPDIR"] = os.path.join(desktop.home, "tmp")
    os.mkdir(desktop.environment["TMPDIR"])
    keep_settings(desktop, syncFolderPath=shared, autoUpdate="false")
    with open(os.path.join(desktop.home, "bus"), "wb") as bus, open(os.path.join(desktop.home, "said"), "wb") as said:
        desktop.start("dbus-monitor", "--session", "--binary", stdout=bus, stderr=subprocess.DEVNULL)
        desktop.program_options = {"stdout": said, "stderr": said}
        session = Session(desktop)
    sshd = Sshd(desktop, "server", {}, password=password)
    watch = Watch(desktop, session.program, needles)
    try:
        session.create(sshd, password)
        session.all("Connect All", "Unnamed", "Connected · ")
        wait_until(lambda: "Accepted password" in sshd.log(), "the server has let it in")
        session.rename("by-password")
        assert not needles.found_in(session.served().encode())
        session.export_and_import(exported)
        session.all("Disconnect All", "by-password", "Not Connected")
        wait_until(lambda: not scripts_in(desktop.runtime), "the script goes")
        session.all("Connect All", "by-password", "Connected · ")
        [script] = scripts_in(desktop.runtime)
        assert stat.S_IMODE(os.stat(script).st_mode) == 0o700
        assert stat.S_IMODE(os.stat(desktop.runtime).st_mode) == 0o700
        time.sleep(0.3)  # for a look at all the files at this moment
        [saved] = desktop.saved_hosts()
        session.tray.click("Quit Velmora")
        assert session.program.wait(10) == 0
    finally:
        watch.end()

    assert session.keyring.password(saved["id"]) == password
    assert "ssh" in watch.processes, watch.processes
    assert not watch.leaks, watch.leaks
    assert any(is_script(desktop, path) for path, _ in watch.files), "the watch has seen the script"
    assert all(is_script(desktop, path) for path, _ in watch.files), watch.files
    for path in (exported, os.path.join(shared, "velmora-sync.json"), desktop.hosts_path,
                 os.path.join(desktop.home, ".local/state/Logs/Velmora/by-password.log")):
        assert os.path.getsize(path) > 0, path
    assert os.path.getsize(os.path.join(desktop.home, "bus")) > 10000, "what went over the bus was recorded"
    assert not needles.found_below(desktop.home), needles.found_below(desktop.home)


def password_host(desktop, password):
    """The program with such a host connecting: its script exists."""
    profile = host("web", authMethod="Password")
    Keyring(desktop)
    subprocess.run(["secret-tool", "store", "--label=Velmora", "service", "com.velmora.app", "account", profile["id"]],
                   env=desktop.environment, input=password, text=True, check=True)
    desktop.write_hosts([profile])


def connect(desktop, watcher, **options):
    program = desktop.start(PROGRAM, **options)
    Item(desktop, watcher.wait_for_item()).click("Connect All")
    wait_until(lambda: ssh_pids(program), "ssh runs")
    return program


def kill(program):
    running = ssh_pids(program)
    program.kill()
    program.wait()
    wait_until(lambda: not any(runs(pid) for pid in running), "its ssh ends")


def a_kill_leaves_a_script_that_the_next_start_removes(desktop):
    password = new_password()
    needles = Needles(password)
    password_host(desktop, password)
    watcher = Watcher(desktop)
    kill(connect(desktop, watcher))
    left = needles.found_below(desktop.home)
    assert left and all(is_script(desktop, path) for path, _ in left), left
    desktop.start_program()
    wait_until(lambda: len(watcher.items) == 2, "it starts")
    wait_until(lambda: not needles.found_below(desktop.home), "the password is nowhere")


def so_does_one_that_is_started_in_another_way(desktop):
    """From a shell without the session's variables, and then from the desktop's menu; and the other way round."""
    password = new_password()
    needles = Needles(password)
    password_host(desktop, password)
    other = os.path.join(desktop.home, "tmp")
    os.mkdir(other)
    ways = [{"TMPDIR": other}, {"XDG_RUNTIME_DIR": desktop.runtime, "TMPDIR": other}]
    del desktop.environment["XDG_RUNTIME_DIR"]
    watcher = Watcher(desktop)
    desktop.environment.update(ways[0])
    kill(connect(desktop, watcher))
    assert scripts_in(other) and not scripts_in(desktop.runtime)
    desktop.environment.update(ways[1])
    desktop.start_program()
    wait_until(lambda: len(watcher.items) == 2, "it starts")
    wait_until(lambda: not needles.found_below(desktop.home), "the password is nowhere")


def a_crash_writes_no_memory_to_a_file(desktop):
    """Neither the program's nor ssh's: both know passwords."""
    password_host(desktop, new_password())
    place = os.path.join(desktop.home, "place")
    os.mkdir(place)
    highest = resource.getrlimit(resource.RLIMIT_CORE)[1]
    program = connect(desktop, Watcher(desktop), cwd=place, stderr=subprocess.DEVNULL,
                      preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_CORE, (highest, highest)))
    for pid in [program.pid, *ssh_pids(program)]:
        assert resource.prlimit(pid, resource.RLIMIT_CORE) == (0, highest)
    program.send_signal(signal.SIGABRT)
    assert program.wait(10) == -signal.SIGABRT
    assert not os.listdir(place)


if __name__ == "__main__":
    run_tests(
        a_whole_session_leaves_the_password_in_the_keyring_alone,
        a_kill_leaves_a_script_that_the_next_start_removes,
        so_does_one_that_is_started_in_another_way,
        a_crash_writes_no_memory_to_a_file,
    )
