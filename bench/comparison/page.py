"""Writes docs/performance.md and its chart from what the sections measured."""

import math
import textwrap
from statistics import median

from . import chart

QUIET = 0.5  # above this load somebody else was at work
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
bench/compare                  # everything, about ten minutes; on a machine that does nothing else
bench/compare recovery         # one section, and this page from the last results of all
```"""


def write(results, folder):
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "performance.svg").write_text(chart.draw(_panels(results)), encoding="utf-8")
    memory, recovery = results["memory"], results["recovery"]
    blocks = [*_head(results), *_summary(results), *_verdicts(memory, recovery), *_memory(memory), *_recovery(recovery),
              *_pac(results["pac"]), *_startup(results["startup"])]
    (folder / "performance.md").write_text("\n".join(blocks).replace("\n\n\n", "\n\n").strip() + "\n", encoding="utf-8")


# ---- how things are written ----

def _paragraph(text):
    return textwrap.fill(" ".join(text.split()), 120, break_long_words=False, break_on_hyphens=False) + "\n"


def _item(text):
    return textwrap.fill("- " + " ".join(text.split()), 120, subsequent_indent="  ", break_long_words=False,
                         break_on_hyphens=False)


def _heading(text):
    return f"\n{text}\n"


def _table(head, rows):
    lines = ["| " + " | ".join(map(str, head)) + " |", "|---|" + "---:|" * (len(head) - 1)]
    return "\n".join(lines + ["| " + " | ".join(map(str, row)) + " |" for row in rows]) + "\n"


def _time(seconds):
    if seconds is None:
        return "gave up"
    return f"{seconds * 1000:.0f} ms" if seconds < 1 else f"{seconds:.1f} s"


def _seconds(seconds):
    return "gave up" if seconds is None else f"{seconds:.2f}"


def _times(count):
    return "once" if count == 1 else f"{count} times"


def _megabytes(kilobytes):
    return f"{kilobytes / 1024:.1f} MB"


def _milliseconds(number):
    return f"{number:.0f} ms"


# ---- figures that several places tell ----

def _each_autossh(memory):
    """Kilobytes."""
    arm = memory["arms"]["autossh"]
    return arm["pss_kb"] / arm["processes"]


def _break_even(memory):
    """From how many tunnels on one velmora is smaller than as many autossh; nothing if never."""
    further = memory["further_tunnel_kb"]
    saved = _each_autossh(memory) - further
    once = memory["arms"]["velmora"]["pss_kb"] - memory["tunnels"] * further
    return math.ceil(once / saved) if saved > 0 else None


def _single(times):
    """After a cut that stands alone, as the first ones tell."""
    return median(times[:3])


def _beside(figures, value):
    return (f"autossh {_time(value(figures['autossh']))}, "
            f"restart loop {_time(value(figures['loop-100ms']))} or {_time(value(figures['loop-5s']))}")


# ---- the page ----

def _head(results):
    machine = max(results.values(), key=lambda section: section["date"])["machine"]
    dates = sorted({section["date"] for section in results.values()})
    load = max(section["load"] for section in results.values())
    rows = [
        ("date", " to ".join(sorted({dates[0], dates[-1]}))),
        ("machine", f"{'virtual machine, ' if machine['virtual'] else ''}{machine['processor']}, "
                    f"{machine['cores']} cores, {machine['memory_gb']} GB of memory"),
        ("system", f"{machine['system']}, Linux {machine['kernel']}"),
        ("Velmora", f"{machine['velmora']}, release build, Qt {machine['qt']}"),
        ("beside it", f"autossh {machine['autossh']}, nginx {machine['nginx']}, {machine['openssh']}; "
                      "Debian's packages"),
        ("other work", f"load {load:.1f} before the start" +
         ("" if load <= QUIET else "; **so much that the times and rates are worth little**")),
    ]
    return ["# Performance\n", _paragraph("""
        Velmora beside what else keeps tunnels up, serves a proxy script or opens a window: measured in one run each, on
        one machine, with the same server and the same cut. `bench/compare` measured this and wrote this page."""),
            "| | |\n|---|---|\n" + "\n".join(f"| {name} | {value} |" for name, value in rows) + "\n", REPEAT]


def _summary(results):
    memory, recovery, pac, startup = (results[name] for name in ("memory", "recovery", "pac", "startup"))
    arms, cuts, away = memory["arms"], recovery["cuts"], recovery["away"]
    rows = [
        (f"memory of supervising {memory['tunnels']} tunnels", _megabytes(arms["velmora"]["pss_kb"]),
         f"autossh {_megabytes(arms['autossh']['pss_kb'])}"),
        ("memory of each further tunnel", f"{memory['further_tunnel_kb']:.1f} KB",
         f"autossh {_each_autossh(memory):.0f} KB"),
        (f"wake-ups of supervising them, in {memory['seconds']} s", arms["velmora"]["wake_ups"],
         f"autossh {arms['autossh']['wake_ups']}"),
        ("back after a single cut", _time(_single(cuts["velmora"])), _beside(cuts, _single)),
        (f"back after the last of {len(cuts['velmora'])} cuts in a row", _time(cuts["velmora"][-1]),
         _beside(cuts, lambda times: times[-1])),
        (f"back after the server's return, which was away for {recovery['away_seconds']} s",
         _time(away["velmora"]["back"]), _beside(away, lambda each: each["back"])),
        ("proxy scripts served in a second", f"{pac['servers']['velmora']['rate']:.0f}",
         f"nginx {pac['servers']['nginx-file']['rate']:.0f} (file), "
         f"{pac['servers']['nginx-memory']['rate']:.0f} (memory)"),
    ]
    for what, figures in (("tray's icon", startup["tray"]), ("window", startup["window"])):
        rows.append((f"start to the {what}", _milliseconds(figures["velmora"]["ms"]),
                     f"minimal Qt program {_milliseconds(figures['minimal']['ms'])}"))
    return [_heading("## In short"), _table(("", "Velmora", "beside it"), rows), _paragraph("""
        A restart loop is what a service of systemd does that has `Restart=always`, with its default delay of 100 ms or
        with five seconds."""), "![The figures of this page as a chart](performance.svg)\n"]


def _verdicts(memory, recovery):
    cuts, away = recovery["cuts"], recovery["away"]
    even = _break_even(memory)
    crossing = f"One Velmora is smaller than as many autossh from about {even} tunnels on; few people have so many."
    items = [_heading("### Who is better at what"), _item(f"""
        **autossh is smaller.** One autossh takes {_each_autossh(memory):.0f} KB. Velmora takes
        {_megabytes(memory['arms']['velmora']['pss_kb'])} once, because it has a tray, windows and Qt with it.
       
        {crossing if even else ""}"""), _item(f"""
        **autossh and a restart loop with systemd's own delay react at once**: {_time(_single(cuts['autossh']))} and
        {_time(_single(cuts['loop-100ms']))} after a single cut. Velmora waits five seconds before its first retry, by
        design: a server or a line that has just gone is given a moment, and the menu shows why and for how long. Who
        cannot spare five seconds takes one of those, or clicks the host in the menu, which connects at once.""")]
    if cuts["autossh"][-1] is None or cuts["autossh"][-1] > 1.5 * cuts["velmora"][-1]:
        items.append(_item(f"""
            **Velmora is steadier on a line that breaks again and again.** After {len(cuts['velmora'])} cuts in a row,
            each four seconds after the tunnel carried bytes again, it still needs {_time(cuts['velmora'][-1])}. autossh
            takes them for failures in quick succession and has come to {_time(cuts['autossh'][-1])}. A tunnel of
            Velmora's that held for three seconds starts with the first delay again. A restart loop does not mind,
            either."""))
    return [*items, _item(_about_outage(away, recovery["away_seconds"]))]


def _about_outage(away, seconds):
    ours = away["velmora"]["back"]

    def those(chosen):
        return " and ".join(f"{NAMES[name]} ({_time(each['back'])})" for name, each in away.items() if
chosen(each["back"])) 
    text = f"""**A server that is away for {seconds} s** costs Velmora another {_time(ours)} after its return, because
        its delays double from 5 to 60 seconds; it had started ssh {_times(away['velmora']['starts'])}."""
    for word, who in (("Quicker", those(lambda back: back is not None and back < ours)),
                      ("Slower", those(lambda back: back is not None and back > ours)),
                      ("Not back at all", those(lambda back: back is None))):
        text += f" {word}: {who}." if who else ""
    return text + """ With its defaults systemd gives up on a service that would start more than five times in ten seconds.
        What an outage costs beyond its end depends on when in a delay it ends: the whole delay at worst, which is a
        minute with Velmora and grows up to ten with autossh, but stays at five seconds in a loop with such a delay."""


def _memory(memory):
    count, rows = memory["tunnels"], []
    for name, arm in memory["arms"].items():
        rows.append((NAMES[name], arm["processes"], _megabytes(arm["pss_kb"]), f"{arm['pss_kb'] / count:.0f} KB",
                     _megabytes(arm["private_kb"]), _megabytes(arm["pss_kb"] + arm["ssh_pss_kb"]),
                     arm["wake_ups"], f"{arm['wake_ups'] / count:.2f}", arm["wake_ups"] + arm["ssh_wake_ups"]))
    return [_heading("## Memory and wake-ups"), _paragraph(f"""
        {count} connected tunnels to one sshd, each with a Local forwarding, doing nothing. "With ssh" adds the ssh processes,
        which are the same on both sides. Memory is the proportional set (PSS): what n processes share counts as an nth
        in each, so it is less where other programs of Qt's run. "Its own" is the part that nobody can share (private
        dirty). Wake-ups are voluntary context switches of all threads within {memory['seconds']} s; ssh's are its keep-alives,
        one a minute and tunnel."""),
            _table(("", "processes", "memory", "a tunnel", "its own", "with ssh", "wake-ups", "a tunnel", "with ssh"),
                   rows),
            _paragraph(f"""
        Each further tunnel takes {memory['further_tunnel_kb']:.1f} KB in Velmora (of 500, measured with `supervise`)
        and {_each_autossh(memory):.0f} KB with autossh. A service of systemd's takes next to nothing besides systemd,
        which runs anyway.""")]


def _recovery(recovery):
    cuts, away = recovery["cuts"], recovery["away"]
    steps = max(map(len, cuts.values()))
    rows = [(NAMES[name], *map(_seconds, times), *[""] * (steps - len(times))) for name, times in cuts.items()]
    gate = """Without the last it ended itself when its first connection was cut a few seconds after its start, and would
        have dropped out at the first cut."""
    return [_heading("## From a cut to carrying bytes again"), _paragraph(f"""
        A cut kills sshd's process of the connection, so that ssh sees the connection closed at that moment. The clock
        runs until bytes sent to the forwarded port are answered through the tunnel. All start ssh with the same
        arguments; ssh alone needs {_time(median(recovery['alone']))} from its start to that point, which is part of every
        figure."""),
            _item("""**Velmora** retries after 5, 10, 20, 40, 60, 60, … seconds, from 5 again once a tunnel has held for three
        seconds."""), _item(f"""**autossh** runs with `-M 0`, ssh's own keep-alives and `AUTOSSH_GATETIME=0`, as the usual
        recipes have it. {gate if recovery['gate_ends_autossh'] else ""}"""),
            _item("""**restart loop** is what systemd does with a service that has `Restart=always` and a `RestartSec` of
        100 ms (systemd's default) or 5 s (often recommended). There was no systemd where this ran: a small shell loop,
        `bench/comparison/restart-loop`, does the same, with systemd's default limit of five starts in ten seconds. "No
        limit" is with `StartLimitIntervalSec=0`.""") + "\n",
            _paragraph(f"{steps} cuts in a row, each four seconds after the tunnel carried bytes again, in seconds:"),
            _table(("cut", *range(1, steps + 1)), rows), _paragraph(f"""
        The server away: sshd and all its connections were killed, and sshd started again {recovery['away_seconds']} s
        later. The tunnels had been up for a minute before. "Back" counts from sshd's return; starts are those of ssh
        since the cut."""),
            _table(("", "back", "starts of ssh"),
                   [(NAMES[name], _time(each["back"]), each["starts"]) for name, each in away.items()]), _paragraph("""
        A connection that goes silent without being closed is found by ssh's own keep-alives, the same with all of them:
        after `ServerAliveInterval` times `ServerAliveCountMax`, three minutes with Velmora's defaults.""")]


def _pac(pac):
    rows = []
    for name, server in pac["servers"].items():
        ratios = ("", "") if name == "velmora" else (f"× {server['ours_rate']:.2f}", f"× {server['ours_cost']:.2f}")
        rows.append((NAMES[name], f"{server['rate']:.0f}", f"{server['cost_us']:.1f} µs", *ratios))
    return [_heading("## Serving the proxy script"), _paragraph(f"""
        {pac['rounds']} rounds of {pac['requests']} requests, a new connection each, 50 at once, a script of
        {pac['bytes']} bytes. nginx has one worker and no access log. The last two columns are Velmora's rate and
        processor time as multiples of that server's, the middle one of the rounds."""),
            _table(("", "requests a second", "processor time each", "Velmora's rate", "Velmora's time"), rows),
            _paragraph(f"""
        With {pac['idle']} idle connections held open Velmora serves {pac['rate_beside_idle']} requests a second,
        without them {pac['rate_without_idle']}; they take {_megabytes(pac['idle_pss_kb'])}. nginx can do very much more
        than this; it is the yardstick here because it is known to be fast.""")]


def _startup(startup):
    def row(what, figures, key, form):
        ours, theirs = figures["velmora"][key], figures["minimal"][key]
        return what, form.format(ours), form.format(theirs), f"× {ours / theirs:.2f}"

    rows = [row("to the tray's icon, 20 hosts", startup["tray"], "ms", "{:.0f} ms"),
            row("processor time until then", startup["tray"], "processor_ms", "{:.0f} ms"),
            row("to the window, 1,000 hosts", startup["window"], "ms", "{:.0f} ms"),
            row("memory with the window open", startup["window"], "mb", "{:.1f} MB")]
    return [_heading("## Start-up"), _paragraph(f"""
        The median of {startup['rounds']} starts each, in turns on one X server. The minimal programs are what any
        program of Qt's has to do for an icon with a menu (`bench/minimal-tray`) and for a window with a list of 1,000
        rows (`bench/minimal-window`); Velmora also reads its hosts and serves the proxy script by then."""),
            _table(("", "Velmora", "minimal Qt program", "ratio"), rows)]


# ---- the chart ----

def _panels(results):
    memory, recovery, pac, startup = (results[name] for name in ("memory", "recovery", "pac", "startup"))
    cuts, away, servers = recovery["cuts"], recovery["away"], pac["servers"]

    def of_qt(figures):
        return [(name, figures[each]["ms"], _milliseconds(figures[each]["ms"]))
                for name, each in (("Velmora", "velmora"), ("minimal Qt program", "minimal"))]

    return [
        chart.Lines("Back after each of several cuts in a row", "Seconds; less is better. Velmora waits 5 s by design",
                    {NAMES[name].replace("restart loop", "loop"): times for name, times in cuts.items()
                     if times[0] is not None}, "s"),
        chart.Bars(f"Back after the server was away for {recovery['away_seconds']} s",
                   "From its return; less is better",
                   [(NAMES[name].replace("restart loop, 100 ms, no", "the same, no"), each["back"], _time(each["back"]))
                    for name, each in away.items()]),
        chart.Bars(f"Memory of supervising {memory['tunnels']} tunnels",
                   "PSS without the ssh processes; less is better",
                   [(NAMES[name].replace(", its window open", ", window"), arm["pss_kb"], _megabytes(arm["pss_kb"]))
                    for name, arm in memory["arms"].items()]),
        chart.Bars("Serving the proxy script", "Requests in a second, a new connection each; more is better",
                   [(NAMES[name].replace("its ", ""), servers[name]["rate"], f"{servers[name]['rate']:.0f}")
                    for name in ("velmora", "nginx-file", "nginx-memory")]),
        chart.Bars("Start to the tray's icon", "Median; less is better", of_qt(startup["tray"])),
        chart.Bars("Start to the window", "Median, 1,000 rows; less is better", of_qt(startup["window"])),
    ]
