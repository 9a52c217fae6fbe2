#!/usr/bin/env python3
"""Makes a fleet of machines out of what `driverlist collect` wrote on a few real ones:

  machines.py SAMPLES FOLDER [--machines N] [--days N] [--drivers N] [--seed N] [--files N]

SAMPLES is a folder of *.jsonl files. FOLDER gets the lines of each day (lines/day-0-0.jsonl ...), crashes.ndjson, and parameters.json: a driver,
a version, a machine and a day that are good to ask for. The same arguments give the same files.

Each machine begins as one of the samples, and gets further drivers that are copies of theirs under other names. From day to day some
machines are upgraded, a few lose or get a driver, and the others stay as they are."""

import argparse
import collections
import datetime
import hashlib
import json
import pathlib
import random

HEAD = ("schema_version", "tool_version", "host", "host_id", "windows", "time")
FIRST_DAY = datetime.datetime(2024, 5, 6)
WINDOWS = ("10.0.22621", "10.0.22631", "10.0.19045", "10.0.26100")


def version_key(version):
    """Its byte order is the library's order of versions."""
    key = ""
    for part in version.lower().replace(" ", ".").split("."):
        digits = part.lstrip("0")
        is_number = (
            part
            and set(part) <= set("0123456789abcdef")
            and (len(digits) < 16 or len(digits) == 16 and digits[0] <= "7")
        )
        if not part:
            key += "!"
        elif is_number:
            key += "abcdefghijklmnopq"[len(digits)] + digits
        else:
            key += ('"' if part[0] < "0" else "~") + part + " "
    return key


def compact(record):
    return json.dumps(record, ensure_ascii=False, separators=(",", ":"))


def versions_from(random_, count):
    versions = {
        "%d.%d.%d.%d"
        % (
            random_.choice((1, 2, 6, 10, 21, 30)),
            random_.randrange(30),
            random_.randrange(22000),
            random_.randrange(10000),
        )
        for _ in range(count)
    }
    return sorted(versions, key=version_key)


# A driver that machines may have: its record in each of its versions, as text, and which of them comes when it is upgraded.
Product = collections.namedtuple("Product", "kind bodies")


def body_of(record):
    """What comes behind the head; `~HOST~` is different on each machine."""
    return compact(record)[1:]


def product(template, name, versions, known=None):
    bodies = []
    for number, version in enumerate(versions):
        record = dict(template)
        kind = record["kind"]
        record["name"] = name + (".sys" if kind != "device" else "_8086-15F3-1028-0A5C")
        record.update(version=version, version_key=version_key(version))
        if kind == "service":
            record.pop("image_missing", None)
            record.update(
                service=name,
                path="C:\\windows\\System32\\drivers\\" + name + ".sys",
                product_version=version,
                signature="unsigned" if name.endswith("7") else "valid",
            )
            if known and number == 0:
                record["known"] = known
        elif kind == "package":
            record.update(inf=name + ".inf", original_inf=name + ".inf", files=[name + ".sys"])
        else:
            record.update(instance_id="PCI\\" + name.upper() + "\\~HOST~", identity="8086-15F3-1028-0A5C")
        bodies.append(body_of(record))
    return Product(template["kind"], bodies)


def catalogue(records, random_, size):
    """Products made from the samples' records; the first ones are the most common."""
    templates = [
        record for record in records if record["kind"] in ("service", "package", "device") and "version" in record
    ]
    products = []
    for number in range(size):
        template = templates[number % len(templates)]
        known = "EXAMPLE-2024-%04d" % number if template["kind"] == "service" and number % 40 == 3 else None
        products.append(product(template, "smp%04d" % number, versions_from(random_, random_.randrange(1, 7)), known))
    return products


