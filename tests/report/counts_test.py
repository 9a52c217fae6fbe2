"""Every number of a page and of an examination, counted again in the list of the same machine:
counts_test.py FOLDER [TEST...], FOLDER holding what write-reports wrote."""

import collections
import html.parser
import json
import pathlib
import re
import sys
import unittest

from texts import visible

MACHINES = ("intel-laptop", "amd-server", "world")
STATES = ("Running", "Stopped")
START_TYPES = ("Boot Start", "System Start", "Automatic", "Manual", "Disabled")


class Page(html.parser.HTMLParser):
    """The summary of a page: `figures` by their labels, and `charts`, the numbers of the bars by heading and label."""

    def __init__(self, text):
        super().__init__()
        self.figures, self.charts, self.time = {}, {}, None
        self._place, self._heading, self._label = None, None, None
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        self._place = attributes.get("class") if tag == "span" else tag
        if tag == "time":
            self.time = attributes["datetime"]

    def handle_endtag(self, tag):
        # What follows an element in a figure belongs to its number.
        self._place = None

    def handle_data(self, text):
        if self._place == "dt":
            self._label = text
        elif self._place == "dd" and text.strip().isdigit():
            self.figures[self._label] = text.strip()
        elif self._place == "small":
            self.figures[self._label] += " " + text
        elif self._place == "h2":
            self._heading = text
            self.charts[text] = {}
        elif self._place == "label":
            self._label = text
        elif self._place == "count":
            self.charts[self._heading][self._label] = text
        elif self._place == "note":
            self.charts[self._heading][self._label] += ", " + text


def of_kind(records, kind):
    return [record for record in records if record["kind"] == kind]


def is_running(record):
    return record.get("state") == "Running"


def is_oem(record):
    return record["inf"].lower().startswith("oem")


def has_no_driver(record):
    return "inf" not in record


def is_third_party(record):
    return not record.get("provider", "").lower().startswith("microsoft")


def groups(records, member, first=()):
    """Records by a text: those of `first` in their order, then the others, largest first, then those without one."""
    count = collections.Counter(record.get(member) for record in records)
    unknown = count.pop(None, 0)
    place = {text: position for position, text in enumerate(first)}
    order = sorted(count, key=lambda text: (place.get(text, len(first)), -count[text], text.encode()))
    found = {visible(text): count[text] for text in order}
    return {**found, **({"Unknown": unknown} if unknown else {})}


def providers(records):
    found = groups(records, "provider")
    unknown = {"Unknown": found.pop("Unknown")} if "Unknown" in found else {}
    if len(found) > 9:
        rest = list(found)[8:]
        found = {**dict(list(found.items())[:8]), f"{len(rest)} other providers": sum(found[text] for text in rest)}
    return {**found, **unknown}


def ages(services, now):
    """Services by the full years since their images were made."""
    labels = {0: "Under 1 year", 1: "1 to 2 years", 2: "2 to 5 years", 5: "5 to 10 years", 10: "10 years and more"}
    found = collections.Counter()
    for service in services:
        time = service.get("image_time")
        reached = [years for years in labels if time and time <= f"{int(now[:4]) - years:04}{now[4:]}"]
        found[labels[max(reached)] if reached else "In the future" if time else "No time"] += 1
    return {label: found[label] for label in (*labels.values(), "In the future", "No time")
            if found[label] or label in labels.values()}


def base_name(path):
    return path.replace("/", "\\").rpartition("\\")[2].lower()


def several_versions(records):
    versions = collections.defaultdict(set)
    for record in records:
        if record.get("version", "N/A") == "N/A":
            continue
        if record["kind"] == "service":
            versions[base_name(record["path"])].add(record["version_key"])
        if record["kind"] == "package" and is_oem(record):
            for file in record.get("files", []):
                if file.lower().endswith(".sys"):
                    versions[file.lower()].add(record["version_key"])
    return [file for file in sorted(versions) if len(versions[file]) > 1]


def unused_packages(records):
    images = {base_name(service["path"]) for service in of_kind(records, "service")}
    return [package["inf"] for package in of_kind(records, "package")
            if is_oem(package) and package["devices_using"] == 0
            and not images & {file.lower() for file in package.get("files", [])}]


