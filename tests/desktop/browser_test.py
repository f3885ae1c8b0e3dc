"""A real browser that is pointed at the served script reaches each host through the right tunnel."""

import contextlib
import os
import signal
import subprocess

from desktop import host, run_tests, wait_until
from servers import PageServer, Sshd, free_port, listens

BROWSER_PATIENCE = 90.0  # seconds; only a failing test waits that long

# Where a page server is asked tells who asked: the browser itself, or the server at the end of a tunnel.
DIRECT, INSIDE, ELSEWHERE = "127.0.0.1", "127.0.0.2", "127.0.0.3"


class Stand:
    """Two servers, the program with a tunnel to each, and a page server that both of them and the browser reach."""

    def __init__(self, desktop, exceptions):
        self.desktop = desktop
        self.pages = PageServer([DIRECT, INSIDE, ELSEWHERE])
        # Each server knows the names of both, and its own addresses for them: what took the wrong way is seen.
        names = ["www.inside.example", "open.inside.example", "www.elsewhere.example"]
        self.inside = Sshd(desktop, "inside", dict.fromkeys(names, INSIDE))
        self.elsewhere = Sshd(desktop, "elsewhere", dict.fromkeys(names, ELSEWHERE))
        self._start_program(exceptions)

    def _start_program(self, exceptions):
        directory = os.path.join(self.desktop.home, ".config")
        os.makedirs(directory, 0o700)
        with open(os.path.join(directory, "com.velmora.app.conf"), "w", encoding="utf-8") as file:
            file.write(f"[General]\nproxyExceptions={exceptions}\n")
        ports = [free_port(), free_port()]
        self.desktop.write_hosts([
            tunnel("Inside", self.inside, ports[0], "*.inside.example"),
            tunnel("Elsewhere", self.elsewhere, ports[1], "*.elsewhere.example"),
        ])
        pac_port = free_port()
        self.script = f"http://127.0.0.1:{pac_port}/proxy.pac"
        self.desktop.environment["VELMORA_TEST_PAC_PORT"] = str(pac_port)
        self.desktop.start_program()
        wait_until(lambda: all(listens(port) for port in (pac_port, *ports)), "script and tunnels are up", timeout=60)

    def browse(self, name):
        """The page of that name, as the browser shows it."""
        profile = os.path.join(self.desktop.home, f"browser-{name}")
        browser = self.desktop.start(
            "chromium", "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--disable-dev-shm-usage",
            "--no-first-run", "--disable-background-networking", "--disable-component-update", "--disable-sync",
            "--disable-crash-reporter", f"--user-data-dir={profile}", f"--proxy-pac-url={self.script}",
            # What the browser looks up itself it finds here. A name that goes through a tunnel it does not look up.
            f"--host-resolver-rules=MAP * {DIRECT}",
            "--dump-dom", f"http://{name}:{self.pages.port}/page",
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
            start_new_session=True)
        try:
            return browser.communicate(timeout=BROWSER_PATIENCE)[0]
        finally:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(browser.pid, signal.SIGKILL)
            wait_until(lambda: not processes_with(profile), "the browser's processes end")

    def asked_for(self, name):
        """The addresses at which the page of that name was asked for."""
        return {address for address, asked, path in self.pages.requests if (asked, path) == (name, "/page")}

    def sees(self, name, address):
        page = self.browse(name)
        assert f"<p>{name} at {address}</p>" in page, f"the browser shows {page!r}"
        assert self.asked_for(name) == {address}, f"the page server was asked {self.pages.requests}"


def tunnel(name, sshd, port, patterns):
    return host(name, port=sshd.port, username=sshd.user, identityFile=sshd.user_key, connectOnStartup=True,
                customOptions="IdentitiesOnly=yes", forwardingRules=[
                    {"type": "Dynamic", "bindAddress": "127.0.0.1", "bindPort": port, "pacPatterns": patterns}])


def processes_with(text):
    """The processes whose command line holds the text."""
    found = []
    for pid in filter(str.isdigit, os.listdir("/proc")):
        with contextlib.suppress(OSError), open(f"/proc/{pid}/cmdline", "rb") as file:
            if text.encode() in file.read():
                found.append(pid)
    return found


@contextlib.contextmanager
def stand(desktop, exceptions=""):
    made = Stand(desktop, exceptions)
    try:
        yield made
    finally:
        made.pages.stop()


def each_host_is_reached_through_its_own_tunnel(desktop):
    with stand(desktop) as made:
        made.sees("www.inside.example", INSIDE)
        made.sees("www.elsewhere.example", ELSEWHERE)
        assert made.inside.targets() == {"www.inside.example"}, made.inside.targets()
        assert made.elsewhere.targets() == {"www.elsewhere.example"}, made.elsewhere.targets()


def an_excepted_name_and_one_without_a_rule_go_through_no_tunnel(desktop):
    with stand(desktop, exceptions="open.inside.example") as made:
        made.sees("open.inside.example", DIRECT)
        made.sees("www.nowhere.example", DIRECT)
        made.sees("www.inside.example", INSIDE)  # the rule around the exception still holds
        assert made.inside.targets() == {"www.inside.example"}, made.inside.targets()
        assert not made.elsewhere.targets(), made.elsewhere.targets()


if __name__ == "__main__":
    run_tests(each_host_is_reached_through_its_own_tunnel,
              an_excepted_name_and_one_without_a_rule_go_through_no_tunnel)
