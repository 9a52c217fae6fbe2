"""What driverlist says of the sample machines: inventory_test.py FOLDER [TEST...], FOLDER being that of write-documents.

The records are those that derive.py derives from the descriptions; every other document says the same as they do.
"""

import csv
import html.parser
import io
import json
import pathlib
import re
import sys
import unicodedata
import unittest

import derive

HERE = pathlib.Path(__file__).parent
HEAD = ["schema_version", "tool_version", "host", "host_id", "windows", "time"]
MODES = ("by-device", "registered", "all")
STARTS_BY_ITSELF = ("Boot Start", "System Start", "Automatic")


def text_of(value):
    """A value in words, as a cell has it."""
    if value is True:
        return "true"
    return ";".join(value) if isinstance(value, list) else str(value)


def visible(text):
    """`text` for people: what acts without being seen by its code."""
    return "".join(f"[U+{ord(c):04X}]" if is_unseen(c) else c for c in text)


def is_unseen(c):
    """Control characters and marks of direction."""
    return unicodedata.category(c) in ("Cc", "Zl", "Zp") or c in "\u061c\u200e\u200f" \
        or "\u202a" <= c <= "\u202e" or "\u2066" <= c <= "\u2069"


def identified(record):
    return record["kind"], record[derive.KEYS[record["kind"]]]


def cells(record, columns):
    """The values of `columns` in words; those that the record has not are empty."""
    return [text_of(record[column]) if column in record else "" for column in columns]


def columns_of(text):
    """Columns of a terminal that `text` takes."""
    return sum(0 if unicodedata.combining(c) else 2 if unicodedata.east_asian_width(c) in "WF" else 1 for c in text)


def sliced(line, starts):
    """The cells of a line of a table, whose columns begin at `starts`."""
    parts = [""] * len(starts)
    at = 0
    for c in line:
        parts[max(i for i, start in enumerate(starts) if start <= at)] += c
        at += columns_of(c)
    return [part.rstrip(" ") for part in parts]


def is_oem(record):
    return record["kind"] == "package" and re.fullmatch(r"oem.*\.inf", record["inf"], re.IGNORECASE)


def image_file(service):
    return service["path"].rsplit("\\", 1)[-1].lower()


def files_of(package):
    return [file.lower() for file in package.get("files", [])]


class Page(html.parser.HTMLParser):
    """The figures, the bars and the table of a page."""

    def __init__(self, text):
        super().__init__()
        self.figures = {}
        self.bars = {}
        self.head = []
        self.rows = []
        self.classes = []
        self.text = ""
        self.term = self.chart = self.label = None
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        kind = dict(attributes).get("class", "")
        # The time of day is a part of its cell.
        if tag in ("dt", "dd", "h2", "th", "td") or (tag == "span" and kind != "clock"):
            self.text = ""
        if tag == "span":
            self.classes.append(kind)
        if tag == "tr":
            self.rows.append([])

    def handle_data(self, data):
        self.text += data

    def handle_endtag(self, tag):
        if tag == "dt":
            self.term = self.text
        elif tag == "dd":
            self.figures[self.term] = self.text
        elif tag == "h2":
            self.chart = self.bars.setdefault(self.text, {})
        elif tag == "span":
            kind = self.classes.pop()
            if kind == "label":
                self.label = self.text
            elif kind == "count" and self.chart is not None:
                self.chart[self.label] = int(self.text)
        elif tag in ("th", "td"):
            self.rows[-1].append(self.text)


