#!/usr/bin/env python3
"""catalog.py OUT.cat [--v2] FILE...: a catalog of the files, not signed yet; osslsigncode sign does the rest.

Version 1 lists SHA-1, --v2 SHA-256. Images are listed by the hash of the image, other files by that of the file.
"""
import argparse
import hashlib
import os
import struct
from dataclasses import dataclass

from der import attribute, bmp, integer, null, octets, oid, sequence, set_of, tlv


@dataclass
class Version:
    hash: str
    algorithm: str
    list_type: str
    member_attribute: str


V1 = Version("sha1", "1.3.14.3.2.26", "1.3.6.1.4.1.311.12.1.2", "1.3.6.1.4.1.311.12.2.2")
V2 = Version("sha256", "2.16.840.1.101.3.4.2.1", "1.3.6.1.4.1.311.12.1.3", "1.3.6.1.4.1.311.12.2.3")
OBSOLETE = tlv(0xA2, tlv(0x80, "<<<Obsolete>>>".encode("utf-16-be")))


def wide(text):
    return (text + "\0").encode("utf-16-le")


def image_hash(data, name):
    """The hash of a PE image; nothing for any other file."""
    if data[:2] != b"MZ":
        return None
    (begin,) = struct.unpack_from("<I", data, 60)
    if data[begin : begin + 4] != b"PE\0\0":
        return None
    optional = begin + 24
    entry = optional + (112 if data[optional : optional + 2] == b"\x0b\x02" else 96) + 32
    table, size = struct.unpack_from("<II", data, entry)
    end = table or len(data)
    covered = data[: optional + 64] + data[optional + 68 : entry] + data[entry + 8 : end]
    if table:
        covered += data[table + size :]
    else:
        covered += b"\0" * (-end % 8)
    return hashlib.new(name, covered).digest()


def name_value(name, value):
    return sequence(bmp(name), integer(0x10010001), octets(wide(value)))


def member(path, version):
    with open(path, "rb") as file:
        data = file.read()
    digest = image_hash(data, version.hash)
    if digest:
        guid = "{C689AAB8-8E78-11D0-8C47-00C04FC295EE}"
        kind = sequence(oid("1.3.6.1.4.1.311.2.1.15"), sequence(tlv(0x03, b"\0"), tlv(0xA0, OBSOLETE)))
    else:
        digest = hashlib.new(version.hash, data).digest()
        guid = "{DE351A42-8E59-11D0-8C47-00C04FC295EE}"
        kind = sequence(oid("1.3.6.1.4.1.311.2.1.25"), OBSOLETE)
    indirect = sequence(kind, sequence(sequence(oid(version.algorithm), null()), octets(digest)))
    info = sequence(bmp(guid), integer(512)) if version is V1 else tlv(0x80)
    identifier = wide(digest.hex().upper()) if version is V1 else digest
    return sequence(octets(identifier), set_of(
        attribute("1.3.6.1.4.1.311.12.2.1", name_value("File", os.path.basename(path))),
        attribute("1.3.6.1.4.1.311.12.2.1", name_value("OSAttr", "2:10.0")),
        attribute(version.member_attribute, info),
        attribute("1.3.6.1.4.1.311.2.1.4", indirect)))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("out")
    parser.add_argument("files", nargs="+")
    parser.add_argument("--v2", action="store_true")
    options = parser.parse_args()
    version = V2 if options.v2 else V1
    members = sorted(member(path, version) for path in options.files)
    extensions = [sequence(oid("1.3.6.1.4.1.311.12.2.1"), octets(name_value("OS", "_v100_X64")))]
    trust_list = sequence(
        sequence(oid("1.3.6.1.4.1.311.12.1.1")), octets(hashlib.md5(b"".join(members)).digest()), tlv(0x17, b"240102030405Z"),
        sequence(oid(version.list_type), null()), sequence(*members), tlv(0xA0, sequence(*extensions)))
    signed = sequence(integer(1), set_of(), sequence(oid("1.3.6.1.4.1.311.10.1"), tlv(0xA0, trust_list)), set_of())
    with open(options.out, "wb") as file:
        file.write(sequence(oid("1.2.840.113549.1.7.2"), tlv(0xA0, signed)))


if __name__ == "__main__":
    main()
