#!/usr/bin/env python3
"""alter.py FOLDER: the samples that no signer makes, out of signed.sys and the catalogs in the folder."""
import hashlib
import os
import struct
import sys

from catalog import image_hash

os.chdir(sys.argv[1])


def read(name):
    with open(name, "rb") as file:
        return file.read()


def write(name, data, change):
    data = bytearray(data)
    change(data)
    with open(name, "wb") as file:
        file.write(data)


def flip(index):
    def change(data):
        data[index] ^= 1
    return change


signed = read("signed.sys")
(begin,) = struct.unpack_from("<I", signed, 60)
checksum = begin + 24 + 64
entry = begin + 24 + 112 + 32
table, size = struct.unpack_from("<II", signed, entry)
text = signed.index("smpaud.sys".encode("utf-16-le"))


def digest(data):
    covered = data[:checksum] + data[checksum + 4 : entry] + data[entry + 8 : table] + data[table + size :]
    return hashlib.sha256(covered).digest()


def forge(data):
    """Changes the image and the digest that is listed for it, but not what the signer signed."""
    listed = data.index(digest(data))
    flip(text)(data)
    data[listed : listed + 32] = digest(data)


def junk(data):
    data[table + 8 : table + size] = bytes(7 * index & 255 for index in range(size - 8))


write("tampered.sys", signed, flip(text))
write("checksum.sys", signed, flip(checksum))
write("signature-flipped.sys", signed, flip(signed.rindex(b"\x04\x82\x01\x00") + 20))
write("forged.sys", signed, forge)
write("junk.sys", signed, junk)
write("appended.sys", signed, lambda data: data.extend(b"X" * 16))
write("truncated.sys", signed, lambda data: data.__delitem__(slice(table + size // 2, None)))
write("huge-table.sys", signed, lambda data: struct.pack_into("<II", data, entry, table, 0x7FFFFFFF))
write("empty.sys", b"", lambda data: None)
write("text.sys", b"not a driver\n", lambda data: None)
write("headers-cut.sys", signed[:100], lambda data: None)


# The list says another hash than the signer signed for: that of an image of somebody else.
original, other = (image_hash(read(name), "sha256") for name in ("by-catalog-2.sys", "by-altered-catalog.sys"))


def list_other(data):
    while (at := data.find(original)) >= 0:
        data[at : at + len(original)] = other


write("altered.cat", read("catalog-2.cat"), list_other)
write("unsigned-odd.sys", read("unsigned.sys"), lambda data: data.extend(b"odd"))