class SampleMachine:
    """What holds for every sample machine; `name` is that of its description."""

    maxDiff = None

    def setUp(self):
        self.folder = folder / self.name
        self.list = self.document("list.json")
        self.records = self.list["drivers"]

    def text(self, file):
        return (self.folder / file).read_bytes().decode("utf-8")

    def document(self, file):
        return json.loads(self.text(file))

    def of_kind(self, kind):
        return [record for record in self.records if record["kind"] == kind]

    # --- The records.

    def test_the_inventory_is_the_one_that_the_description_amounts_to(self):
        expected = derive.read(HERE / f"{self.name}.json")
        self.assertEqual(list(map(identified, self.records)), list(map(identified, expected)))
        for record, derived in zip(self.records, expected):
            with self.subTest(record=identified(derived)):
                self.assertEqual(list(record.items()), list(derived.items()))

    def test_whatever_a_listing_of_the_library_names_is_in_the_inventory(self):
        known = {name for record in self.records
                 for name in [record["name"], *record.get("names", []), *record.get("files", [])]}
        for mode in MODES:
            with self.subTest(mode=mode):
                listed = [driver["name"] for driver in self.document(f"{mode}.json")["drivers"]]
                self.assertNotEqual(listed, [])
                self.assertEqual([name for name in listed if name not in known], [])

    # --- The same in every format.

    def test_json_begins_with_the_head(self):
        self.assertEqual(list(self.list), HEAD + ["drivers"])
        self.assertEqual(list(self.document("all.json")), HEAD + ["mode", "drivers"])

    def test_json_lines_hold_the_same_members_behind_the_head(self):
        lines = [json.loads(line) for line in self.text("list.jsonl").splitlines()]
        self.assertEqual([list(line)[:len(HEAD)] for line in lines], [HEAD] * len(lines))
        self.assertEqual([list(line.items())[len(HEAD):] for line in lines],
                         [list(record.items()) for record in self.records])
        self.assertEqual([line[member] for line in lines for member in ("host", "host_id", "windows")],
                         [self.list[member] for _ in lines for member in ("host", "host_id", "windows")])

    def test_json_lines_and_csv_hold_the_same_listing_of_the_library(self):
        for mode in MODES:
            with self.subTest(mode=mode):
                drivers = self.document(f"{mode}.json")["drivers"]
                lines = [json.loads(line) for line in self.text(f"{mode}.jsonl").splitlines()]
                self.assertEqual([list(line.items())[len(HEAD):] for line in lines],
                                 [[("mode", mode), *driver.items()] for driver in drivers])
                header, *rows = self.csv(f"{mode}.csv")
                self.assertEqual(header, list(drivers[0]))
                self.assertEqual(rows, [list(map(self.harmless, cells(driver, header))) for driver in drivers])

    def csv(self, file):
        return list(csv.reader(io.StringIO(self.text(file), newline=""), strict=True))

    @staticmethod
    def harmless(text):
        """A text that a spreadsheet would take for a formula, behind an apostrophe."""
        return "'" + text if text.startswith(("=", "+", "-", "@", "\t", "\r")) else text

    def test_csv_holds_the_same_cells_and_no_formula(self):
        header, *rows = self.csv("list.csv")
        self.assertEqual(header, derive.MEMBERS)
        self.assertEqual(rows, [list(map(self.harmless, cells(record, header))) for record in self.records])

    def test_raw_csv_holds_the_cells_themselves(self):
        header, *rows = self.csv("raw.csv")
        self.assertEqual(header, ["\ufeff" + derive.MEMBERS[0], *derive.MEMBERS[1:]])
        self.assertEqual(rows, [cells(record, derive.MEMBERS) for record in self.records])

    def test_a_snapshot_holds_the_same_records(self):
        snapshot = self.document("snapshot.json")
        self.assertEqual(list(snapshot), ["kind", *HEAD, "drivers"])
        self.assertEqual(snapshot["kind"], "driverlist snapshot")
        self.assertEqual([list(record.items()) for record in snapshot["drivers"]],
                         [list(record.items()) for record in self.records])

    def test_markdown_shows_the_same_cells(self):
        rows = [self.markdown_cells(line) for line in self.text("list.md").splitlines()]
        self.assertEqual(rows[0], derive.MEMBERS)
        self.assertEqual(rows[2:], [list(map(visible, cells(record, derive.MEMBERS))) for record in self.records])

    @staticmethod
    def markdown_cells(line):
        return [re.sub(r"\\(.)", r"\1", cell) for cell in re.findall(r"(?<=\| )((?:\\.|[^\\|])*?) (?=\|)", line)]

    def test_a_table_shows_the_same_cells(self):
        header, *lines = self.text("list.txt").splitlines()
        self.assertEqual(header.split(), derive.MEMBERS)
        starts = [match.start() for match in re.finditer(r"\S+", header)]
        self.assertEqual([sliced(line, starts) for line in lines],
                         [list(map(visible, cells(record, derive.MEMBERS))) for record in self.records])

    def test_a_page_shows_the_same_cells(self):
        header, *rows = Page(self.text("list.html")).rows
        self.assertEqual(len(header), len(derive.MEMBERS))
        self.assertEqual(rows, [list(map(self.on_a_page, derive.MEMBERS, [record] * len(derive.MEMBERS)))
                                for record in self.records])

    @staticmethod
    def on_a_page(member, record):
        value = record.get(member, "")
        if value is True:
            return "yes"
        if isinstance(value, list):
            return "\n".join(map(visible, value))
        if member == "image_time":
            return value.replace("T", " ").removesuffix("Z")
        return visible(str(value))

    # --- Counts.

    def test_a_page_counts_what_the_list_has(self):
        services, devices, packages = map(self.of_kind, ("service", "device", "package"))
        running = [service for service in services if service["state"] == "Running"]
        third_party = [service for service in services if "microsoft" not in service.get("provider", "").lower()]
        problems = [device for device in devices if "problem_code" in device]
        of = lambda part, whole, things: f"{len(part)} of {len(whole)} {things}"
        figures = {
            "Running services": of(running, services, "services"),
            "Third-party services": of(third_party, services, "services"),
            "Devices without a driver": of(self.without_driver(), devices, "devices"),
            "OEM packages": of(list(filter(is_oem, packages)), packages, "packages"),
        }
        if problems:
            figures["Devices with a problem"] = of(problems, devices, "devices")
        page = Page(self.text("list.html"))
        self.assertEqual({label: page.figures[label] for label in figures}, figures)
        self.assertEqual("Devices with a problem" in page.figures, bool(problems))

    def test_the_bars_of_a_page_count_what_the_list_has(self):
        bars = Page(self.text("list.html")).bars
        services = self.of_kind("service")
        self.assertEqual(sorted(bars["State of services"].values()), sorted(self.counts(services, "state")))
        self.assertEqual(sorted(bars["Start type of services"].values()), sorted(self.counts(services, "start_type")))
        self.assertEqual(sorted(bars["Kind"].values()), sorted(self.counts(self.records, "kind")))
        self.assertEqual(sum(bars["Provider"].values()), len(self.records))
        self.assertEqual(sum(bars["Age of service images"].values()), len(services))

    @staticmethod
    def counts(records, member):
        values = [record[member] for record in records]
        return [values.count(value) for value in set(values)]

    def test_health_counts_what_the_list_has(self):
        health = self.document("health.json")
        problems = [device for device in self.of_kind("device") if "problem_code" in device]
        elsewhere = [service for service in self.of_kind("service") if "image_missing" not in service and
                     not re.match(r"(?i)c:\\(windows|program files|program files \(x86\))\\", service["path"])]
        expected = {
            "known-malicious": 0,
            "known-vulnerable": 0,
            "signature-invalid": 0,
            "unsigned": 0,
            "listed-name": 0,
            "image-in-user-folder": len(elsewhere),
            "device-problem": len(problems),
            "device-without-driver": len(self.without_driver()),
            "not-running": len([service for service in self.of_kind("service")
                                if service["start_type"] in STARTS_BY_ITSELF and service["state"] != "Running"]),
            "image-missing": len([service for service in self.of_kind("service") if "image_missing" in service]),
            "no-version-or-company": len([record for record in self.records if self.has_driver(record) and
                                          not {"version", "provider"} <= set(record)]),
            "several-versions": len(self.several_versions()),
            "unused-package": len(self.unused_packages()),
        }
        self.assertEqual(health["summary"], expected)
        rules = [finding["rule"] for finding in health["findings"]]
        self.assertEqual({rule: rules.count(rule) for rule in expected}, expected)
        told = dict(re.findall(r"(?m)^([a-z-]+) \(.*\), (?:critical|high|medium|low): (\d+)$", self.text("health.txt")))
        self.assertEqual(told, {rule: str(count) for rule, count in expected.items() if count})

    def without_driver(self):
        return [device for device in self.of_kind("device") if "inf" not in device]

    @staticmethod
    def has_driver(record):
        """Whether there is an image, or an installed package, that should have a version and a maker."""
        if record["kind"] == "service":
            return "image_missing" not in record
        return record["kind"] == "device" and "inf" in record

    def several_versions(self):
        versions = {}
        for service in self.of_kind("service"):
            versions.setdefault(image_file(service), set()).add(service.get("version_key"))
        for package in filter(is_oem, self.records):
            for file in files_of(package):
                if file.endswith(".sys"):
                    versions.setdefault(file, set()).add(package.get("version_key"))
        return [file for file, keys in versions.items() if len(keys - {None}) > 1]

    def unused_packages(self):
        images = set(map(image_file, self.of_kind("service")))
        return [package for package in filter(is_oem, self.records)
                if package["devices_using"] == 0 and images.isdisjoint(files_of(package))]

    def test_a_machine_does_not_differ_from_itself(self):
        diff = self.document("diff.json")
        nothing = dict.fromkeys(("added", "removed", "upgraded", "downgraded", "changed"), 0)
        self.assertEqual(diff["summary"], {**nothing, "same": len(self.records)})
        self.assertEqual(diff["differences"], [])