def subjects(records):
    """What each rule of an examination finds."""
    services, devices = of_kind(records, "service"), of_kind(records, "device")
    driven = [service for service in services if "image_missing" not in service]
    driven += [device for device in devices if not has_no_driver(device)]
    system = re.compile(r"c:\\(windows|program files|program files \(x86\))\\", re.IGNORECASE)
    return {
        # The reports are made without a look at the images.
        **{rule: [] for rule in ("known-malicious", "known-vulnerable", "signature-invalid", "unsigned", "listed-name")},
        "image-in-user-folder": [service["service"] for service in services
                                 if "image_missing" not in service and not system.match(service["path"])],
        "device-problem": [device["name"] for device in devices if "problem_code" in device],
        "device-without-driver": [device["name"] for device in devices if has_no_driver(device)],
        "not-running": [service["service"] for service in services
                        if service.get("start_type") in START_TYPES[:3] and not is_running(service)],
        "image-missing": [service["service"] for service in services if "image_missing" in service],
        "no-version-or-company": [driver["service" if driver["kind"] == "service" else "name"] for driver in driven
                                  if driver.get("version", "N/A") == "N/A" or "provider" not in driver],
        "several-versions": several_versions(records),
        "unused-package": unused_packages(records),
    }


class Counts(unittest.TestCase):
    maxDiff = None

    def for_each_machine(self, check):
        for machine in MACHINES:
            with self.subTest(machine):
                records = json.loads((folder / f"{machine}.json").read_text(encoding="utf-8"))["drivers"]
                self.assertGreater(len(records), 10)
                check(machine, records)

    def page(self, machine):
        return Page((folder / f"{machine}.html").read_text(encoding="utf-8"))

    def test_figures_of_the_page_are_those_of_the_list(self):
        def check(machine, records):
            services, devices, packages = (of_kind(records, kind) for kind in ("service", "device", "package"))

            def figure(part, whole, thing):
                return f"{len(part)} of {len(whole)} {thing}{'' if len(whole) == 1 else 's'}"

            problems = [device for device in devices if "problem_code" in device]
            self.assertEqual(self.page(machine).figures, {
                "Running services": figure([s for s in services if is_running(s)], services, "service"),
                "Third-party services": figure([s for s in services if is_third_party(s)], services, "service"),
                "Devices without a driver": figure([d for d in devices if has_no_driver(d)], devices, "device"),
                **({"Devices with a problem": figure(problems, devices, "device")} if problems else {}),
                "OEM packages": figure([p for p in packages if is_oem(p)], packages, "package"),
            })

        self.for_each_machine(check)

    def test_bars_of_the_page_are_those_of_the_list(self):
        def check(machine, records):
            page = self.page(machine)
            services = of_kind(records, "service")
            running = groups([service for service in services if is_running(service)], "start_type")
            kinds = {"Services": "service", "Devices": "device", "Packages": "package", "Chipset packages": "chipset"}
            expected = {
                "Provider": providers(records),
                "Kind": {label: len(of_kind(records, kind)) for label, kind in kinds.items() if of_kind(records, kind)},
                "State of services": groups(services, "state", STATES),
                "Start type of services": {text: f"{count}, {running.get(text, 0)} running"
                                           for text, count in groups(services, "start_type", START_TYPES).items()},
                "Age of service images": ages(services, page.time),
            }
            for heading, bars in expected.items():
                shown = list(page.charts[heading].items())
                self.assertEqual(shown, [(label, str(count)) for label, count in bars.items()])
            self.assertEqual(list(page.charts), list(expected))

        self.for_each_machine(check)

    def test_findings_are_those_of_the_list(self):
        def check(machine, records):
            health = json.loads((folder / f"{machine}.health.json").read_text(encoding="utf-8"))
            expected = subjects(records)
            self.assertEqual(health["summary"], {rule: len(found) for rule, found in expected.items()})
            self.assertEqual([(finding["rule"], finding["subject"]) for finding in health["findings"]],
                             [(rule, subject) for rule, found in expected.items() for subject in found])

        self.for_each_machine(check)


if __name__ == "__main__":
    folder = pathlib.Path(sys.argv.pop(1)) if len(sys.argv) > 1 else None
    if not folder or not folder.is_dir():
        sys.exit("counts_test: it takes the folder of the reports; scripts/test-report writes them.")
    unittest.main(verbosity=2)