class Machine:
    def __init__(self, number, seed, samples, products, drivers):
        self.random = random.Random(f"{seed} {number}")
        self.host = "WS-%06d" % number
        identifier = hashlib.md5(f"{seed} {self.host}".encode()).hexdigest()
        self.host_id = "-".join(
            (identifier[:8], identifier[8:12], identifier[12:16], identifier[16:20], identifier[20:])
        )
        self.windows = self.random.choice(WINDOWS)
        self.base = self.random.choice(samples)
        count = max(0, drivers - len(self.base))
        # The more common, the smaller the number; twice the same is once.
        chosen = {min(int(self.random.expovariate(1) * len(products) / 3), len(products) - 1) for _ in range(count * 2)}
        chosen = sorted(self.random.sample(sorted(chosen), min(count, len(chosen))))
        self.products = [(products[index], self.random.randrange(len(products[index].bodies))) for index in chosen]
        self.only = []
        if number % 100 == 17:
            self.only.append(
                body_of(
                    {
                        "kind": "service",
                        "name": "only%06d.sys" % number,
                        "version": "0.1.0.a",
                        "version_key": version_key("0.1.0.a"),
                        "service": "only%06d" % number,
                        "path": "C:\\windows\\System32\\drivers\\only.sys",
                        "state": "Running",
                        "start_type": "Manual",
                    }
                )
            )

    def day(self, number):
        """Moves on by a day; a machine in nine changes."""
        if number == 0 or self.random.random() > 1 / 9:
            return
        self.products = [
            (made_, min(version + 1, len(made_.bodies) - 1) if self.random.random() < 0.3 else version)
            for made_, version in self.products
        ]
        if self.products and self.random.random() < 0.3:
            self.products.pop(self.random.randrange(len(self.products)))
        if self.random.random() < 0.1:
            version = "1.0.%d.0" % number
            self.only.append(
                body_of(
                    {
                        "kind": "service",
                        "name": "new%d.sys" % number,
                        "version": version,
                        "version_key": version_key(version),
                        "service": "new%d" % number,
                        "provider": "Hafen Docking",
                        "state": "Running",
                        "start_type": "Manual",
                    }
                )
            )

    def bodies(self):
        return (
            self.base
            + [made_.bodies[version].replace("~HOST~", self.host) for made_, version in self.products]
            + self.only
        )

    def lines(self, number):
        """The collection of a day, as driverlist writes it."""
        time = FIRST_DAY + datetime.timedelta(days=number, seconds=self.random.randrange(86400))
        head = (
            compact(
                {
                    "schema_version": 2,
                    "tool_version": "0.1.0",
                    "host": self.host,
                    "host_id": self.host_id,
                    "windows": self.windows,
                    "time": time.strftime("%Y-%m-%dT%H:%M:%SZ"),
                }
            )[:-1]
            + ","
        )
        bodies = self.bodies()
        digest = hashlib.sha256("".join("{" + body + "\n" for body in bodies).encode()).hexdigest()
        first = head + compact({"kind": "collection", "drivers": len(bodies), "digest": digest})[1:] + "\n"
        return first + "".join(head + body + "\n" for body in bodies)

    def crashes(self):
        day = FIRST_DAY.strftime("%Y-%m-%d 23:00:00")
        for made_, version in self.products:
            record = json.loads("{" + made_.bodies[version])
            if record["kind"] == "service" and self.random.random() < (0.2 if version == 0 else 0.02):
                yield compact({"time": day, "host_id": self.host_id, "name": record["name"], "code": "0xD1"}) + "\n"


def samples_of(folder):
    """The records of each sample, without heads."""
    samples = []
    for path in sorted(pathlib.Path(folder).glob("*.jsonl")):
        lines = [json.loads(line) for line in path.read_text(encoding="utf-8").splitlines()]
        samples.append(
            [
                {name: value for name, value in line.items() if name not in HEAD}
                for line in lines
                if line["kind"] != "collection"
            ]
        )
    return samples


def machines(samples, count, drivers, seed, first=0):
    """`count` machines, of which each can be made alone: the same number gives the same machine."""
    products = catalogue([record for sample in samples for record in sample], random.Random(seed), max(60, drivers * 5))
    bases = [[body_of(record) for record in sample] for sample in samples]
    return [Machine(number, seed, bases, products, drivers) for number in range(first, first + count)]


def parameters(made, days):
    """What is good to ask for: the most common driver of several versions, its middle version, a machine and the last day."""
    counted = collections.Counter()
    for machine in made:
        counted.update(
            product_.bodies[0]
            for product_, _ in machine.products
            if product_.kind == "service" and len(product_.bodies) > 3
        )
    body = counted.most_common(1)[0][0]
    product_ = next(product_ for machine in made for product_, _ in machine.products if product_.bodies[0] == body)
    middle = json.loads("{" + product_.bodies[len(product_.bodies) // 2])
    return {
        "driver": middle["name"],
        "version": middle["version"],
        "host": made[0].host,
        "from": FIRST_DAY.strftime("%Y-%m-%d 00:00:00"),
        "since": (FIRST_DAY + datetime.timedelta(days=days - 1)).strftime("%Y-%m-%d 00:00:00"),
    }


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("samples")
    arguments.add_argument("folder")
    for name, default in (("machines", 500), ("days", 3), ("drivers", 60), ("seed", 1), ("files", 1)):
        arguments.add_argument("--" + name, type=int, default=default)
    options = arguments.parse_args()
    folder = pathlib.Path(options.folder)
    (folder / "lines").mkdir(parents=True, exist_ok=True)
    samples = samples_of(options.samples)
    if not samples:
        arguments.error(f"{options.samples} holds no *.jsonl file")
    made = machines(samples, options.machines, options.drivers, options.seed)
    (folder / "parameters.json").write_text(compact(parameters(made, options.days)) + "\n")
    with open(folder / "crashes.ndjson", "w", encoding="utf-8") as crashes:
        for machine in made:
            crashes.writelines(machine.crashes())
    for day in range(options.days):
        for part in range(options.files):
            with open(folder / "lines" / f"day-{day}-{part}.jsonl", "w", encoding="utf-8") as lines:
                for machine in made[part :: options.files]:
                    machine.day(day)
                    lines.write(machine.lines(day))


if __name__ == "__main__":
    main()
