"""Two copies of the program on two machines' homes that share one folder."""

import json
import os

import desktop as stand
from desktop import host, run_tests, ssh_children, wait_until

SHARE_WITHIN = 6.0  # seconds from a save on one side until both hosts files are equal


def hosts_path(home):
    return os.path.join(home, ".local/share/Velmora/hosts.json")


def names_in(path):
    try:
        with open(path, encoding="utf-8") as file:
            return [each["name"] for each in json.load(file)]
    except (OSError, ValueError):
        return None


def content(path):
    try:
        with open(path, "rb") as file:
            return file.read()
    except OSError:
        return None


class Pair:
    """This desktop's home and a second one, both pointed at one folder."""

    def __init__(self, desktop):
        self.desktop = desktop
        self.folder = os.path.join(desktop.home, "shared")
        self.homes = [desktop.home, os.path.join(desktop.home, "other")]
        os.mkdir(self.folder)
        os.makedirs(os.path.join(self.homes[1], "run"), 0o700)
        for home in self.homes:
            os.makedirs(os.path.join(home, ".config"))
            with open(os.path.join(home, ".config/com.velmora.app.conf"), "w", encoding="utf-8") as file:
                file.write(f"[General]\nsyncFolderPath={self.folder}\n")
        self.programs = []

    def start(self):
        for home in self.homes:
            environment = {**self.desktop.environment, "HOME": home, "XDG_RUNTIME_DIR": os.path.join(home, "run")}
            program = stand.subprocess.Popen([stand.PROGRAM], env=environment, stdin=stand.subprocess.PIPE)
            self.desktop.processes.append(program)
            self.programs.append(program)

    def save_in(self, program, hosts):
        """The user of one of the programs saves."""
        pipe = self.programs[program].stdin
        pipe.write(json.dumps(hosts).encode() + b"\n")
        pipe.flush()

    def save_elsewhere(self, hosts):
        """A third machine saves: whole, as the service that keeps the folder in step delivers it."""
        temporary = os.path.join(self.folder, ".incoming")
        with open(temporary, "w", encoding="utf-8") as file:
            json.dump(hosts, file)
        os.rename(temporary, os.path.join(self.folder, "velmora-sync.json"))

    def wait_for(self, hosts, what):
        names = [each["name"] for each in hosts]
        paths = [hosts_path(home) for home in self.homes]
        wait_until(lambda: names_in(paths[0]) == names and content(paths[0]) == content(paths[1]),
                   f"{what}, and both hosts files are equal", SHARE_WITHIN)


def what_one_creates_edits_reorders_or_deletes_the_other_has_within_seconds(desktop):
    pair = Pair(desktop)
    pair.start()
    stand.stays(lambda: names_in(hosts_path(pair.homes[0])) is None, "nothing is saved by itself", 0.2)
    hosts = [host("one"), host("two")]
    pair.save_in(0, hosts)
    pair.wait_for(hosts, "the first creates two")

    hosts.append(host("three"))
    pair.save_in(1, hosts)
    pair.wait_for(hosts, "the second creates one more")

    hosts[0]["name"] = "one, renamed"
    hosts[0]["port"] = 2222
    pair.save_in(0, hosts)
    pair.wait_for(hosts, "the first edits one")

    hosts.reverse()
    pair.save_in(1, hosts)
    pair.wait_for(hosts, "the second reorders them")

    del hosts[1]
    pair.save_in(0, hosts)
    pair.wait_for(hosts, "the first deletes one")


def a_list_from_a_third_machine_reaches_both(desktop):
    pair = Pair(desktop)
    hosts = [host("one"), host("two")]
    pair.save_elsewhere(hosts)
    pair.start()
    pair.wait_for(hosts, "both take the folder's list over at their first look")
    hosts.reverse()
    pair.save_elsewhere(hosts)
    pair.wait_for(hosts, "and the next one")


def a_host_that_is_removed_elsewhere_is_stopped_and_the_others_run_on(desktop):
    pair = Pair(desktop)
    hosts = [host("stays", connectOnStartup=True), host("goes", connectOnStartup=True)]
    desktop.write_hosts(hosts)
    pair.save_elsewhere(hosts)
    pair.start()
    wait_until(lambda: len(ssh_children(pair.programs[0])) == 2, "both hosts of the first home are started")
    pair.wait_for(hosts, "both have the list")
    staying = [arguments for arguments in ssh_children(pair.programs[0])]
    pair.save_in(1, hosts[:1])
    pair.wait_for(hosts[:1], "the shorter list arrives")
    wait_until(lambda: len(ssh_children(pair.programs[0])) == 1, "the removed host's ssh gets SIGTERM and ends")
    assert ssh_children(pair.programs[0])[0] in staying


def a_folder_that_vanishes_changes_nothing_and_is_used_again_when_it_is_back(desktop):
    pair = Pair(desktop)
    hosts = [host("one")]
    pair.save_elsewhere(hosts)
    pair.start()
    pair.wait_for(hosts, "both have the list")
    hidden = pair.folder + ".away"
    os.rename(pair.folder, hidden)
    stand.stays(lambda: all(names_in(hosts_path(home)) == ["one"] for home in pair.homes), "the list stays", 6.0)
    os.rename(hidden, pair.folder)
    hosts.append(host("two"))
    pair.save_elsewhere(hosts)
    pair.wait_for(hosts, "the folder is used again")


run_tests(
    what_one_creates_edits_reorders_or_deletes_the_other_has_within_seconds,
    a_list_from_a_third_machine_reaches_both,
    a_host_that_is_removed_elsewhere_is_stopped_and_the_others_run_on,
    a_folder_that_vanishes_changes_nothing_and_is_used_again_when_it_is_back,
)
