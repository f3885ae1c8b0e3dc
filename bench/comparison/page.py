"""Writes docs/performance.md and its chart from what the sections measured."""

import math
import textwrap
from statistics import median

from . import chart

NAMES = {
    "velmora": "Velmora",
    "velmora-window": "Velmora, its window open",
    "autossh": "autossh",
    "loop-100ms": "restart loop, 100 ms",
    "loop-100ms-unlimited": "restart loop, 100 ms, no limit",
    "loop-5s": "restart loop, 5 s",
    "nginx-file": "nginx, from a file",
    "nginx-memory": "nginx, from its memory",
    "nginx-multi": "nginx, from its memory, `multi_accept`",
}

REPEAT = """```sh
scripts/install-packages --group run --group build --group bench
cmake --preset release -DVELMORA_BUILD_BENCH=ON && cmake --build --preset release
bench/compare                  # everything, about twelve minutes; on a machine that does nothing else
bench/compare recovery         # one section, and this page from the last results of all
```"""


def _time(seconds):
    return "gave up" if seconds is None else f"{seconds * 1000:.0f} ms" if seconds < 1 else f"{seconds:.1f} s"


def _seconds(seconds):
    return "gave up" if seconds is None else f"{seconds:.2f}"


def _times(count):
    return "once" if count == 1 else f"{count} times"


def _megabytes(kilobytes):
    return f"{kilobytes / 1024:.1f} MB"


def _table(head, rows):
    lines = ["| " + " | ".join(map(str, head)) + " |", "|" + "---|" + "---:|" * (len(head) - 1)]
    return "\n".join(lines + ["| " + " | ".join(map(str, row)) + " |" for row in rows])


def _wrapped(block):
    """Tables, headings, code and pictures stay as they are."""
    if block.startswith(("|", "#", "```", "!")):
        return block
    return "\n".join(textwrap.fill(line, 120, subsequent_indent="  " if line.startswith("- ") else "",
                                   break_long_words=False, break_on_hyphens=False) for line in block.splitlines())


def write(results, folder):
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "performance.svg").write_text(chart.draw(_panels(results)), encoding="utf-8")
    blocks = [*_head(results), *_summary(results), *_memory(results["memory"]), *_recovery(results["recovery"]),
              *_pac(results["pac"]), *_startup(results["startup"])]
    (folder / "performance.md").write_text("\n\n".join(map(_wrapped, blocks)) + "\n", encoding="utf-8")


# ---- figures that several places tell ----

def _each_autossh(memory):
    """Kilobytes."""
    arm = memory["arms"]["autossh"]
    return arm["pss_kb"] / arm["processes"]


def _break_even(memory):
    """From how many tunnels on one velmora is smaller than as many autossh."""
    further = memory["further_tunnel_kb"]
    once = memory["arms"]["velmora"]["pss_kb"] - memory["tunnels"] * further
    return math.ceil(once / (_each_autossh(memory) - further)) if _each_autossh(memory) > further else None


def _first(times):
    """A cut after a good while; the first ones tell."""
    return median(times[:3])


def _dates(results):
    dates = sorted({section["date"] for section in results.values()})
    return dates[0] if len(dates) == 1 else f"{dates[0]} to {dates[-1]}"


# ---- the page ----

def _head(results):
    machine = max(results.values(), key=lambda section: section["date"])["machine"]
    kind = "virtual machine, " if machine["virtual"] else ""
    rows = [
        ("date", _dates(results)),
        ("machine", f"{kind}{machine['processor']}, {machine['cores']} cores, {machine['memory_gb']} GB of memory"),
        ("system", f"{machine['system']}, Linux {machine['kernel']}"),
        ("Velmora", f"{machine['velmora']}, release build, Qt {machine['qt']}"),
        ("beside it", f"autossh {machine['autossh']}, nginx {machine['nginx']}, {machine['openssh']}; Debian's packages"),
    ]
    return ["# Performance",
            "Velmora beside what else keeps tunnels up, serves a proxy script or starts a window: measured in one run each, on "
            "one machine, with the same server and the same cut. `bench/compare` measured this and wrote this page.",
            "| | |\n|---|---|\n" + "\n".join(f"| {name} | {value} |" for name, value in rows), REPEAT]


