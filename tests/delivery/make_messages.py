#!/usr/bin/env python3
"""make_messages.py FOLDER: makes signed messages, good and bad, with openssl; what each should come to is in its test.

The authorities are made anew each time, so nothing secret is kept and nothing runs out. Everything is signed without
signed attributes, so that the signature covers the content itself.
"""
import base64
import hashlib
import os
import struct
import subprocess
import sys
import zlib
from pathlib import Path

os.makedirs(sys.argv[1], exist_ok=True)
os.chdir(sys.argv[1])
ALWAYS = ('20200101000000Z', '20991231235959Z')
PAST = ('20200101000000Z', '20210101000000Z')
FUTURE = ('20900101000000Z', '20991231235959Z')
CONFIG = b'''[ca]
default_ca = a
[a]
database = index.txt
new_certs_dir = .
serial = serial
default_md = sha256
policy = p
unique_subject = no
[p]
commonName = supplied
[authority]
basicConstraints = critical, CA:TRUE
[signer]
basicConstraints = critical, CA:FALSE
[server]
subjectAltName = DNS:*.corva.example
extendedKeyUsage = serverAuth
'''


def run(*words):
    subprocess.run(['openssl', *words], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def certify(name, issuer=None, extensions='authority', valid=ALWAYS, subject=None, elliptic=False):
    """A certificate NAME.pem with its key NAME.key, issued by `issuer` or by itself."""
    algorithm = ['EC', '-pkeyopt', 'ec_paramgen_curve:P-256'] if elliptic else ['RSA', '-pkeyopt', 'rsa_keygen_bits:2048']
    run('genpkey', '-algorithm', *algorithm, '-out', name + '.key')
    run('req', '-new', '-subj', '/CN=' + (subject or name), '-key', name + '.key', '-out', 'request')
    by = ['-selfsign', '-keyfile', name + '.key'] if issuer is None else ['-cert', issuer + '.pem', '-keyfile', issuer + '.key']
    run('ca', '-batch', '-config', 'ca.cnf', '-extensions', extensions, '-in', 'request', *by, '-startdate', valid[0],
        '-enddate', valid[1], '-notext', '-out', name + '.pem')


def sign(message, content, *signers, chain=(), options=('-nodetach',)):
    Path('chain').write_bytes(b''.join(Path(certificate + '.pem').read_bytes() for certificate in chain))
    words = ['cms', '-sign', '-binary', '-noattr', '-md', 'sha256', '-outform', 'DER', '-in', content, *options]
    for signer in signers:
        words += ['-signer', signer + '.pem', '-inkey', signer + '.key']
    run(*words, *(['-certfile', 'chain'] if chain else []), '-out', message + '.p7m')


def make_chain_messages():
    """Messages over one content, for the walk of the certificates."""
    Path('content').write_bytes(b'what was signed, ' * 40)
    Path('empty.der').write_bytes(b'')
    for root in ('anchor', 'stranger', 'tls-authority'):
        certify(root)
        run('x509', '-in', root + '.pem', '-outform', 'DER', '-out', root + '.der')
    links = ['anchor']
    for number in range(1, 10):
        certify(f'link{number}', links[-1])
        links.append(f'link{number}')
    for length in (0, 1, 8, 9):
        certify(f'signer{length}', links[length], 'signer')
        sign(f'chain{length}', 'content', f'signer{length}', chain=links[1:length + 1])
    sign('self-issued-top', 'content', 'signer1', chain=['link1', 'anchor'])
    sign('missing-link', 'content', 'signer1')
    sign('no-signer', 'content', 'signer0', options=('-nodetach', '-nocerts'))
    sign('detached', 'content', 'signer0', options=())

    certify('strange-signer', 'stranger', 'signer')
    sign('stranger', 'content', 'strange-signer', chain=['stranger'])
    certify('twin', subject='anchor')  # the anchor's name with another key
    certify('twin-signer', 'twin', 'signer')
    sign('twin-top', 'content', 'twin-signer', chain=['twin'])
    certify('self-signed', extensions='signer')
    sign('self-signed', 'content', 'self-signed')

    for when, valid in (('expired', PAST), ('future', FUTURE)):
        certify(f'{when}-signer', 'link1', 'signer', valid)
        sign(f'{when}-signer', 'content', f'{when}-signer', chain=['link1'])
        certify(f'{when}-link', 'anchor', 'authority', valid)
        certify(f'{when}-below', f'{when}-link', 'signer')
        sign(f'{when}-link', 'content', f'{when}-below', chain=[f'{when}-link'])

    # openssl writes the shorter signer record first, and only the first one counts.
    certify('a', 'anchor', 'signer')
    certify('s', subject='s')
    certify('short-stranger', 's', 'signer')
    sign('two-good', 'content', 'a', 'signer0')
    sign('two-stranger-first', 'content', 'a', 'short-stranger')

    certify('curve-signer', 'anchor', 'signer', elliptic=True)
    sign('curve-signer', 'content', 'curve-signer')
    certify('curve-link', 'anchor', elliptic=True)
    certify('curve-below', 'curve-link', 'signer')
    sign('curve-link', 'content', 'curve-below', chain=['curve-link'])


def make_packages():
    """Packages signed by the anchor's own signer; the executable in them is PROGRAM."""
    program = b''.join(hashlib.sha256(bytes([n])).digest() * 2 for n in range(160))  # packs to about a half
    Path('program').write_bytes(program)
    short = zlib.compress(b'short')
    bound = 10 * (8 + len(short))

    def package(name, size, stream, signer='signer1', magic=b'Troy'):
        Path('package').write_bytes(magic + struct.pack('<I', size) + stream)
        sign(name, 'package', signer, chain=['link1'])

    stream = zlib.compress(program)
    package('good', len(program), stream)
    package('untrusted', len(program), stream, 'strange-signer')
    package('other-magic', len(program), stream, magic=b'troy')
    package('corrupt', len(program), stream[:20] + bytes(8) + stream[28:])
    package('cut', len(program), stream[:-1])
    package('header', 0, b'')
    package('at-bound', bound, short)
    package('below-bound', bound - 1, short)
    package('too-long', 4, short)
    package('nothing', 0, zlib.compress(b''))
    sign('empty', 'empty.der', 'signer1', chain=['link1'])


def make_digests():
    """Digests of a product Demo whose executable is PROGRAM and whose data.txt holds "data"."""
    contents = {'Demo.exe': Path('program').read_bytes(), 'data.txt': b'data', 'sub\\more.txt': b'more'}

    def digest(name, files, *, hashed=None, end='\r\n', signer='signer1'):
        whole = b''.join(contents.get(file, b'') for file in (files if hashed is None else hashed))
        text = base64.b64encode(hashlib.sha256(whole).digest()).decode()
        lines = [*(f'<Reference URI="{file}" />' for file in files), f'<DigestValue>{text}</DigestValue>', '']
        Path('digest').write_bytes(end.join(lines).encode())
        sign('digest-' + name, 'digest', signer, chain=['link1'])

    both = ['Demo.exe', 'data.txt']
    digest('good', both)
    digest('folder', [*both, 'sub\\more.txt'])
    digest('bare-lf', both, end='\n')
    digest('reordered', both, hashed=both[::-1])
    digest('no-executable', ['data.txt'])
    digest('prefix', ['Demo', 'data.txt'])
    digest('other-case', ['demo.exe', 'data.txt'], hashed=both)
    digest('missing-counted', [*both, 'gone.txt'])
    digest('untrusted', both, signer='strange-signer')
    digest('many', [f'{"n" * 200}{number}' for number in range(3000)] + both)
    # For the benchmark: four files of 64 MiB each, of the bytes from 0 to 255 over and over.
    large = ['Large.exe', '1.dat', '2.dat', '3.dat']
    contents.update(dict.fromkeys(large, bytes(range(256)) * (1 << 18)))
    digest('large', large)


def make_server_certificates():
    """Certificates for the vendor's hosts, under an authority that only the tests trust, and under one that nobody does."""
    for name, issuer in (('tls', 'tls-authority'), ('tls-untrusted', 'stranger')):
        certify('server', issuer, 'server', subject='get.corva.example')
        Path(name + '.pem').write_bytes(Path('server.pem').read_bytes() + Path('server.key').read_bytes())


Path('ca.cnf').write_bytes(CONFIG)
Path('index.txt').write_bytes(b'')
Path('serial').write_bytes(b'01')
make_chain_messages()
make_packages()
make_digests()
make_server_certificates()
