"""The driver inventory of a Windows machine, through driverinventory.dll.

    import driverinventory

    with driverinventory.Library().collect() as inventory:
        for record in inventory:
            print(record.text("name"))
"""

import ctypes
from ctypes import POINTER, byref, c_char_p, c_int32, c_size_t, c_uint32, c_uint64, c_void_p

JSON, JSON_LINES, SNAPSHOT = 1, 2, 3

_OK, _ABSENT = 0, 1

Progress = ctypes.CFUNCTYPE(c_int32, c_void_p, c_char_p, c_uint64, c_uint64)


class Options(ctypes.Structure):
    """driverinventory_options."""

    _fields_ = [
        ("size", c_uint32),
        ("kinds", c_uint32),
        ("verify", c_uint32),
        ("known_list_count", c_uint32),
        ("known_lists", POINTER(c_char_p)),
        ("host_id", c_char_p),
        ("progress", Progress),
        ("context", c_void_p),
    ]


# Result and arguments of each function of driverinventory.h.
DECLARATIONS = {
    "collect": (c_int32, [POINTER(Options), POINTER(c_void_p)]),
    "open": (c_int32, [c_char_p, POINTER(c_void_p)]),
    "read": (c_int32, [c_char_p, c_size_t, POINTER(c_void_p)]),
    "release": (c_int32, [c_void_p]),
    "count": (c_int32, [c_void_p, POINTER(c_size_t)]),
    "head": (c_int32, [c_void_p, c_char_p, POINTER(c_void_p), POINTER(c_size_t)]),
    "member_count": (c_int32, []),
    "member_name": (c_char_p, [c_int32]),
    "member_type": (c_int32, [c_int32]),
    "find_member": (c_int32, [c_char_p]),
    "text": (c_int32, [c_void_p, c_size_t, c_int32, POINTER(c_void_p), POINTER(c_size_t)]),
    "number": (c_int32, [c_void_p, c_size_t, c_int32, POINTER(c_uint64)]),
    "text_count": (c_int32, [c_void_p, c_size_t, c_int32, POINTER(c_size_t)]),
    "text_at": (c_int32, [c_void_p, c_size_t, c_int32, c_size_t, POINTER(c_void_p), POINTER(c_size_t)]),
    "document": (c_int32, [c_void_p, c_int32, POINTER(c_void_p), POINTER(c_size_t)]),
    "health": (c_int32, [c_void_p, POINTER(c_void_p), POINTER(c_size_t)]),
    "compare": (c_int32, [c_void_p, c_void_p, POINTER(c_void_p), POINTER(c_size_t)]),
    "free": (c_int32, [c_void_p]),
    "error": (c_char_p, []),
    "interface_version": (c_uint32, []),
    "library_version": (c_char_p, []),
}


class Error(Exception):
    """A call that failed."""

    def __init__(self, status, sentence):
        super().__init__(sentence)
        self.status = status


class Library:
    """driverinventory.dll, loaded from `path`."""

    def __init__(self, path="driverinventory.dll"):
        dll = ctypes.CDLL(path)
        for name, (result, arguments) in DECLARATIONS.items():
            function = getattr(dll, "driverinventory_" + name)
            function.restype, function.argtypes = result, arguments
            setattr(self, "_" + name, function)

    def _has_value(self, status):
        if status in (_OK, _ABSENT):
            return status == _OK
        raise Error(status, self._error().decode())

    def member(self, name):
        """Number of a member."""
        member = self._find_member(name.encode())
        if member < 0:
            raise KeyError(name)
        return member

    def collect(self, progress=None, kinds=0, host_id=None):
        """The inventory of this machine. `progress(what, done, total)` stops by returning False."""
        failures = []

        def call(_, what, done, total):
            try:
                return 0 if progress(what.decode(), done, total) is not False else 1
            except BaseException as failure:  # Nothing may cross the border.
                failures.append(failure)
                return 1

        options = Options(size=ctypes.sizeof(Options), kinds=kinds, host_id=host_id.encode() if host_id else None)
        if progress:
            options.progress = Progress(call)
        handle = c_void_p()
        status = self._collect(byref(options), byref(handle))
        if failures:
            raise failures[0]
        self._has_value(status)
        return Inventory(self, handle)

    def open(self, path):
        """The inventory of the snapshot in a file."""
        handle = c_void_p()
        self._has_value(self._open(path.encode(), byref(handle)))
        return Inventory(self, handle)


class Inventory:
    """A finished inventory; a sequence of records."""

    def __init__(self, library, handle):
        self._library, self._handle = library, handle
        count = c_size_t()
        library._has_value(library._count(handle, byref(count)))
        self._count = count.value

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        self._library._release(self._handle)
        self._handle = None

    def __len__(self):
        return self._count

    def __getitem__(self, index):
        if not 0 <= index < self._count:
            raise IndexError(index)
        return Record(self._library, self._handle, index)

    def document(self, document=JSON):
        """The whole inventory as JSON, JSON_LINES or SNAPSHOT."""
        text, length = c_void_p(), c_size_t()
        self._library._has_value(self._library._document(self._handle, document, byref(text), byref(length)))
        try:
            return ctypes.string_at(text, length.value).decode()
        finally:
            self._library._free(text)


class Record:
    """One service, device, package or chipset package."""

    def __init__(self, library, handle, index):
        self._library, self._handle, self._index = library, handle, index

    def text(self, member):
        """None when it is unknown or does not apply."""
        library, text, length = self._library, c_void_p(), c_size_t()
        number = library.member(member)
        has = library._has_value(library._text(self._handle, self._index, number, byref(text), byref(length)))
        return ctypes.string_at(text, length.value).decode() if has else None

    def number(self, member):
        """None when it is unknown or does not apply."""
        library, number = self._library, c_uint64()
        has = library._has_value(library._number(self._handle, self._index, library.member(member), byref(number)))
        return number.value if has else None

    def texts(self, member):
        library, count = self._library, c_size_t()
        number = library.member(member)
        library._has_value(library._text_count(self._handle, self._index, number, byref(count)))
        texts = []
        for position in range(count.value):
            text, length = c_void_p(), c_size_t()
            library._has_value(
                library._text_at(self._handle, self._index, number, position, byref(text), byref(length)))
            texts.append(ctypes.string_at(text, length.value).decode())
        return texts
