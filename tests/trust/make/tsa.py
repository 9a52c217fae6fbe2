#!/usr/bin/env python3
"""tsa.py CERTIFICATE KEY ROOT UNIXTIME: a time stamping authority on the loopback, for osslsigncode -ts (RFC 3161) and -t (PKCS #9).

Prints its port. UNIXTIME is the time that it tells. It ends with its standard input.
"""
import base64
import hashlib
import http.server
import os
import subprocess
import sys
import tempfile
import threading
import time

from der import attribute, integer, null, octets, oid, sequence, set_of, split, tlv

certificate, key, root, when = sys.argv[1], sys.argv[2], sys.argv[3], time.gmtime(int(sys.argv[4]))

SHA256 = "2.16.840.1.101.3.4.2.1"
RSA = "1.2.840.113549.1.1.1"
DATA = "1.2.840.113549.1.7.1"


def der_of(path):
    return subprocess.run(["openssl", "x509", "-in", path, "-outform", "DER"], check=True, stdout=subprocess.PIPE).stdout


def issuer_and_serial(encoded):
    rest = split(split(encoded)[1])[1]
    tag, _, after, whole = split(rest)
    if tag == 0xA0:
        _, _, after, whole = split(after)
    serial = whole
    _, _, after, _ = split(after)
    return sequence(split(after)[3], serial)


def cms(content):
    """`content` signed as RFC 3161 wants it."""
    with tempfile.TemporaryDirectory() as folder:
        given, made = os.path.join(folder, "content"), os.path.join(folder, "token")
        with open(given, "wb") as file:
            file.write(content)
        subprocess.run(
            ["openssl", "cms", "-sign", "-binary", "-nodetach", "-nosmimecap", "-outform", "DER", "-cades", "-md", "sha256",
             "-econtent_type", "1.2.840.113549.1.9.16.1.4", "-signer", certificate, "-inkey", key, "-certfile", root,
             "-in", given, "-out", made], check=True)
        with open(made, "rb") as file:
            return file.read()


def token_of(request):
    """The answer to a request of RFC 3161."""
    body = split(split(request)[1])[2]
    _, _, rest, imprint = split(body)
    nonce = b""
    while rest:
        tag, _, rest, whole = split(rest)
        if tag == 2:
            nonce = whole
    told = time.strftime("%Y%m%d%H%M%SZ", when).encode()
    info = sequence(integer(1), oid("1.2.3.4"), imprint, integer(1 + int.from_bytes(os.urandom(7), "big")), tlv(0x18, told), nonce)
    return sequence(sequence(integer(0)), cms(info))


def counter_signature_of(signature):
    """Signed data whose signer has signed `signature`, with its time: PKCS #9. Its content is the signature."""
    attributes = set_of(
        attribute("1.2.840.113549.1.9.3", oid(DATA)),
        attribute("1.2.840.113549.1.9.4", octets(hashlib.sha256(signature).digest())),
        attribute("1.2.840.113549.1.9.5", tlv(0x17, time.strftime("%y%m%d%H%M%SZ", when).encode())))
    signed = subprocess.run(["openssl", "dgst", "-sha256", "-sign", key], input=attributes, check=True, stdout=subprocess.PIPE).stdout
    own = der_of(certificate)
    signer = sequence(integer(1), issuer_and_serial(own), sequence(oid(SHA256), null()), b"\xa0" + attributes[1:],
                      sequence(oid(RSA), null()), octets(signed))
    data = sequence(integer(1), set_of(sequence(oid(SHA256), null())), sequence(oid(DATA), tlv(0xA0, octets(signature))),
                    tlv(0xA0, own, der_of(root)), set_of(signer))
    return sequence(oid("1.2.840.113549.1.7.2"), tlv(0xA0, data))


class Authority(http.server.BaseHTTPRequestHandler):
    def log_message(self, *_):
        pass

    def do_POST(self):
        request = self.rfile.read(int(self.headers["Content-Length"]))
        if request[:1] == b"\x30":
            answer, kind = token_of(request), "application/timestamp-reply"
        else:
            blob = split(split(split(split(base64.b64decode(request))[1])[2])[1])
            signature = split(split(blob[2])[1])[1]
            answer, kind = base64.encodebytes(counter_signature_of(signature)), "application/octet-stream"
        self.send_response(200)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(answer)))
        self.end_headers()
        self.wfile.write(answer)


server = http.server.HTTPServer(("127.0.0.1", 0), Authority)
print(server.server_port, flush=True)
threading.Thread(target=server.serve_forever, daemon=True).start()
sys.stdin.read()