def _summary(results):
    memory, recovery, pac, startup = (results[name] for name in ("memory", "recovery", "pac", "startup"))
    arms, cuts, away = memory["arms"], recovery["cuts"], recovery["away"]
    tunnels, gone = memory["tunnels"], recovery["away_seconds"]
    autossh_last = cuts["autossh"][-1]
    rows = [
        (f"memory of supervising {tunnels} tunnels", _megabytes(arms["velmora"]["pss_kb"]),
         f"autossh {_megabytes(arms['autossh']['pss_kb'])}"),
        ("memory of each further tunnel", f"{memory['further_tunnel_kb']:.1f} KB", f"autossh {_each_autossh(memory):.0f} KB"),
        (f"wake-ups of supervising them, in {memory['seconds']} s", arms["velmora"]["wake_ups"],
         f"autossh {arms['autossh']['wake_ups']}"),
        ("back after a cut", _time(_first(cuts["velmora"])),
         f"autossh {_time(_first(cuts['autossh']))}, restart loop {_time(_first(cuts['loop-100ms']))} "
         f"or {_time(_first(cuts['loop-5s']))}"),
        (f"back after {len(cuts['velmora'])} cuts in a row, the last", _time(cuts["velmora"][-1]),
         f"autossh {_time(autossh_last)}, restart loop {_time(cuts['loop-100ms'][-1])} or {_time(cuts['loop-5s'][-1])}"),
        (f"back after the server's return, away for {gone} s", _time(away["velmora"]["back"]),
         f"autossh {_time(away['autossh']['back'])}, restart loop {_time(away['loop-100ms']['back'])} "
         f"or {_time(away['loop-5s']['back'])}"),
        ("proxy scripts served in a second", f"{pac['servers']['velmora']['rate']:.0f}",
         f"nginx {pac['servers']['nginx-file']['rate']:.0f} (file), {pac['servers']['nginx-memory']['rate']:.0f} (memory)"),
        ("start to the tray's icon", f"{startup['tray']['velmora']['ms']:.0f} ms",
         f"minimal Qt program {startup['tray']['minimal']['ms']:.0f} ms"),
        ("start to the window", f"{startup['window']['velmora']['ms']:.0f} ms",
         f"minimal Qt program {startup['window']['minimal']['ms']:.0f} ms"),
    ]
    return ["## In short", _table(("", "Velmora", "beside it"), rows), "![The figures of this page as a chart](performance.svg)",
            "### What that means", "\n".join(_verdicts(memory, recovery))]


def _verdicts(memory, recovery):
    arms, cuts, away = memory["arms"], recovery["cuts"], recovery["away"]
    even = _break_even(memory)
    lines = [
        f"- **autossh is smaller.** One autossh takes {_each_autossh(memory):.0f} KB, Velmora "
        f"{_megabytes(arms['velmora']['pss_kb'])} once, because it has a tray, windows and Qt with it." +
        (f" One Velmora is smaller than as many autossh from about {even} tunnels on; few people have so many." if even else ""),
        f"- **autossh and a restart loop with systemd's own delay react at once**: {_time(_first(cuts['autossh']))} and "
        f"{_time(_first(cuts['loop-100ms']))} after a single cut. Velmora waits five seconds before its first retry, by design: "
        "a server that has just gone is not asked at once, and the menu shows why and for how long. "
        "Who cannot spare five seconds takes autossh, or clicks the host in the menu, which connects at once.",
    ]
    return lines + _verdicts_of_trouble(cuts, away, recovery["away_seconds"])


def _verdicts_of_trouble(cuts, away, seconds):
    lines, ours = [], away["velmora"]["back"]
    if cuts["autossh"][-1] is None or cuts["autossh"][-1] > 2 * cuts["velmora"][-1]:
        lines.append(f"- **A line that breaks again and again** is where Velmora is quicker. After {len(cuts['velmora'])} cuts "
                     "in a row, each four seconds after the tunnel carried bytes again, it still needs "
                     f"{_time(cuts['velmora'][-1])}; autossh takes them for failures in quick succession and has come to "
                     f"{_time(cuts['autossh'][-1])}. A tunnel of Velmora's that held for three seconds starts with the first "
                     "delay again.")
    quicker = [NAMES[name] for name, each in away.items() if each["back"] is not None and each["back"] < ours]
    slower = [f"{NAMES[name]} {_time(each['back'])}" for name, each in away.items()
              if each["back"] is not None and each["back"] > ours]
    text = (f"- **A server that is away for {seconds} s.** Velmora's delays double from 5 to 60 seconds, so it was back "
            f"{_time(ours)} after the server; it had started ssh {_times(away['velmora']['starts'])}.")
    if quicker:
        text += f" Quicker: {', '.join(quicker)}."
    if slower:
        text += f" Slower: {', '.join(slower)}."
    gone = [NAMES[name] for name, each in away.items() if each["back"] is None]
    if gone:
        text += (f" Not back at all: {', '.join(gone)}; with its defaults systemd gives a unit up that would start more than "
                 "five times in ten seconds.")
    lines.append(text + " What an outage costs at its end depends on when in a delay it ends: at worst the whole of it, which "
                        "is a minute with Velmora, and grows to ten with autossh.")
    return lines


