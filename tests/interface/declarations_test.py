"""What other languages declare of driverinventory.h is what it declares.

    declarations_test.py SOURCE_FOLDER
"""

import ctypes
import importlib.util
import pathlib
import re
import sys

SOURCE = pathlib.Path(sys.argv[1])
INTERFACE = SOURCE / "src/module/interface"
EXAMPLES = SOURCE / "examples"

# C's types by how they are passed: a letter for each.
KINDS = {
    "int32_t": "i", "driverinventory_status": "i", "uint32_t": "u", "size_t": "z", "uint64_t": "q",
}


def read(path):
    return path.read_text(encoding="utf-8")


def kind(declaration):
    """'p' for a pointer, else by the type."""
    if "*" in declaration or "[" in declaration:
        return "p"
    return KINDS[declaration.replace("const ", "").split()[0]]


def functions_of_header():
    found = {}
    pattern = r"^DRIVERINVENTORY_API\s+([\w\s\*]+?)\s*(\*?)driverinventory_(\w+)\(([^;]*)\);"
    for result, star, name, arguments in re.findall(pattern, read(INTERFACE / "driverinventory.h"), re.M | re.S):
        parts = [] if arguments.strip() == "void" else [part.strip() for part in arguments.split(",")]
        found[name] = (kind(result + star), [kind(part) for part in parts])
    return found


FAILURES = []


def check(what, actual, expected):
    if actual != expected:
        FAILURES.append(f"{what}: {actual}, where the header has {expected}")


def check_exports(header):
    names = re.findall(r"^driverinventory_(\w+) @(\d+)$", read(INTERFACE / "driverinventory.def"), re.M)
    check("exports", sorted(name for name, _ in names), sorted(header))
    check("ordinals", [int(ordinal) for _, ordinal in names], list(range(1, len(header) + 1)))


def check_python(header):
    path = EXAMPLES / "python/driverinventory.py"
    spec = importlib.util.spec_from_file_location("driverinventory", path)
    module = importlib.util.module_from_spec(spec)
    sys.dont_write_bytecode = True
    spec.loader.exec_module(module)
    types = {ctypes.c_int32: "i", ctypes.c_uint32: "u", ctypes.c_size_t: "z", ctypes.c_uint64: "q"}
    declared = {}
    for name, (result, arguments) in module.DECLARATIONS.items():
        # size_t and uint64_t are one type to ctypes on some machines.
        declared[name] = (types.get(result, "p"), [types.get(argument, "p") for argument in arguments])
    one = {name: (result, ["z" if a == "q" else a for a in arguments]) for name, (result, arguments) in header.items()}
    declared = {n: (r, ["z" if a == "q" else a for a in arguments]) for n, (r, arguments) in declared.items()}
    check("Python", declared, one)
    fields = [(name, getattr(module.Options, name).offset) for name, _ in module.Options._fields_]
    check("Python's options", fields, [("size", 0), ("kinds", 4), ("verify", 8), ("known_list_count", 12),
                                       ("known_lists", 16), ("host_id", 24), ("progress", 32), ("context", 40)])
    check("the size of Python's options", ctypes.sizeof(module.Options), 48)


def check_dot_net(header, path):
    types = {"int": "i", "UIntPtr": "z", "IntPtr": "p", "InventoryHandle": "p", "byte[]": "p"}
    pattern = r"extern (\w+) driverinventory_(\w+)\(([^)]*)\)"
    found = re.findall(pattern, read(path))
    if not found:
        FAILURES.append(f"{path.name} declares nothing")
    for result, name, arguments in found:
        kinds = []
        for argument in filter(None, (part.strip() for part in arguments.split(","))):
            words = argument.split()
            kinds.append("p" if words[0] in ("out", "ref") else types[words[0]])
        check(f"{path.name}, {name}", (types[result], kinds), header[name])


def check_rust(header):
    types = {"i32": "i", "u64": "q", "usize": "z"}
    found = re.findall(r"pub fn driverinventory_(\w+)\(([^)]*)\) -> ([^;]+);", read(EXAMPLES / "rust/src/ffi.rs"), re.S)
    if not found:
        FAILURES.append("ffi.rs declares nothing")
    for name, arguments, result in found:
        kinds = [types.get(argument.split(":")[1].strip(), "p") for argument in arguments.split(",") if argument.strip()]
        check(f"Rust, {name}", (types.get(result.strip(), "p"), kinds), header[name])


def check_node(header):
    types = {"int32_t": "i", "size_t": "z"}
    found = re.findall(r"dll\.func\('driverinventory_(\w+)', '(\w+)',\s*\[(.*?)\]\)", read(EXAMPLES / "node/driverinventory.js"),
                       re.S)
    if not found:
        FAILURES.append("driverinventory.js declares nothing")
    for name, result, arguments in found:
        parts = re.findall(r"koffi\.out\((?:koffi\.pointer\(handle\)|'[^']*')\)|handle|'[^']*'", arguments)
        kinds = [types.get(part.strip("'"), "p") for part in parts]
        check(f"Node, {name}", (types.get(result, "p"), kinds), header[name])


def check_go(header):
    found = re.findall(r'NewProc\("driverinventory_(\w+)"\)', read(EXAMPLES / "go/driverinventory/driverinventory.go"))
    if not found or not set(found) <= set(header):
        FAILURES.append(f"Go uses {found}")


def main():
    header = functions_of_header()
    check_exports(header)
    check_python(header)
    check_dot_net(header, EXAMPLES / "csharp/DriverInventory.cs")
    check_dot_net(header, EXAMPLES / "powershell/DriverInventory.psm1")
    check_rust(header)
    check_node(header)
    check_go(header)
    sys.exit("\n".join(FAILURES) if FAILURES else 0)


main()
