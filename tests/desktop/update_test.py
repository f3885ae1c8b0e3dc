"""A bundle of the program updates itself from a server, to another bundle of the program."""

import hashlib
import http.server
import json
import os
import plistlib
import shutil
import signal
import subprocess
import threading

from desktop import Watcher, host, run_tests, ssh_children, stays, wait_until

PACKAGING = os.environ["VELMORA_PACKAGING"]
FIRST = os.environ["VELMORA_SELF_INSTALLER"]  # trusts a key of ours, installs what it finds
SECOND = os.environ["VELMORA_PROGRAM"]


class Server(http.server.ThreadingHTTPServer):
    """The maker's server: serves a folder from a thread of its own."""

    daemon_threads = True

    def __init__(self, folder):
        self.paths = []

        class Handler(http.server.SimpleHTTPRequestHandler):
            def __init__(self, *arguments):
                super().__init__(*arguments, directory=folder)

            def log_message(self, *_):
                self.server.paths.append(self.path)

        super().__init__(("127.0.0.1", 0), Handler)
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def url(self, path):
        return f"http://127.0.0.1:{self.server_address[1]}/{path}"


class Release:
    """An installed bundle 1.0, and a server that offers 2.0."""

    def __init__(self, desktop, ballast=0):
        self.desktop = desktop
        self.key = os.path.join(desktop.home, "release key")
        subprocess.run(["/usr/bin/ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.key], check=True)
        self.temporary = os.path.join(desktop.home, "tmp")
        self.served = os.path.join(desktop.home, "served", "velmora")
        os.makedirs(self.temporary)
        os.makedirs(self.served)
        self.server = Server(os.path.dirname(self.served))
        self.bundle = os.path.join(desktop.home, "My Apps", "Velmora.app")
        self.notes = os.path.join(desktop.home, "notes")

        self.make(FIRST, "1.0", os.path.dirname(self.bundle))
        os.remove(os.path.join(os.path.dirname(self.bundle), "Velmora-1.0.zip"))
        self.make(SECOND, "2.0", self.served, "--key", self.key, "--url", self.server.url("velmora/Velmora-2.0.zip"))
        if ballast:
            self.add_ballast(ballast)
        with open(self.key + ".pub", encoding="utf-8") as file:
            desktop.environment["VELMORA_TEST_UPDATE_KEY"] = file.read().strip()
        desktop.environment["VELMORA_TEST_NOTES"] = self.notes
        desktop.environment["TMPDIR"] = self.temporary
        self.set_default("updateFeedURL", self.server.url("velmora/appcast.json"))

    def make(self, program, version, output, *more):
        build = os.path.join(self.desktop.home, "build-" + version)
        os.makedirs(os.path.join(build, "bin"))
        shutil.copy(program, os.path.join(build, "bin", "velmora"))
        shutil.copytree(os.path.join(os.path.dirname(program), "../lib"), os.path.join(build, "lib"))
        subprocess.run([os.path.join(PACKAGING, "make-bundle"), "--build", build, "--output", output,
                        "--version", version, *more], check=True, stdout=subprocess.DEVNULL)
        shutil.rmtree(build)

    def add_ballast(self, megabytes):
        """Makes the archive large: bytes that do not pack."""
        bundle = os.path.join(self.served, "Velmora.app")
        with open(os.path.join(bundle, "Contents/Resources/ballast"), "wb") as file:
            for _ in range(megabytes):
                file.write(os.urandom(1 << 20))
        subprocess.run([os.path.join(PACKAGING, "seal-bundle"), bundle, self.key], check=True)
        archive = os.path.join(self.served, "Velmora-2.0.zip")
        os.remove(archive)
        subprocess.run(["zip", "-q", "-X", "-r", "-y", archive, "Velmora.app"], cwd=self.served, check=True)
        self.edit_feed(sha256=self.digest())

    def digest(self):
        with open(os.path.join(self.served, "Velmora-2.0.zip"), "rb") as file:
            return hashlib.file_digest(file, "sha256").hexdigest() if hasattr(hashlib, "file_digest") else \
                hashlib.sha256(file.read()).hexdigest()

    def edit_feed(self, **changes):
        path = os.path.join(self.served, "appcast.json")
        with open(path, encoding="utf-8") as file:
            feed = json.load(file)
        feed.update(changes)
        with open(path, "w", encoding="utf-8") as file:
            json.dump(feed, file)

    def set_default(self, key, value):
        folder = os.path.join(self.desktop.home, ".config")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, "com.velmora.app.conf"), "w", encoding="utf-8") as file:
            file.write(f"[General]\n{key}={value}\n")

    @property
    def program(self):
        return os.path.join(self.bundle, "Contents/MacOS/velmora")

    def version(self):
        with open(os.path.join(self.bundle, "Contents/Info.plist"), "rb") as file:
            return plistlib.load(file)["CFBundleShortVersionString"]

    def snapshot(self):
        found = {}
        for folder, _, names in os.walk(self.bundle):
            for name in names:
                with open(os.path.join(folder, name), "rb") as file:
                    found[os.path.join(folder, name)] = hashlib.sha256(file.read()).hexdigest()
        return found

    def noted(self, what):
        if not os.path.exists(self.notes):
            return []
        with open(self.notes, encoding="utf-8") as file:
            return [line[len(what) + 1:].rstrip("\n") for line in file if line.startswith(what + " ")]

    def running(self):
        """The number of the process that runs the installed program."""
        for entry in os.listdir("/proc"):
            try:
                if entry.isdigit() and os.readlink(f"/proc/{entry}/exe") == self.program:
                    return int(entry)
            except OSError:
                continue
        return None


