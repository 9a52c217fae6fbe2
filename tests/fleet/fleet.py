"""What the tests of the fleet share: a small fleet with everything that questions look for, and its answers."""

import json
import pathlib
import random
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "fleet"), str(ROOT / "fleet/clickhouse")]

import ask  # noqa: E402, F401
import machines  # noqa: E402
from expected import Answers  # noqa: E402

SNAPSHOTS = sorted((ROOT / "tests/samplemachine/expected").glob("*.snapshot.json"))
DAYS = 3


def samples():
    return [json.loads(path.read_text(encoding="utf-8"))["drivers"] for path in SNAPSHOTS]


class Fleet:
    """`days` is the text of each day. On the last one, one machine sends its first line only, for nothing changed; the end of another one's
    collection is lost; a third one is new."""

    def __init__(self, count=80, drivers=50):
        made = machines.machines(samples(), count, drivers, seed=7)
        self.parameters = machines.parameters(made, DAYS)
        self.crashes = "".join(line for machine in made for line in machine.crashes())
        self.days = []
        for day in range(DAYS):
            collections = []
            for number, machine in enumerate(made):
                machine.day(day)
                if day == 0 and number == 3:
                    continue
                lines = machine.lines(day).splitlines(keepends=True)
                if day == DAYS - 1 and number == 1:
                    first = json.loads(lines[0])
                    first.update(digest=json.loads(self.first_line_of(machine, day - 1))["digest"], unchanged=True)
                    lines = [machines.compact(first) + "\n"]
                if day == DAYS - 1 and number == 2:
                    lines = lines[:-5]
                collections.append("".join(lines))
            self.days.append("".join(collections))
        self.answers = Answers("".join(self.days).splitlines(), self.crashes.splitlines(), self.parameters).all()

    def first_line_of(self, machine, day):
        return next(line for line in self.days[day].splitlines() if machine.host in line)

    @property
    def lines(self):
        return "".join(self.days).count("\n")


# Lines that are not to be taken, and the reason for each.
def bad_lines():
    head = {
        "schema_version": 2,
        "tool_version": "0.1.0",
        "host": "WS-BAD",
        "host_id": "bad",
        "windows": "10.0.22621",
        "time": "2024-05-06T07:08:09Z",
    }
    record = {**head, "kind": "service", "name": "bad.sys", "version": "1.0", "version_key": "b1a", "service": "bad"}
    first = {**head, "kind": "collection", "drivers": 1}

    def without(document, member):
        return {name: value for name, value in document.items() if name != member}

    json_ = "it is not a JSON object on one line with the members of a collection"
    number, words = "a member that should be a whole number is not", "a member that should be a text is not"
    time = "its time is not UTC in ISO 8601"
    documents = [
        ({**record, "schema_version": 1}, "its schema_version is not 2"),
        ({**record, "schema_version": 22}, "its schema_version is not 2"),
        ({**record, "schema_version": "2"}, "its schema_version is not 2"),
        (without(record, "schema_version"), "its schema_version is not 2"),
        ({**record, "name": 5}, words),
        ({**record, "host": None}, words),
        ({**record, "description": ["a"]}, words),
        ({**record, "size": "4096"}, number),
        ({**record, "size": -1}, number),
        ({**record, "size": 1.5}, number),
        ({**record, "size": 10**19}, number),
        ({**first, "drivers": "many"}, number),
        ({**record, "files": "a.sys"}, "a member that should be an array of texts is not"),
        ({**record, "image_missing": False}, "a member that should be true is not"),
        (without(without(record, "host"), "host_id"), "it has no host_id and no host"),
        (without(record, "time"), time),
        ({**record, "time": "2024-05-06 07:08:09"}, time),
        ({**record, "time": "2024-13-06T07:08:09Z"}, time),
        ({**record, "time": "2099-01-01T00:00:00Z"}, "its time is in the future"),
        (without(first, "drivers"), "it has no drivers"),
        (without(record, "kind"), "its kind is unknown"),
        ({**record, "kind": "driver"}, "its kind is unknown"),
        (without(record, "name"), "it has no name"),
        ({**record, "name": ""}, "it has no name"),
        (without(record, "service"), "it has no key"),
        ({**record, "kind": "device"}, "it has no key"),
        ({**record, "description": "x" * 300_000}, "it is longer than 256 KiB"),
    ]
    texts = [
        (line, json_)
        for line in (
            "no JSON",
            "{",
            "[]",
            '"quoted"',
            "'; DROP TABLE fleet.driver; --",
            "\\N",
            machines.compact(record)[:-9],
            machines.compact(record) + machines.compact(record),
            '{"a":"\u0001"}',
        )
    ]
    return [(machines.compact(document), reason) for document, reason in documents] + texts


# A good line with texts that look like something else.
def hostile_lines():
    text = '\'"\\"); DROP TABLE fleet.driver; --\\n\t\n{"kind":"package","name":"x"} \u202e\U0001f600 \\u0041 %00'
    head = {
        "schema_version": 2,
        "tool_version": "0.1.0",
        "host": text,
        "host_id": "hostile",
        "windows": text,
        "time": "2024-05-06T07:08:09Z",
    }
    record = {
        **head,
        "kind": "service",
        "name": "hostile.sys",
        "description": text,
        "version": "1.0",
        "version_key": "b1a",
        "service": text,
        "files": [text, "b"],
        "size": 0,
        "future_member": [{"a": 1}],
        "known": [{"list": "x", "id": text}],
    }
    return text, machines.compact({**head, "kind": "collection", "drivers": 1}) + "\n" + machines.compact(record) + "\n"


def odd_versions(count, seed):
    """Versions that someone may have written, in lower case."""
    random_ = random.Random(seed)
    parts = [
        "",
        "0",
        "00",
        "1",
        "01",
        "a",
        "0a",
        "9",
        "10",
        "ff",
        "22621",
        "7fffffffffffffff",
        "8000000000000000",
        "0ffff",
        "beta",
        "g",
        "-1",
        "1b",
        "\u00e4",
        "rc2",
        "+",
        "~",
        "a a",
        "12345678901234567",
    ]
    return [".".join(random_.choice(parts) for _ in range(random_.randrange(1, 5))) for _ in range(count)]
