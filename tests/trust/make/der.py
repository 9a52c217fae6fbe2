"""DER, as far as catalogs and time stamps need it."""


def tlv(tag, *parts):
    body = b"".join(parts)
    size = len(body)
    if size < 128:
        return bytes([tag, size]) + body
    length = size.to_bytes((size.bit_length() + 7) // 8, "big")
    return bytes([tag, 0x80 | len(length)]) + length + body


def sequence(*parts):
    return tlv(0x30, *parts)


def set_of(*parts):
    return tlv(0x31, *sorted(parts))


def octets(content):
    return tlv(0x04, content)


def null():
    return tlv(0x05)


def integer(number):
    return tlv(0x02, number.to_bytes(number.bit_length() // 8 + 1, "big"))


def bmp(text):
    return tlv(0x1E, text.encode("utf-16-be"))


def oid(text):
    first, second, *rest = (int(part) for part in text.split("."))
    content = bytearray()
    for number in [first * 40 + second] + rest:
        digits = [number & 127]
        while number > 127:
            number >>= 7
            digits.append(number & 127 | 128)
        content += bytes(reversed(digits))
    return tlv(0x06, bytes(content))


def attribute(name, *values):
    return sequence(oid(name), set_of(*values))


def split(encoded):
    """Tag, content, what follows, and all of the first element."""
    size, start = encoded[1], 2
    if size & 0x80:
        count = size & 0x7F
        size = int.from_bytes(encoded[2 : 2 + count], "big")
        start = 2 + count
    return encoded[0], encoded[start : start + size], encoded[start + size :], encoded[: start + size]
