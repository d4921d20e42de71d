#!/usr/bin/env python3
"""The vendor's web server as the tests meet it, with servers that misbehave behind the same door.

It is a proxy that answers every request itself, so that any host name leads here without touching the resolver: plain
requests come with their whole address, HTTPS ones as CONNECT and then a TLS handshake.

    web_server.py FOLDER COMMAND...      runs COMMAND while this server is the proxy of the prefix's user

FOLDER holds files/ (what /files/NAME gives), tls.pem (certificate and key) and
tls-untrusted.pem (the same for the host untrusted), and gets requests.txt, a line a request.
"""
import http.server
import os
import ssl
import subprocess
import sys
import threading
import time
from urllib.parse import urlsplit

FOLDER, *COMMAND = sys.argv[1:]


class Vendor(http.server.BaseHTTPRequestHandler):
    origin = ''

    def do_CONNECT(self):
        host = self.path.split(':')[0]
        self.origin = 'https://' + host
        self.send_response_only(200)
        self.end_headers()
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        name = 'tls-untrusted.pem' if host.startswith('untrusted') else 'tls.pem'
        context.load_cert_chain(os.path.join(FOLDER, name))
        self.request = context.wrap_socket(self.request, server_side=True)
        self.setup()  # the streams of the new connection
        self.handle_one_request()
        self.request.unwrap()
        self.request.close()

    def do_GET(self):
        with open(os.path.join(FOLDER, 'requests.txt'), 'a', encoding='utf-8') as log:
            log.write(f"{self.origin}{self.path} {self.request_version} {self.headers['User-Agent']}\n")
        kind, *words = urlsplit(self.path).path.strip('/').split('/')
        status, length, pieces = 200, None, []
        if kind == 'files':
            with open(os.path.join(FOLDER, 'files', words[0]), 'rb') as file:
                pieces = [file.read()]
            length = len(pieces[0])
        elif kind == 'status':
            status, length, pieces = int(words[0]), 5, [b'told!']
        elif kind == 'bare':  # no content length
            pieces = [b'x' * int(words[0])]
        elif kind == 'claims':  # says one length and sends another
            length, pieces = words[0], [b'x' * int(words[1])]
        elif kind == 'slow':
            length, pieces = int(words[0]) * 1000, [b's' * 1000] * int(words[0])
        else:
            return  # hangs up
        self.send_response_only(status, 'Told')
        if length is not None:
            self.send_header('Content-Length', length)
        self.end_headers()
        for piece in pieces:
            self.wfile.write(piece)
            if len(pieces) > 1:
                time.sleep(0.02)


class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, request, client_address):
        pass  # the client went away


def proxy(action, name, *value):
    run = os.path.join(os.path.dirname(__file__), '../../tools/wine-run')
    key = r'HKCU\Software\Microsoft\Windows\CurrentVersion\Internet Settings'
    subprocess.run([run, 'reg', action, key, '/v', name, *value, '/f'], check=True, stdout=subprocess.DEVNULL)


server = Server(('127.0.0.1', 0), Vendor)
threading.Thread(target=server.serve_forever, daemon=True).start()
here = f'127.0.0.1:{server.server_port}'
proxy('add', 'ProxyServer', '/d', f'http={here};https={here}')
proxy('add', 'ProxyEnable', '/t', 'REG_DWORD', '/d', '1')
try:
    code = subprocess.call(COMMAND)
finally:
    proxy('delete', 'ProxyEnable')
    proxy('delete', 'ProxyServer')
sys.exit(code)