class IntelLaptop(SampleMachine, unittest.TestCase):
    name = "intel-laptop"

    def test_its_nine_running_services_run_and_have_a_version_and_a_path(self):
        running = [service for service in self.of_kind("service") if service["state"] == "Running"]
        self.assertEqual(len(running), 9)
        for service in running:
            self.assertLessEqual({"service", "version", "path"}, set(service))


class AmdServer(SampleMachine, unittest.TestCase):
    name = "amd-server"

    def test_a_running_service_does_not_hide_behind_its_older_package(self):
        raid = [(record["kind"], record["version"], record.get("state")) for record in self.records
                if record["name"] == "smpraid.sys"]
        self.assertEqual(raid, [("service", "7.731.1.0", "Running"), ("package", "7.730.3.0", None)])


class World(SampleMachine, unittest.TestCase):
    name = "world"

    # One per script, and one per mark of direction.
    TEXTS = ("Северный Ветер", "響音工房", "オーディオ ドライバー", "Filter für große Laufwerke", "Lila 🦄 Werkstatt",
             "C:\\Программы\\鍵 🔑\\keybox.sys", "Guard 🔔 Notify", "Guard \u202esys.draug", "Wachturm \u2066אורנה\u2069",
             "מקלדת\u200f Keys", "Токен \u202eнекот")

    def test_documents_for_programs_hold_its_texts_as_they_are(self):
        for file in ("list.json", "list.jsonl", "snapshot.json", "list.csv", "raw.csv"):
            text = self.text(file)
            for expected in self.TEXTS:
                with self.subTest(file=file, text=visible(expected)):
                    self.assertIn(expected.replace("\\", "\\\\") if "json" in file else expected, text)

    def test_documents_for_people_show_its_marks_of_direction_by_their_code(self):
        shown = {
            "list.txt": self.text("list.txt"),
            "list.md": "\n".join(" ".join(self.markdown_cells(line)) for line in self.text("list.md").splitlines()),
            "list.html": "\n".join(" ".join(row) for row in Page(self.text("list.html")).rows),
        }
        for file, text in shown.items():
            self.assertEqual(visible(text.replace("\n", "")), text.replace("\n", ""), file)
            for expected in self.TEXTS:
                with self.subTest(file=file, text=visible(expected)):
                    self.assertIn(visible(expected), text)

    def test_three_equal_cards_are_three_records(self):
        cards = [device for device in self.of_kind("device") if device["identity"] == "F1E5-0201-F1E5-0007"]
        self.assertEqual(len({card["instance_id"] for card in cards}), 3)
        self.assertEqual({card["name"] for card in cards}, {"сеть_F1E5-0201-F1E5-0007"})


if __name__ == "__main__":
    folder = pathlib.Path(sys.argv.pop(1))
    unittest.main()
