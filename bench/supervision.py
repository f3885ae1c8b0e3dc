#!/usr/bin/env python3
"""What supervising a tunnel costs in memory: this program's part against one autossh a tunnel.

    bench/supervision.py [SUPERVISE] [TUNNELS]

SUPERVISE is the benchmark's program (build/release/bin/supervise). Both sides look after processes that only sleep, in the
same run. Prints the private memory a tunnel of each, and their ratio.
"""

import os
import re
import statistics
import subprocess
import sys
import tempfile
import time

AUTOSSH = "/usr/bin/autossh"
PEERS = 20


def private_dirty(pid):
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        return sum(int(line.split()[1]) for line in file if line.startswith("Private_Dirty:"))


def of_autossh():
    """The median of several, in KB."""
    with tempfile.TemporaryDirectory() as directory:
        sleeper = os.path.join(directory, "ssh")
        with open(sleeper, "w", encoding="ascii") as file:
            file.write("#!/bin/sh\nexec sleep 600\n")
        os.chmod(sleeper, 0o700)
        environment = {**os.environ, "AUTOSSH_PATH": sleeper, "AUTOSSH_GATETIME": "0"}
        peers = [subprocess.Popen([AUTOSSH, "-M", "0", "-N", "host"], env=environment, stdin=subprocess.DEVNULL)
                 for _ in range(PEERS)]
        try:
            time.sleep(2)
            return statistics.median(private_dirty(peer.pid) for peer in peers)
        finally:
            for peer in peers:
                peer.terminate()  # it ends its child
                peer.wait()


def of_velmora(program, tunnels):
    output = subprocess.run([program, tunnels, "1"], check=True, stdout=subprocess.PIPE, text=True).stdout
    return float(re.search(r"private dirty a tunnel ([0-9.]+) KB", output).group(1))


def main():
    program = sys.argv[1] if len(sys.argv) > 1 else "build/release/bin/supervise"
    tunnels = sys.argv[2] if len(sys.argv) > 2 else "500"
    ours, theirs = of_velmora(program, tunnels), of_autossh()
    print(f"private dirty a tunnel: {ours:.2f} KB of {tunnels}, autossh {theirs:.0f} KB: 1/{theirs / ours:.0f}")


main()
