"""Lists the drivers of this machine: a line for each, or with "json" the whole inventory as one JSON document."""

import os
import sys

import driverinventory


def main():
    sys.stdout.reconfigure(encoding="utf-8", newline="\n")
    library = driverinventory.Library(os.environ.get("DRIVERINVENTORY_DLL", "driverinventory.dll"))
    with library.collect() as inventory:
        if sys.argv[1:] == ["json"]:
            sys.stdout.write(inventory.document())
            return
        for record in inventory:
            print(*(record.text(member) or "" for member in ("kind", "name", "version")), sep="\t")


if __name__ == "__main__":
    try:
        main()
    except (driverinventory.Error, OSError) as failure:
        sys.exit(f"list: {failure}")
