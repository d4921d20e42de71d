#!/usr/bin/env python3
"""The vendor's web server as the tests meet it, with servers that misbehave behind the same door.

It is a proxy that answers every request itself, so that any host name leads here without touching the resolver: plain
requests come with their whole address, HTTPS ones as CONNECT and then a TLS handshake. Requests for hosts outside the
vendor's domain get status 421.

    web_server.py FOLDER --lifeline PORT      tells its port to 127.0.0.1:PORT and ends with that connection
    web_server.py FOLDER --port-file FILE     writes its port there and runs until it is killed

FOLDER holds files/ (what /files/NAME gives), tls.pem (certificate and key) and
tls-untrusted.pem (the same for the host untrusted), and gets requests.txt, a line a request.
"""
import os
import socket
import ssl
import struct
import sys
import threading
import time
from urllib.parse import urlsplit

DOMAIN = '.corva.example'


def read_head(stream):
    lines = []
    while (line := stream.readline().decode('latin-1').rstrip('\r\n')):
        lines.append(line)
    return lines


def answer(status, body=b'', length=None):
    head = f'HTTP/1.0 {status} Told\r\nContent-Type: application/octet-stream\r\nConnection: close\r\n'
    if length is not None:
        head += f'Content-Length: {length}\r\n'
    return [head.encode() + b'\r\n' + body]


def pieces_of(folder, path):
    """What goes over the wire for a path, in the pieces to send; None in place of a piece resets the connection."""
    kind, *words = path.strip('/').split('/')
    if kind == 'files':
        name = os.path.join(folder, 'files', os.path.basename(words[-1]))
        if not os.path.isfile(name):
            return answer(404, b'none', 4)
        with open(name, 'rb') as file:
            content = file.read()
        return answer(200, content, len(content))
    numbers = [int(word) for word in words]
    if kind == 'status':
        return answer(numbers[0], b'told!', 5)
    if kind == 'bare':  # no content length
        return answer(200, b'x' * numbers[0])
    if kind == 'claims':  # says one length and sends another
        return answer(200, b'x' * numbers[1], numbers[0])
    if kind == 'reset':  # the same, and breaks the connection
        return answer(200, b'x' * numbers[1], numbers[0]) + [None]
    if kind == 'slow':
        return answer(200, b'', numbers[0] * 1000) + [b's' * 1000] * numbers[0]
    if kind == 'hangup':
        return [None]
    return answer(404, b'none', 4)


class Server:
    def __init__(self, folder):
        self.folder = folder
        self.listener = socket.create_server(('127.0.0.1', 0))
        self.port = self.listener.getsockname()[1]
        self.lock = threading.Lock()

    def run(self):
        while True:
            connection, _ = self.listener.accept()
            threading.Thread(target=self.serve_quietly, args=(connection,), daemon=True).start()

    def serve_quietly(self, connection):
        try:
            self.serve(connection)
        except (OSError, ValueError, IndexError):
            pass  # the client went away, or asked for nonsense

    def serve(self, connection):
        scheme = 'http'
        head = read_head(connection.makefile('rb', buffering=0))
        method, target, version = head[0].split(' ')
        if method == 'CONNECT':
            scheme = 'https'
            host = target.split(':')[0]
            connection.sendall(b'HTTP/1.0 200 Go on\r\n\r\n')
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            name = 'tls-untrusted.pem' if host.startswith('untrusted') else 'tls.pem'
            context.load_cert_chain(os.path.join(self.folder, name))
            connection = context.wrap_socket(connection, server_side=True)
            head = read_head(connection.makefile('rb', buffering=0))
            method, path, version = head[0].split(' ')
        else:
            parts = urlsplit(target)
            host, path = parts.hostname or '', parts.path
        headers = dict(line.lower().split(': ', 1) for line in head[1:] if ': ' in line)
        with self.lock, open(os.path.join(self.folder, 'requests.txt'), 'a', encoding='utf-8') as log:
            log.write(f"{method} {scheme}://{host}{path} {version} agent={headers.get('user-agent')}\n")
        pieces = pieces_of(self.folder, path) if host.endswith(DOMAIN) else answer(421, b'not me', 6)
        for piece in pieces:
            if piece is None:
                connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack('ii', 1, 0))
                connection.close()
                return
            connection.sendall(piece)
            if len(pieces) > 2:
                time.sleep(0.02)
        if isinstance(connection, ssl.SSLSocket):
            connection.unwrap()
        connection.shutdown(socket.SHUT_WR)
        connection.close()


def main():
    folder, mode, value = sys.argv[1:4]
    server = Server(folder)
    threading.Thread(target=server.run, daemon=True).start()
    if mode == '--lifeline':
        with socket.create_connection(('127.0.0.1', int(value))) as lifeline:
            lifeline.sendall(f'{server.port}\n'.encode())
            lifeline.recv(1)  # until the test closes it or ends
    else:
        with open(value + '.new', 'w', encoding='ascii') as file:
            file.write(str(server.port))
        os.rename(value + '.new', value)
        threading.Event().wait()


main()
