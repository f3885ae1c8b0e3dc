"""What the kernel tells about processes. Memory is kilobytes."""

import os
import pathlib
import signal


def children(pid):
    found = []
    for task in pathlib.Path(f"/proc/{pid}/task").glob("*/children"):
        try:
            found += map(int, task.read_text().split())
        except OSError:
            pass
    return found


def descendants(pid):
    found = []
    for child in children(pid):
        found += [child, *descendants(child)]
    return found


def command_of(pid):
    try:
        return pathlib.Path(f"/proc/{pid}/comm").read_text().strip()
    except OSError:
        return ""


def ssh_below(pids):
    return [child for pid in pids for child in descendants(pid) if command_of(child) == "ssh"]


def ssh_of(pids, port):
    """The one below these processes that forwards this local port."""
    for pid in ssh_below(pids):
        if f"127.0.0.1:{port}:".encode() in pathlib.Path(f"/proc/{pid}/cmdline").read_bytes():
            return pid
    raise RuntimeError(f"no ssh forwards port {port}")


def memory(pid, kind):
    """`kind` as smaps_rollup calls it."""
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        return next(int(line.split()[1]) for line in file if line.startswith(kind + ":"))


def sleeps(pids):
    """Thread to how often it has gone to sleep of its own accord so far, and so has been woken."""
    found = {}
    for pid in pids:
        for status in pathlib.Path(f"/proc/{pid}/task").glob("*/status"):
            try:
                lines = status.read_text().splitlines()
            except OSError:
                continue  # the thread has ended
            found[status.parent.name] = next(int(line.split()[1]) for line in lines
                                             if line.startswith("voluntary_ctxt_switches"))
    return found


def wake_ups(before, after):
    """Between two answers of `sleeps`. A thread that has ended meanwhile was woken for that at least."""
    return sum(count - before.get(thread, 0) for thread, count in after.items()) + len(before.keys() - after.keys())


def connections():
    """Socket inode to (local port, remote port) of all established IPv4 connections."""
    found = {}
    for line in pathlib.Path("/proc/net/tcp").read_text().splitlines()[1:]:
        fields = line.split()
        if fields[3] == "01":
            found[fields[9]] = tuple(int(fields[side].split(":")[1], 16) for side in (1, 2))
    return found


def sockets(pid):
    found = set()
    try:
        for entry in os.scandir(f"/proc/{pid}/fd"):
            target = os.readlink(entry.path)
            if target.startswith("socket:["):
                found.add(target[8:-1])
    except OSError:
        pass  # it has gone
    return found


def end(pid):
    try:
        os.kill(pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