def _memory(memory):
    rows = []
    for name, arm in memory["arms"].items():
        count = memory["tunnels"]
        rows.append((NAMES[name], arm["processes"], _megabytes(arm["pss_kb"]), f"{arm['pss_kb'] / count:.0f} KB",
                     _megabytes(arm["private_kb"]), _megabytes(arm["pss_kb"] + arm["ssh_pss_kb"]),
                     arm["wake_ups"], f"{arm['wake_ups'] / count:.2f}", arm["wake_ups"] + arm["ssh_wake_ups"]))
    return [
        "## Memory and wake-ups",
        f"{memory['tunnels']} connected tunnels to one sshd, each with a Local forwarding, doing nothing. \"With ssh\" adds the "
        "ssh processes, which are the same on both sides. Memory is the proportional set (PSS): a page that n processes share "
        "counts as an nth in each, so that much of ssh's and autossh's is shared among their own kind; \"its own\" is the part of it "
        "that nobody else can share (private dirty). Wake-ups are voluntary "
        f"context switches of all threads within {memory['seconds']} s; keep-alives, one a minute and tunnel, are ssh's.",
        _table(("", "processes", "memory", "a tunnel", "its own", "with ssh", "wake-ups", "a tunnel", "with ssh"), rows),
        f"Each further tunnel takes {memory['further_tunnel_kb']:.1f} KB in Velmora (`supervise`, 500 tunnels), "
        f"{_each_autossh(memory):.0f} KB with autossh. A unit of systemd's needs nothing of its own besides what systemd takes "
        "anyway.",
    ]


def _recovery(recovery):
    cuts, away = recovery["cuts"], recovery["away"]
    steps = max(map(len, cuts.values()))
    rows = [(NAMES[name], *(_seconds(each) for each in times), *[""] * (steps - len(times)))
            for name, times in cuts.items()]
    sections = [
        "## From a cut to carrying bytes again",
        "A cut kills sshd's process of the connection, so that ssh sees the connection closed at that moment. The clock runs "
        "until bytes sent to the forwarded port have come back through the tunnel. All start ssh with the same arguments; ssh "
        f"alone needs {_time(median(recovery['alone']))} from its start to that point, which is part of every figure.",
        "- **Velmora** retries after 5, 10, 20, 40, 60, 60, … seconds, from 5 again once a tunnel has held for three seconds.\n"
        "- **autossh** runs with `-M 0`, keep-alives of ssh's own and `AUTOSSH_GATETIME=0`, as the usual recipes have it." +
        (" Without the last, it ended itself when its first connection was cut within 30 seconds of its start, and so would "
         "have dropped out at the first cut." if recovery["gate_ends_autossh"] else "") + "\n"
        "- **restart loop** is what systemd does with a service that has `Restart=always` and a `RestartSec` of 100 ms "
        "(systemd's default) or 5 s (often recommended). There was no systemd where this ran: a small shell loop, "
        "`bench/comparison/restart-loop`, does the same, systemd's limit of five starts in ten seconds included; \"no limit\" is "
        "with `StartLimitIntervalSec=0`.",
        f"{steps} cuts in a row, each four seconds after the tunnel carried bytes again; seconds:",
        _table(("cut", *range(1, steps + 1)), rows),
        f"The server away: sshd and all its connections were killed, and sshd started again {recovery['away_seconds']} s later. "
        "The tunnels had been up for a minute before. Back counts from sshd's return; starts are those of ssh until then.",
        _table(("", "back", "starts of ssh"), [(NAMES[name], _time(each["back"]), each["starts"])
                                                for name, each in away.items()]),
        "A connection that goes silent without being closed is found by ssh's own keep-alives, the same with all of them: "
        "after `ServerAliveInterval` times `ServerAliveCountMax`, three minutes with Velmora's defaults.",
    ]
    return sections


