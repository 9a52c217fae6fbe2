#!/usr/bin/env python3
"""expect.py PKI FOLDER: what osslsigncode says of every sample in the folder, and openssl of every certificate, as JSON.

The state of a sample is what `osslsigncode verify` says of it, with the root of PKI as the only one to trust; the hashes of its
image are those that osslsigncode computes when it signs a copy.
"""
import hashlib
import json
import os
import re
import struct
import subprocess
import sys
import tempfile

pki, folder = (os.path.abspath(path) for path in sys.argv[1:])
ROOT = os.path.join(pki, "root.pem")
CATALOGS = {
    "by-catalog-1.sys": "catalog-1.cat",
    "by-catalog-2.sys": "catalog-2.cat",
    "by-foreign-catalog.sys": "foreign.cat",
    "by-altered-catalog.sys": "altered.cat",
}
MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()


def osslsigncode(*arguments):
    run = subprocess.run(["osslsigncode", *arguments], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return run.returncode == 0, run.stdout


def names_certificates(path):
    with open(path, "rb") as file:
        data = file.read()
    if data[:2] != b"MZ" or len(data) < 256:
        return False
    (begin,) = struct.unpack_from("<I", data, 60)
    return data[begin + 24 + 112 + 32 : begin + 24 + 112 + 40] != bytes(8)


def state_of(path, verified, output):
    if verified:
        return "valid"
    # In the words of osslsigncode 2.9 and of 2.5.
    words = ("unsupported input file type", "Unrecognized file type", "Corrupt PE file")
    unsupported = any(text in output for text in words) and not names_certificates(path)
    unsigned = "No signature found" in output and not names_certificates(path)
    return "unsigned" if unsigned or unsupported else "invalid"


def image_hash(path, algorithm):
    """Of a copy that osslsigncode signs; nothing where it takes the file for no image or does not see its signature."""
    _, output = osslsigncode("verify", "-CAfile", ROOT, path)
    if "No signature found" in output and names_certificates(path):
        return None
    with tempfile.TemporaryDirectory() as place:
        copy = os.path.join(place, "copy.sys")
        signed, _ = osslsigncode("sign", "-certs", os.path.join(pki, "vendor.chain.pem"), "-key", os.path.join(pki, "vendor.key"),
                                 "-h", algorithm, "-in", path, "-out", copy)
        if not signed:
            return None
        _, output = osslsigncode("verify", "-CAfile", ROOT, copy)
        return re.search(r"Calculated message digest : ([0-9A-F]+)", output).group(1).lower()


def stamped_at(output):
    """The time of the stamp of the first signature that has one."""
    found = re.search(r"(?:Timestamp time|The signature is timestamped): (\w+) +(\d+) ([\d:]+) (\d+) GMT", output)
    if not found:
        return None
    month, day, time, year = found.groups()
    return f"{year}-{MONTHS.index(month) + 1:02}-{int(day):02}T{time}Z"


def expect(name):
    path = os.path.join(folder, name)
    catalog = CATALOGS.get(name)
    by_catalog = ["-catalog", os.path.join(folder, catalog)] if catalog else []
    verified, output = osslsigncode("verify", "-CAfile", ROOT, "-TSA-CAfile", ROOT, *by_catalog, "-in", path)
    with open(path, "rb") as file:
        data = file.read()
    sample = {"file": name, "sha256": hashlib.sha256(data).hexdigest()}
    for algorithm in ("sha256", "sha1"):
        digest = image_hash(path, algorithm)
        if digest:
            sample["image_" + algorithm] = digest
    # A file whose catalog does not hold is no less listed there.
    sample["state"] = "invalid" if catalog and not verified else state_of(path, verified, output)
    if catalog:
        sample["catalog"] = catalog
    signer = re.search(r"Signer #0:\s+Subject: .*/CN=(.*)\s+Issuer : .*/CN=(.*)", output)
    if signer:
        sample["signer"], sample["issuer"] = signer.groups()
    first_signature = output.split("Signature Index: 1")[0]
    if stamped_at(first_signature):
        sample["signed_at"] = stamped_at(first_signature)
    return sample


def openssl(*arguments):
    return subprocess.run(["openssl", *arguments], check=True, stdout=subprocess.PIPE).stdout


def describe(name):
    path = os.path.join(pki, name)
    digest = "sha1" if "sha1" in name else "sha256"
    fingerprint = openssl("x509", "-in", path, "-noout", "-fingerprint", "-sha1").decode()
    with tempfile.NamedTemporaryFile() as signed_part:
        openssl("asn1parse", "-in", path, "-strparse", "4", "-noout", "-out", signed_part.name)
        tbs = openssl("dgst", "-" + digest, "-r", signed_part.name).decode().split()[0]
    return {
        "certificate": name.replace(".pem", ""),
        "thumbprint": fingerprint.split("=")[1].strip().replace(":", "").lower(),
        "tbs_hash": tbs,
    }


names = sorted(name for name in os.listdir(folder) if name.endswith(".sys"))
certificates = sorted(name for name in os.listdir(pki) if name.endswith(".pem") and "chain" not in name)
print(json.dumps({"certificates": [describe(name) for name in certificates], "samples": [expect(name) for name in names]}, indent=2))