class Process:
    """A process by its number, as far as others can see it."""

    def __init__(self, pid):
        self.pid = pid

    def end(self):
        os.kill(self.pid, signal.SIGTERM)
        wait_until(lambda: not os.path.exists(f"/proc/{self.pid}/exe") or self.is_zombie(), "the new program ends")

    def is_zombie(self):
        try:
            with open(f"/proc/{self.pid}/stat", encoding="utf-8") as file:
                return file.read().rsplit(")", 1)[1].split()[0] == "Z"
        except OSError:
            return True


def bundle_one_updates_itself_to_bundle_two(desktop):
    release = Release(desktop)
    desktop.write_hosts([host("kept", connectOnStartup=True)])
    hosts_file = os.path.join(desktop.home, ".local/share/Velmora/hosts.json")
    watcher = Watcher(desktop)
    old = desktop.start(release.program)
    watcher.wait_for_item()
    wait_until(lambda: ssh_children(old), "its tunnel starts")
    with open(hosts_file, encoding="utf-8") as file:
        hosts_before = json.load(file)

    wait_until(lambda: old.poll() is not None, "the old program ends", 60)
    assert old.returncode == 0, old.returncode
    assert not ssh_children(old), "the tunnels of the old program were stopped"
    pid = wait_until(release.running, "the new program runs")
    new = Process(pid)
    try:
        assert release.version() == "2.0"
        assert not os.path.exists(release.bundle + ".old")
        assert pid != old.pid
        wait_until(lambda: ssh_children(new), "the new program starts the profile's tunnel")
        with open(hosts_file, encoding="utf-8") as file:
            assert json.load(file) == hosts_before
        assert release.noted("status")[-3:] == ["Downloading v2.0…", "Verifying…", "Installing…"]
        left = [os.path.join(folder, name) for folder, _, names in os.walk(release.temporary) for name in names]
        assert [os.path.basename(name) for name in left] == ["install.sh"], left
    finally:
        new.end()


def refuse(desktop, error, prepare):
    release = Release(desktop)
    prepare(release)
    before = release.snapshot()
    watcher = Watcher(desktop)
    old = desktop.start(release.program)
    watcher.wait_for_item()
    wait_until(lambda: release.noted("error"), "the update fails", 60)
    assert error in release.noted("error")[0], release.noted("error")
    stays(lambda: old.poll() is None, "the old program goes on")
    assert release.snapshot() == before
    assert os.listdir(release.temporary) == []
    old.terminate()
    assert old.wait(10) == 0


def an_archive_with_another_checksum_changes_nothing(desktop):
    refuse(desktop, "Download rejected: checksum doesn't match the manifest.",
           lambda release: release.edit_feed(sha256="0" * 64))


def a_bundle_of_another_key_changes_nothing(desktop):
    def use_another_key(release):
        key = os.path.join(desktop.home, "another")
        subprocess.run(["/usr/bin/ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", key], check=True)
        with open(key + ".pub", encoding="utf-8") as file:
            desktop.environment["VELMORA_TEST_UPDATE_KEY"] = file.read().strip()

    refuse(desktop, "Download rejected: not signed by the expected developer.", use_another_key)


def a_quit_during_the_download_leaves_nothing(desktop):
    release = Release(desktop)
    slow = threading.Event()

    class Slow(http.server.BaseHTTPRequestHandler):
        def do_GET(self):
            self.send_response(200)
            self.send_header("Content-Length", "100000000")
            self.end_headers()
            self.wfile.write(b"x" * 100000)
            self.wfile.flush()
            slow.wait(60)

        def log_message(self, *_):
            pass

    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Slow)
    server.daemon_threads = True
    threading.Thread(target=server.serve_forever, daemon=True).start()
    release.edit_feed(url=f"http://127.0.0.1:{server.server_address[1]}/a.zip")
    watcher = Watcher(desktop)
    old = desktop.start(release.program)
    watcher.wait_for_item()
    wait_until(lambda: os.listdir(release.temporary), "the download begins", 60)
    old.terminate()
    assert old.wait(5) == 0
    slow.set()
    server.shutdown()
    assert os.listdir(release.temporary) == []


if __name__ == "__main__":
    run_tests(
        bundle_one_updates_itself_to_bundle_two,
        an_archive_with_another_checksum_changes_nothing,
        a_bundle_of_another_key_changes_nothing,
        a_quit_during_the_download_leaves_nothing,
    )