def _pac(pac):
    rows = []
    for name, server in pac["servers"].items():
        ours = name == "velmora"
        rows.append((NAMES[name], f"{server['rate']:.0f}", f"{server['cost_us']:.1f} µs",
                     "" if ours else f"× {server['ours_rate']:.2f}", "" if ours else f"× {server['ours_cost']:.2f}"))
    return [
        "## Serving the proxy script",
        f"{pac['rounds']} rounds of {pac['requests']} requests, a new connection each, 50 at once, a script of {pac['bytes']} "
        "bytes. nginx has one worker and no access log. The last two columns are Velmora's rate and processor time as multiples "
        "of that server's, the middle one of the rounds.",
        _table(("", "requests a second", "processor time each", "Velmora's rate", "Velmora's time"), rows),
        f"With {pac['idle']} idle connections held open Velmora serves {pac['rate_beside_idle']} requests a second, without "
        f"{pac['rate_without_idle']}; they take {_megabytes(pac['idle_pss_kb'])}. nginx does very much more than this: it is the "
        "yardstick here because it is known to be fast.",
    ]


def _startup(startup):
    tray, window = startup["tray"], startup["window"]
    rows = [
        ("to the tray's icon, 20 hosts", f"{tray['velmora']['ms']:.0f} ms", f"{tray['minimal']['ms']:.0f} ms",
         f"× {tray['velmora']['ms'] / tray['minimal']['ms']:.2f}"),
        ("processor time until then", f"{tray['velmora']['processor_ms']:.0f} ms", f"{tray['minimal']['processor_ms']:.0f} ms",
         f"× {tray['velmora']['processor_ms'] / tray['minimal']['processor_ms']:.2f}"),
        ("to the window, 1,000 hosts", f"{window['velmora']['ms']:.0f} ms", f"{window['minimal']['ms']:.0f} ms",
         f"× {window['velmora']['ms'] / window['minimal']['ms']:.2f}"),
        ("memory with the window open", f"{window['velmora']['mb']:.1f} MB", f"{window['minimal']['mb']:.1f} MB",
         f"× {window['velmora']['mb'] / window['minimal']['mb']:.2f}"),
    ]
    return [
        "## Start-up",
        f"The median of {startup['rounds']} starts each, in turns on one X server. The minimal programs are what any Qt program "
        "has to do for an icon with a menu (`bench/minimal-tray`) and for a window with a list of 1,000 rows "
        "(`bench/minimal-window`); Velmora also reads its hosts and serves the proxy script by then.",
        _table(("", "Velmora", "minimal Qt program", "ratio"), rows),
    ]


# ---- the chart ----

def _panels(results):
    memory, recovery, pac, startup = (results[name] for name in ("memory", "recovery", "pac", "startup"))
    servers = pac["servers"]

    def pair(figures, key):
        return [(name, figures[each][key], f"{figures[each][key]:.0f} ms")
                for name, each in (("Velmora", "velmora"), ("minimal Qt program", "minimal"))]

    return [
        chart.Lines("Back after each of several cuts in a row", "Seconds; less is better. Velmora waits 5 s by design",
                    {NAMES[name].replace("restart loop", "loop"): times for name, times in recovery["cuts"].items() if times[0] is not None}, "s"),
        chart.Bars(f"Back after the server was away for {recovery['away_seconds']} s", "From the server's return; less is better",
                   [(NAMES[name].replace("restart loop, 100 ms, no", "the same, no"), each["back"], _time(each["back"]))
                    for name, each in recovery["away"].items()]),
        chart.Bars(f"Memory of supervising {memory['tunnels']} tunnels", "PSS without the ssh processes; less is better",
                   [(NAMES[name].replace(", its window open", ", window"), arm["pss_kb"], _megabytes(arm["pss_kb"]))
                    for name, arm in memory["arms"].items()]),
        chart.Bars("Serving the proxy script", "Requests in a second, a new connection each; more is better",
                   [(NAMES[name].replace("its ", ""), servers[name]["rate"], f"{servers[name]['rate']:.0f}")
                    for name in ("velmora", "nginx-file", "nginx-memory")]),
        chart.Bars("Start to the tray's icon", "Median; less is better", pair(startup["tray"], "ms")),
        chart.Bars("Start to the window", "Median, 1,000 rows; less is better", pair(startup["window"], "ms")),
    ]
