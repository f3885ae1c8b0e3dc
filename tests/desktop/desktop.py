"""A desktop of the tests' own: session bus, X server, home directory, panel; and the program on it.

Nothing here touches the desktop of whoever runs the tests.
"""

import json
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import time
import uuid

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

PROGRAM = os.environ["VELMORA_PROGRAM"]
PATIENCE = 20.0  # seconds; only a failing test waits that long


def wait_until(condition, what, timeout=PATIENCE):
    """Waits for something another process does, and returns what the condition returned."""
    end = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise AssertionError(f"waited {timeout} s in vain: {what}")
        time.sleep(0.02)


def stays(condition, what, seconds=0.5):
    """Sees that something holds for a while."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        assert condition(), what
        time.sleep(0.02)


# No folder of services: what is to run on the bus is started by the test, and nothing comes back by itself.
BUS_CONFIGURATION = """<busconfig>
  <type>session</type>
  <listen>{address}</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""


class Desktop:
    """Session bus, X server and home directory, for as long as a `with` block lasts."""

    def __enter__(self):
        self.home = tempfile.mkdtemp(prefix="velmora-desktop-")
        self.runtime = os.path.join(self.home, "run")
        os.mkdir(self.runtime, 0o700)
        self.environment = {
            "HOME": self.home,
            "XDG_RUNTIME_DIR": self.runtime,
            "PATH": os.environ["PATH"],
            "LANG": "C.UTF-8",
            "QT_QPA_PLATFORM": "xcb",
            "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "0",
        }
        for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]
        self.processes = []
        self.program_options = {}  # for Popen
        try:
            self.start_bus()
            self.start_display()
        except BaseException:
            self.__exit__(None, None, None)
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.terminate()  # a display server removes its lock and its socket
            try:
                process.wait(5)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    def start(self, *command, **options):
        process = subprocess.Popen(command, env=self.environment, **options)
        self.processes.append(process)
        return process

    def start_bus(self):
        """Each time at the same address, as a login has it."""
        self.bus_address = f"unix:path={self.runtime}/bus"
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus_address
        configuration = os.path.join(self.runtime, "bus.conf")
        with open(configuration, "w", encoding="utf-8") as file:
            file.write(BUS_CONFIGURATION.format(address=self.bus_address))
        self.bus = self.start("dbus-daemon", "--config-file", configuration, "--nofork", "--print-address=1",
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.bus.stdout.readline()

    def start_display(self):
        """A new X server; its number becomes that of the desktop."""
        # A number of our own: servers that look for a free one and leave at the same time trip over each other.
        display = ":" + str(100 + os.getpid() % 50000)
        reading, writing = os.pipe()
        # Without "-r" a key that a busy machine holds down for long would count again and again.
        self.display = self.start("Xvfb", display, "-displayfd", str(writing), "-screen", "0", "1024x768x24",
                                  "-nolisten", "tcp", "-noreset", "-r", pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as numbers:
            self.environment["DISPLAY"] = ":" + numbers.readline().strip()

    def connect_to_bus(self):
        flags = Gio.DBusConnectionFlags
        return Gio.DBusConnection.new_for_address_sync(
            self.bus_address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)

    def wait_for_name(self, bus, name):
        """Waits until somebody on the session bus answers to it."""
        wait_until(lambda: bus.call_sync(
            "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
            GLib.Variant("(s)", (name,)), None, Gio.DBusCallFlags.NONE, -1, None).unpack()[0], f"{name} is there")

    @property
    def hosts_path(self):
        return os.path.join(self.home, ".local/share/Velmora/hosts.json")

    def write_hosts(self, hosts):
        os.makedirs(os.path.dirname(self.hosts_path), 0o700, exist_ok=True)
        with open(self.hosts_path, "w", encoding="utf-8") as file:
            json.dump(hosts, file)

    def saved_hosts(self):
        """What the program has saved; nothing until it has."""
        try:
            with open(self.hosts_path, encoding="utf-8") as file:
                return json.load(file)
        except FileNotFoundError:
            return []

    def start_program(self):
        return self.start(PROGRAM, **self.program_options)

    def windows(self):
        """The visible windows that the program has named "Velmora"; a window manager's frames have no class."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--all", "--class", "--name",
                                "^velmora$"], env=self.environment,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False)
        return found.stdout.split()

    def run(self, *command):
        return subprocess.run(command, env=self.environment, stdout=subprocess.PIPE, text=True, check=True,
                              timeout=PATIENCE).stdout


def host(name, **fields):
    """A profile that connects when it is told to. Its ssh talks to a program that never answers and
    ends with it, so it stays and leaves nothing."""
    return {
        "id": str(uuid.uuid4()).upper(),
        "name": name,
        "hostname": "127.0.0.1",
        "connectOnStartup": False,
        "customOptions": "ProxyCommand=grep never-said",
        **fields,
    }


def refusing_host(name):
    """A profile whose ssh ends at once."""
    return host(name, customOptions="ProxyCommand=false")


WATCHER_XML = """
<node><interface name="org.kde.StatusNotifierWatcher">
  <method name="RegisterStatusNotifierItem"><arg name="service" type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg name="service" type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
  <signal name="StatusNotifierHostRegistered"/>
</interface></node>
"""


class Watcher:
    """The part of a panel that status icons register with. Answers from a thread of its own."""

    NAME = "org.kde.StatusNotifierWatcher"
    PATH = "/StatusNotifierWatcher"

    def __init__(self, desktop, has_host=True):
        self.items = []
        self.registered_at = None
        self.has_host = has_host
        self._context = GLib.MainContext()
        self._loop = GLib.MainLoop(self._context)
        self._ready = threading.Event()
        self._thread = threading.Thread(target=self._serve, args=(desktop,), daemon=True)
        self._thread.start()
        assert self._ready.wait(PATIENCE)

    def _serve(self, desktop):
        self._context.push_thread_default()
        self._bus = desktop.connect_to_bus()
        interface = Gio.DBusNodeInfo.new_for_xml(WATCHER_XML).interfaces[0]
        self._bus.register_object(self.PATH, interface, self._called, self._property, None)
        self._bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                            GLib.Variant("(su)", (self.NAME, 4)), None, Gio.DBusCallFlags.NONE, -1, None)
        self._ready.set()
        self._loop.run()
        self._bus.close_sync(None)
        self._context.pop_thread_default()

    def _called(self, _bus, sender, _path, _interface, method, parameters, invocation):
        if method == "RegisterStatusNotifierItem":
            self.registered_at = time.monotonic()
            service = parameters.unpack()[0]
            self.items.append(sender if service.startswith("/") else service)
        invocation.return_value(None)

    def _property(self, _bus, _sender, _path, _interface, name):
        return {
            "RegisteredStatusNotifierItems": GLib.Variant("as", self.items),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", self.has_host),
            "ProtocolVersion": GLib.Variant("i", 0),
        }[name]

    def announce_host(self):
        def announce():
            self.has_host = True
            self._bus.emit_signal(None, self.PATH, self.NAME, "StatusNotifierHostRegistered", None)

        self._context.invoke_full(GLib.PRIORITY_DEFAULT, announce)

    def stop(self):
        self._context.invoke_full(GLib.PRIORITY_DEFAULT, self._loop.quit)
        self._thread.join(PATIENCE)

    def wait_for_item(self):
        return wait_until(lambda: self.items and self.items[-1], "a status icon registers")


class Entry:
    """One line of the menu."""

    def __init__(self, identifier, properties):
        self.id = identifier
        self.properties = properties

    @property
    def label(self):
        return self.properties.get("label", "")

    @property
    def enabled(self):
        return self.properties.get("enabled", True)

    @property
    def visible(self):
        return self.properties.get("visible", True)

    @property
    def separator(self):
        return self.properties.get("type") == "separator"

    @property
    def text(self):
        """What a panel shows: "_" marks a mnemonic and is not seen, "__" is an underscore; word joiners have no width."""
        seen, rest = "", self.label
        while rest:
            step = 2 if rest.startswith("__") else 1
            seen += "_" if step == 2 else rest[0].replace("_", "")
            rest = rest[step:]
        return seen.replace("\u2060", "")

    @property
    def mnemonic(self):
        """The character that a panel underlines, or nothing."""
        rest = self.label.replace("__", "")
        position = rest.find("_")
        return rest[position + 1:position + 2] if position >= 0 else ""

    def dot(self):
        """The colour in the middle of the entry's icon, as (red, green, blue)."""
        pixel = subprocess.run(["convert", "png:-", "-crop", "1x1+8+8", "-depth", "8", "rgb:-"],
                               input=bytes(self.properties["icon-data"]), stdout=subprocess.PIPE, check=True)
        return tuple(pixel.stdout)


class Item:
    """A status icon and its menu, as a panel sees them."""

    INTERFACE = "org.kde.StatusNotifierItem"

    def __init__(self, desktop, service):
        self._bus = desktop.connect_to_bus()
        self.service = service

    def _call(self, path, interface, method, parameters, answer=None):
        return self._bus.call_sync(self.service, path, interface, method, parameters,
                                   GLib.VariantType.new(answer) if answer else None, Gio.DBusCallFlags.NONE,
                                   int(PATIENCE * 1000), None)

    def property(self, name):
        return self._call("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                          GLib.Variant("(ss)", (self.INTERFACE, name)), "(v)").unpack()[0]

    def activate(self):
        self._call("/StatusNotifierItem", self.INTERFACE, "Activate", GLib.Variant("(ii)", (0, 0)))

    def pixmaps(self):
        """Side length to (alpha at x, y) function."""
        return {width: lambda x, y, w=width, b=bytes(data): b[(y * w + x) * 4]
                for width, _height, data in self.property("IconPixmap")}

    def slashed(self):
        return self.pixmaps()[24](4, 4) > 128

    def layout(self):
        path = self.property("Menu")
        _revision, (_root, _properties, children) = self._call(
            path, "com.canonical.dbusmenu", "GetLayout", GLib.Variant("(iias)", (0, -1, [])),
            "(u(ia{sv}av))").unpack()
        return [Entry(identifier, properties) for identifier, properties, _children in children]

    def entries(self):
        """What can be seen."""
        return [entry for entry in self.layout() if entry.visible]

    def texts(self):
        return ["-" if entry.separator else entry.text for entry in self.entries()]

    def entry(self, text):
        for entry in self.entries():
            if entry.text == text:
                return entry
        raise AssertionError(f"no entry {text!r} among {self.texts()}")

    def click(self, text):
        path = self.property("Menu")
        self._call(path, "com.canonical.dbusmenu", "Event",
                   GLib.Variant("(isvu)", (self.entry(text).id, "clicked", GLib.Variant("i", 0), 0)))


def ssh_children(process):
    """The arguments of every ssh that the program runs."""
    found = []
    for directory in os.listdir("/proc"):
        if not directory.isdigit():
            continue
        try:
            with open(f"/proc/{directory}/stat", encoding="utf-8") as file:
                parent = int(file.read().rsplit(")", 1)[1].split()[1])
            with open(f"/proc/{directory}/cmdline", "rb") as file:
                arguments = file.read().split(b"\0")
        except OSError:
            continue
        if parent == process.pid and arguments[0].endswith(b"ssh"):
            found.append(arguments)
    return found


def ssh_pids(process):
    """The numbers of every ssh that the program runs."""
    return [pid for pid in children(process.pid) if words_of(pid)[0].endswith(b"ssh")]


def children(parent):
    found = []
    for task in read_lines(f"/proc/{parent}/task"):
        for line in read_lines(f"/proc/{parent}/task/{task}/children"):
            found += [int(pid) for pid in line.split()]
    return found


def descendants(parent):
    found = []
    for pid in children(parent):
        found += [pid, *descendants(pid)]
    return found


def read_lines(path):
    """Lines of a file, or names in a folder; nothing when it is gone."""
    try:
        if os.path.isdir(path):
            return os.listdir(path)
        with open(path, encoding="utf-8") as file:
            return file.read().splitlines()
    except OSError:
        return []


def words_of(pid, what="cmdline"):
    """Arguments or environment of a process."""
    try:
        with open(f"/proc/{pid}/{what}", "rb") as file:
            return file.read().split(b"\0")
    except OSError:
        return [b""]


def runs(pid):
    for line in read_lines(f"/proc/{pid}/stat"):
        return line.rsplit(")", 1)[1].split()[0] != "Z"
    return False


def descriptors(process):
    return len(os.listdir(f"/proc/{process.pid}/fd"))


def run_tests(*tests):
    """Runs each test, or the ones named on the command line, on a desktop of its own."""
    wanted = sys.argv[1:]
    failed = 0
    for test in tests:
        if wanted and test.__name__ not in wanted:
            continue
        with Desktop() as desktop:
            try:
                test(desktop)
                print(f"ok      {test.__name__}", flush=True)
            except Exception as error:  # noqa: BLE001  a test program reports and goes on
                failed += 1
                print(f"FAILED  {test.__name__}: {type(error).__name__}: {error}", flush=True)
    sys.exit(1 if failed else 0)
