"""What a user of the program has: a window manager, eyes (the accessibility bus), a mouse and a keyboard.

The accessibility bus is asked afresh each time, nothing is remembered: what is seen is what the program shows now.
"""

import contextlib
import subprocess
import time

from gi.repository import Gio, GLib

from desktop import wait_until

ACCESSIBLE = "org.a11y.atspi.Accessible"
# Bits of the states, as the protocol numbers them.
ACTIVE, ENABLED, FOCUSED, SELECTED, SHOWING = 1, 8, 12, 23, 25
ASK_WITHIN = 10000  # milliseconds


class Gone(Exception):
    """It was there a moment ago."""


class Node:
    """Something in a window: a button, a field, a row, or the window itself."""

    def __init__(self, bus, reference):
        self._bus = bus
        self._service, self._path = reference

    def __eq__(self, other):
        return (self._service, self._path) == (other._service, other._path)

    def _call(self, interface, method, parameters=None):
        try:
            return self._bus.call_sync(self._service, self._path, interface, method, parameters, None,
                                       Gio.DBusCallFlags.NONE, ASK_WITHIN, None).unpack()
        except GLib.Error as error:
            raise Gone(f"{method}: {error.message}") from error

    def _property(self, interface, name):
        return self._call("org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", (interface, name)))[0]

    @property
    def name(self):
        return self._property(ACCESSIBLE, "Name")

    @property
    def role(self):
        return self._call(ACCESSIBLE, "GetRoleName")[0]

    @property
    def children(self):
        return [Node(self._bus, reference) for reference in self._call(ACCESSIBLE, "GetChildren")[0]]

    @property
    def text(self):
        """What stands in a field."""
        return self._call("org.a11y.atspi.Text", "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    def has(self, state):
        low, high = self._call(ACCESSIBLE, "GetState")[0]
        return bool((low | high << 32) >> state & 1)

    @property
    def extents(self):
        """x, y, width and height on the screen."""
        return self._call("org.a11y.atspi.Component", "GetExtents", GLib.Variant("(u)", (0,)))[0]

    @property
    def center(self):
        x, y, width, height = self.extents
        return x + width // 2, y + height // 2

    def walk(self):
        """Itself and all in it that can be seen."""
        with contextlib.suppress(Gone):
            if not self.has(SHOWING):
                return
            yield self
            for child in self.children:
                yield from child.walk()

    def outline(self, depth=0):
        """For whoever writes or mends a test."""
        lines = [f"{'  ' * depth}{self.role} {self.name!r}"]
        for child in self.children:
            with contextlib.suppress(Gone):
                lines += child.outline(depth + 1)
        return lines


class Window(Node):
    """A window or a dialog of the program."""

    def find(self, name, role=None):
        """The first of that name. Waits for it."""
        return wait_until(lambda: self.seek(name, role), f"{name!r} is in {self.title()!r}")

    def seek(self, name, role=None):
        """The same, but what is not there is None."""
        for node in self.walk():
            with contextlib.suppress(Gone):
                if node.name == name and role in (None, node.role):
                    return node
        return None

    def title(self):
        with contextlib.suppress(Gone):
            return self.name
        return "a window that is gone"

    def texts(self):
        return [node.name for node in self.walk() if node.role in ("label", "list item")]

    def shows(self, name):
        return self.seek(name) is not None


class Screen:
    """A user in front of the program."""

    def __init__(self, desktop):
        self.desktop = desktop
        desktop.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
        quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        desktop.start("openbox", **quiet)
        desktop.start("/usr/libexec/at-spi-bus-launcher", "--launch-immediately", **quiet)
        session = desktop.connect_to_bus()
        desktop.wait_for_name(session, "org.a11y.Bus")
        address = session.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None,
                                    Gio.DBusCallFlags.NONE, -1, None).unpack()[0]
        flags = Gio.DBusConnectionFlags
        self._bus = Gio.DBusConnection.new_for_address_sync(
            address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)
        self._root = Node(self._bus, ("org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"))
        wait_until(lambda: "window id" in self._ask("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"),
                   "the window manager runs")

    def _ask(self, *command):
        return subprocess.run(command, env=self.desktop.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              text=True, check=False).stdout

    # What is seen

    def windows(self):
        """Those that can be seen."""
        found = []
        with contextlib.suppress(Gone):
            for application in self._root.children:
                found += [Window(self._bus, (window._service, window._path)) for window in application.children
                          if window.has(SHOWING)]
        return found

    def titles(self):
        return sorted(window.title() for window in self.windows())

    def seek_window(self, title):
        return next((window for window in self.windows() if window.title() == title), None)

    def window(self, title):
        """Waits until it is there, has its place, and is the one that the keys go to."""
        return self._ready(lambda: self.seek_window(title), f"the window {title!r}")

    def window_that_says(self, text):
        """The same for one that is known by what stands in it."""
        return self._ready(lambda: next((window for window in self.windows() if window.shows(text)), None),
                           f"the window that says {text!r}")

    def _ready(self, seek, what):
        window = wait_until(seek, f"{what} opens")
        end = time.monotonic() + 5
        while not window.has(ACTIVE) and time.monotonic() < end:
            time.sleep(0.05)
        if not window.has(ACTIVE):  # on a busy machine a window manager may leave the focus where it was: ask it
            self.desktop.run("sh", "-c", 'xdotool search --onlyvisible --name "^$0$" windowactivate || true',
                             window.title())
        wait_until(lambda: window.has(ACTIVE), f"{what} has the keyboard")
        return window

    def active(self):
        """The window that the keys go to, if any has them."""
        for window in self.windows():
            with contextlib.suppress(Gone):
                if window.has(ACTIVE):
                    return window
        return None

    def close(self, title):
        """Closes the window that the keys go to. A window manager that is busy may miss the keys once."""
        self.key("alt+F4")
        end = time.monotonic() + 3
        while self.seek_window(title) and time.monotonic() < end:
            time.sleep(0.05)
        active = self.active()
        if active and active.title() == title:
            self.key("alt+F4")
        self.gone(title)

    def gone(self, title):
        wait_until(lambda: not self.seek_window(title), f"the window {title!r} closes")

    def focused(self):
        """What the keys go to."""
        window = self.active()
        for node in window.walk() if window else ():
            with contextlib.suppress(Gone):
                if node.has(FOCUSED) and node.role != "panel":  # a row of buttons says so of the first of them
                    return node
        return None

    # The keyboard

    def key(self, *keys):
        self.desktop.run("xdotool", "key", "--delay", "5", *keys)

    def type(self, text):
        self.desktop.run("xdotool", "type", "--delay", "5", "--", text)

    # The mouse

    def click(self, node, times=1, button=1):
        wait_until(lambda: node.has(ENABLED), f"{node.role} {node.name!r} can be clicked")
        x, y = node.center
        self.desktop.run("xdotool", "mousemove", str(x), str(y), "click", "--repeat", str(times), "--delay", "30",
                         str(button))

    def drag(self, node, x, y):
        """Takes a row to a place on the screen. A hand makes many small moves, and so does this."""
        from_x, from_y = node.center
        steps = [f"mousemove {from_x} {from_y} mousedown 1"]
        for step in range(1, 11):
            steps.append(f"sleep 0.03 mousemove {from_x + (x - from_x) * step // 10} {from_y + (y - from_y) * step // 10}")
        for wobble in (1, 0, 1, 0):
            steps.append(f"sleep 0.05 mousemove {x + wobble} {y}")
        steps.append("sleep 0.1 mouseup 1")
        self.desktop.run("xdotool", *" ".join(steps).split())

    def fill(self, field, text):
        """Writes a field anew."""
        self.click(field)
        wait_until(lambda: field.has(FOCUSED), f"{field.name!r} takes the keys")
        self.key("ctrl+a")
        self.type(text)

    def choose(self, window, menu, entry):
        """Chooses an entry of the window's menus."""
        top = window.find(menu, "menu item")
        self.click(top)
        below = wait_until(lambda: next((node for node in top.children[0].walk() if node.name == entry), None),
                           f"{entry!r} is in {menu!r}")
        self.click(below)


class Keyring:
    """An open keyring of this desktop's own."""

    SERVICE = "org.freedesktop.secrets"

    def __init__(self, desktop):
        self._desktop = desktop
        self.daemon = desktop.start(
            "gnome-keyring-daemon", "--foreground", "--components=secrets", "--unlock",
            stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.daemon.stdin.write(b"keyring password")
        self.daemon.stdin.close()
        desktop.wait_for_name(desktop.connect_to_bus(), self.SERVICE)

    def lock(self):
        path = "/org/freedesktop/secrets"
        self._desktop.connect_to_bus().call_sync(
            self.SERVICE, path, "org.freedesktop.Secret.Service", "Lock",
            GLib.Variant("(ao)", ([path + "/aliases/default"],)), None, Gio.DBusCallFlags.NONE, -1, None)

    def wait_for_end(self):
        """It goes by itself when the session bus has gone."""
        self.daemon.wait(10)

    def password(self, host_id):
        """What is kept for a host, or None."""
        found = subprocess.run(["secret-tool", "lookup", "service", "com.velmora.app", "account", host_id],
                               env=self._desktop.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                               text=True, check=False)
        return found.stdout if found.returncode == 0 else None
