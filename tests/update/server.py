"""A web server that behaves as badly as it is told to. Prints its port and serves until it is killed.

server.py FOLDER [CERTIFICATE KEY]
"""

import http.server
import os
import ssl
import sys
import time
import urllib.parse


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        path = urllib.parse.unquote(self.path)
        name, _, rest = path[1:].partition("/")
        self.close_connection = True
        try:
            getattr(self, "answer_" + name)(rest)
        except (BrokenPipeError, ConnectionResetError):
            pass

    def head(self, status=200, **headers):
        self.send_response(status)
        self.send_header("Connection", "close")
        for key, value in headers.items():
            self.send_header(key.replace("_", "-"), str(value))
        self.end_headers()

    def answer_files(self, name):
        path = os.path.join(sys.argv[1], name)
        self.head(Content_Length=os.path.getsize(path))
        with open(path, "rb") as file:
            while block := file.read(1 << 16):
                self.wfile.write(block)

    def answer_status(self, code):
        self.head(int(code), Content_Length=9)
        self.wfile.write(b"not this\n")

    def answer_endless_status(self, code):
        self.head(int(code))
        self.flood()

    def answer_redirects(self, rest):
        count, _, target = rest.partition("/")
        more = f"/redirects/{int(count) - 1}/{target}" if int(count) > 1 else f"/{target}"
        self.head(301, Location=more, Content_Length=0)

    def answer_elsewhere(self, url):
        self.head(301, Location=url, Content_Length=0)

    def answer_headers(self, _):
        body = "\n".join(f"{key}: {value}" for key, value in self.headers.items()).encode()
        self.head(Content_Length=len(body))
        self.wfile.write(body)

    def answer_silent(self, _):
        time.sleep(600)

    def answer_stuck(self, _):
        self.head(Content_Length=1000)
        self.wfile.write(b"a few bytes")
        self.wfile.flush()
        time.sleep(600)

    def answer_dripping(self, _):
        self.head()
        while True:
            self.wfile.write(b".")
            time.sleep(0.02)

    def answer_cut(self, _):
        self.head(Content_Length=1000)
        self.wfile.write(b"x" * 100)

    def answer_understated(self, _):
        self.head(Content_Length=5)
        self.wfile.write(b"hello and more")

    def answer_endless(self, _):
        self.head()
        self.flood()

    def answer_enormous(self, size):
        self.head(Content_Length=int(size))
        self.flood()

    def answer_packed(self, _):
        self.head(Content_Encoding="gzip", Content_Length=4)
        self.wfile.write(b"\x1f\x8b\x08\x00")

    def flood(self):
        while True:
            self.wfile.write(b"z" * 65536)

    def log_message(self, *_):
        pass


server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
server.daemon_threads = True
if len(sys.argv) > 2:
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(sys.argv[2], sys.argv[3])
    server.socket = context.wrap_socket(server.socket, server_side=True)
print(server.server_address[1], flush=True)
server.serve_forever()
