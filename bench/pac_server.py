#!/usr/bin/env python3
"""Compares the PAC server with nginx, in one run: requests a second with a new connection each, processor time a
request, both again with idle connections held open, and the memory that those take.

    pac_server.py DIRECTORY_OF_PROGRAMS [rounds] [requests]

Takes the middle value of the rounds, in which the servers take turns. Needs pacserve, pacload and nginx, and a hard
limit of 15,300 open files (ulimit -Hn)."""
import os
import pathlib
import resource
import socket
import statistics
import subprocess
import sys
import tempfile
import time

IDLE = 5000
AT_ONCE = 50
TICKS = os.sysconf("SC_CLK_TCK")

NGINX = """
daemon off;
master_process off;
worker_processes 1;
pid {directory}/nginx.pid;
error_log {directory}/error.log crit;
worker_rlimit_nofile 20000;
events {{ worker_connections 16384; {events} }}
http {{
    access_log off;
    keepalive_timeout 0;
    client_header_timeout 3600;
    client_body_temp_path {directory}/body;
    proxy_temp_path {directory}/proxy;
    fastcgi_temp_path {directory}/fastcgi;
    uwsgi_temp_path {directory}/uwsgi;
    scgi_temp_path {directory}/scgi;
    sendfile on;
    open_file_cache max=10;
    types {{ application/x-ns-proxy-autoconfig pac; }}
    server {{ listen {port} backlog=4096; listen [::]:{port} backlog=4096; {location} }}
}}
"""


def script():
    lines = ["function FindProxyForURL(url, host) {"]
    lines += [f'    if (shExpMatch(host, "*.site{i}.example")) return "SOCKS5 127.0.0.1:{21000 + i % 20}"; // Site {i}'
              for i in range(20)]
    return "\n".join(lines + ['    return "DIRECT";', "}"])


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Figures:
    def __init__(self):
        self.rates, self.costs = [], []


class Idle:
    """Connections that are held open, or not."""

    def __init__(self, port):
        self.port = port
        self.clients = []

    def hold(self, held):
        if held and not self.clients:
            self.clients = [socket.create_connection(("127.0.0.1", self.port)) for _ in range(IDLE)]
        elif not held and self.clients:
            for client in self.clients:
                client.close()
            self.clients = []
        else:
            return
        time.sleep(1)  # until the server has noticed


class Server:
    def __init__(self, name, arguments, port=None):
        self.name = name
        self.process = subprocess.Popen(arguments, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self.port = port or int(self.process.stdout.readline())
        self.figures = Figures()
        for _ in range(200):
            try:
                socket.create_connection(("127.0.0.1", self.port)).close()
                break
            except ConnectionRefusedError:
                time.sleep(0.02)

    def processor_time(self):
        fields = pathlib.Path(f"/proc/{self.process.pid}/stat").read_text().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / TICKS

    def memory(self):
        rollup = pathlib.Path(f"/proc/{self.process.pid}/smaps_rollup").read_text().splitlines()
        values = {line.split(":")[0]: int(line.split()[1]) for line in rollup[1:]}
        return values["Pss"], values["Private_Dirty"]

    def fetch(self):
        with socket.create_connection(("127.0.0.1", self.port)) as client:
            client.sendall(b"GET /proxy.pac HTTP/1.1\r\nHost: a\r\n\r\n")
            return b"".join(iter(lambda: client.recv(65536), b"")).partition(b"\r\n\r\n")[2]

    def measure(self, load, requests, figures):
        before = self.processor_time()
        rate = float(subprocess.check_output([load, str(self.port), str(requests), str(AT_ONCE)], text=True))
        figures.rates.append(rate)
        figures.costs.append((self.processor_time() - before) / requests * 1e6)

    def stop(self):
        self.process.stdin.close()
        if self.name != "velmora":
            self.process.terminate()
        self.process.wait()


def main():
    programs = pathlib.Path(sys.argv[1])
    rounds = int(sys.argv[2]) if len(sys.argv) > 2 else 9
    requests = int(sys.argv[3]) if len(sys.argv) > 3 else 40000
    hard = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
    if hard < 3 * (IDLE + 2 * AT_ONCE):
        sys.exit(f"{hard} descriptors are too few: Velmora gives a third of them to connections")
    resource.setrlimit(resource.RLIMIT_NOFILE, (hard, hard))
    load = programs / "pacload"

    with tempfile.TemporaryDirectory() as directory:
        os.chmod(directory, 0o755)
        body = pathlib.Path(directory, "proxy.pac")
        body.write_text(script())

        def nginx(name, location, events=""):
            port = free_port()
            config = pathlib.Path(directory, name + ".conf")
            config.write_text(NGINX.format(directory=directory, port=port, location=location, events=events))
            return Server(name, ["nginx", "-c", str(config), "-e", f"{directory}/error.log"], port)

        text = script().replace("\\", "\\\\").replace("'", "\\'")
        from_memory = f"location / {{ default_type application/x-ns-proxy-autoconfig; return 200 '{text}'; }}"
        servers = [
            Server("velmora", [programs / "pacserve", "0", body]),
            nginx("nginx-file", f"root {directory};"),
            nginx("nginx-memory", from_memory),
            nginx("nginx-multi", from_memory, "multi_accept on;"),
        ]
        try:
            compare(servers, load, rounds, requests)
        finally:
            for server in servers:
                server.stop()


def compare(servers, load, rounds, requests):
    ours = servers[0]
    bodies = {server.fetch() for server in servers}
    assert bodies == {script().encode()}, "the servers do not serve the same bytes"
    for server in servers:
        server.measure(load, requests // 4, Figures())  # warms up

    for number in range(rounds):
        first = number % len(servers)
        for server in servers[first:] + servers[:first]:
            server.measure(load, requests, server.figures)

    before = ours.memory()
    idle = Idle(ours.port)
    idle.hold(True)
    after = ours.memory()
    beside, alone = Figures(), Figures()
    for number in range(rounds):
        for held in (True, False) if number % 2 == 0 else (False, True):
            idle.hold(held)
            ours.measure(load, requests, beside if held else alone)
    idle.hold(False)

    middle = statistics.median
    print(f"{rounds} rounds of {requests} requests, {AT_ONCE} at once, {len(script())} bytes")
    for server in servers:
        figures = server.figures
        line = f"{server.name:13} {middle(figures.rates):8.0f} requests/s {middle(figures.costs):6.1f} us/request"
        if server is not ours:
            line += f"   ours: {ratios(ours.figures, figures)}"
        print(line)
    print(f"with {IDLE} idle connections {middle(beside.rates):.0f} requests/s, without {middle(alone.rates):.0f}: "
          f"{ratios(beside, alone)}")
    print(f"memory of {IDLE} idle connections: PSS +{after[0] - before[0]} kB, private dirty +{after[1] - before[1]} kB")


def ratios(one, other):
    """The middle one of the rounds, each of which compares what ran within the same seconds."""
    rate = statistics.median(a / b for a, b in zip(one.rates, other.rates))
    cost = statistics.median(a / b for a, b in zip(one.costs, other.costs))
    return f"rate x{rate:.3f}, processor time x{cost:.3f}"


if __name__ == "__main__":
    main()
