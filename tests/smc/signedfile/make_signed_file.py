#!/usr/bin/env python3
"""Makes signed_in_2012.bin: a small Windows program with a signature and a time
stamp of 1 July 2012, each by a certificate of its own that nobody trusts. The keys
are thrown away. The program is never run.

Needs osslsigncode, openssl and the MinGW compiler.
"""

import base64
import hashlib
import http.server
import pathlib
import subprocess
import tempfile
import threading

TIME = b"120701120000Z"

# Object identifiers, encoded.
DATA = bytes.fromhex("06092a864886f70d010701")
SIGNED_DATA = bytes.fromhex("06092a864886f70d010702")
CONTENT_TYPE = bytes.fromhex("06092a864886f70d010903")
MESSAGE_DIGEST = bytes.fromhex("06092a864886f70d010904")
SIGNING_TIME = bytes.fromhex("06092a864886f70d010905")
SHA1 = bytes.fromhex("06052b0e03021a")
RSA = bytes.fromhex("06092a864886f70d010101")

OCTETS, NULL, UTC_TIME, SEQUENCE, SET, CONTEXT_0 = 0x04, 0x05, 0x17, 0x30, 0x31, 0xA0
ONE = b"\x02\x01\x01"


def element(tag, *parts):
    content = b"".join(parts)
    if len(content) < 0x80:
        return bytes([tag, len(content)]) + content
    length = len(content).to_bytes((len(content).bit_length() + 7) // 8, "big")
    return bytes([tag, 0x80 | len(length)]) + length + content


def contents(data):
    """The elements within the first element of the data, each with its header."""

    def header(at):
        length = data[at + 1]
        if length < 0x80:
            return at + 2, length
        size = length & 0x7F
        return at + 2 + size, int.from_bytes(data[at + 2:at + 2 + size], "big")

    at, length = header(0)
    end = at + length
    found = []
    while at < end:
        begin, length = header(at)
        found.append(data[at:begin + length])
        at = begin + length
    return found


def run(*command, **options):
    return subprocess.run(command, check=True, capture_output=True, **options).stdout


def make_certificate(folder, name, usage):
    run("openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "36500",
        "-subj", f"/CN=Test {name}", "-addext", f"extendedKeyUsage={usage}",
        "-keyout", folder / f"{name}.key", "-out", folder / f"{name}.pem")


def time_stamp(folder, stamped):
    """The stamped bytes, signed at TIME."""
    certificate = run("openssl", "x509", "-in", folder / "stamper.pem", "-outform", "DER")
    body = contents(contents(certificate)[0])
    serial, issuer = body[1], body[3]
    attributes = b"".join([
        element(SEQUENCE, CONTENT_TYPE, element(SET, DATA)),
        element(SEQUENCE, SIGNING_TIME, element(SET, element(UTC_TIME, TIME))),
        element(SEQUENCE, MESSAGE_DIGEST,
                element(SET, element(OCTETS, hashlib.sha1(stamped).digest()))),
    ])
    signature = run("openssl", "dgst", "-sha1", "-sign", folder / "stamper.key",
                    input=element(SET, attributes))
    sha1 = element(SEQUENCE, SHA1, element(NULL))
    signer = element(SEQUENCE, ONE, element(SEQUENCE, issuer, serial), sha1,
                     element(CONTEXT_0, attributes), element(SEQUENCE, RSA, element(NULL)),
                     element(OCTETS, signature))
    return element(SEQUENCE, SIGNED_DATA, element(CONTEXT_0, element(
        SEQUENCE, ONE, element(SET, sha1),
        element(SEQUENCE, DATA, element(CONTEXT_0, element(OCTETS, stamped))),
        element(CONTEXT_0, certificate), element(SET, signer))))


def serve(folder):
    """A time stamping service on this machine; its address."""

    class Handler(http.server.BaseHTTPRequestHandler):
        def do_POST(self):
            request = base64.b64decode(self.rfile.read(int(self.headers["Content-Length"])))
            content = contents(request)[-1]
            stamped = contents(contents(content)[1])[0]
            value = stamped[2 + (stamped[1] & 0x7F if stamped[1] & 0x80 else 0):]
            reply = base64.b64encode(time_stamp(folder, value))
            self.send_response(200)
            self.send_header("Content-Type", "application/octet-stream")
            self.end_headers()
            self.wfile.write(reply)

        def log_message(self, *_):
            pass

    server = http.server.HTTPServer(("127.0.0.1", 0), Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return f"http://127.0.0.1:{server.server_port}/"


def main():
    result = pathlib.Path(__file__).resolve().parent / "signed_in_2012.bin"
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        make_certificate(folder, "signer", "codeSigning")
        make_certificate(folder, "stamper", "critical,timeStamping")
        program = folder / "program.exe"
        run("i686-w64-mingw32-gcc", "-nostdlib", "-s", "-Wl,-e,_start", "-xc", "-", "-o", program,
            input=b"void start(void) {}")
        result.unlink(missing_ok=True)
        run("osslsigncode", "sign", "-certs", folder / "signer.pem", "-key", folder / "signer.key",
            "-h", "sha256", "-t", serve(folder), "-in", program, "-out", result)
        result.chmod(0o644)


if __name__ == "__main__":
    main()
