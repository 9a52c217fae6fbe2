"""The answers to all questions, from the lines alone: plain Python, which shares nothing with any engine but version_key()."""

import collections
import json

from machines import version_key

ESCAPES = str.maketrans({"\\": "\\\\", "\t": "\\t", "\n": "\\n", "\r": "\\r", "'": "\\'"})
KEYS = {"service": "service", "device": "instance_id", "package": "inf", "chipset": "name"}


def text(rows):
    return "".join("\t".join(str(cell).translate(ESCAPES) for cell in row) + "\n" for row in rows)


def plain(time):
    return time.replace("T", " ").rstrip("Z")


def by_bytes(*cells):
    return tuple(cell.encode() if isinstance(cell, str) else cell for cell in cells)


class Answers:
    def __init__(self, lines, crashes, parameters):
        self.__dict__.update(parameters, start=parameters["from"])
        self.collections = {}
        self.drivers = collections.defaultdict(list)
        self.hosts = {}
        for line in dict.fromkeys(lines):
            record = json.loads(line)
            where = (record["host_id"], plain(record["time"]))
            self.hosts[record["host_id"]] = record["host"]
            if record["kind"] == "collection":
                self.collections[where] = record
            else:
                record["key"] = record[KEYS[record["kind"]]].lower()
                self.drivers[where].append(record)
        self.crashed = [json.loads(line) for line in crashes]
        self.whole = {
            where for where, first in self.collections.items() if len(self.drivers[where]) >= first["drivers"]
        }
        self.now = self.last(self.whole)

    @staticmethod
    def last(wheres):
        found = {}
        for host, time in wheres:
            found[host] = max(found.get(host, ""), time)
        return found

    def state(self, times):
        """Each record of each machine at its time."""
        return [(host, record) for host, time in times.items() for record in self.drivers[host, time]]

    def packages_and_services(self):
        return [(host, record) for host, record in self.state(self.now) if record["kind"] in ("service", "package")]

    def older(self):
        return [
            (host, record["version"])
            for host, record in self.state(self.now)
            if record["name"] == self.driver
            and "version" in record
            and version_key(record["version"]) < version_key(self.version)
        ]

    def older_than(self):
        rows = {(self.hosts[host], version) for host, version in self.older()}
        return text(sorted(rows, key=lambda row: by_bytes(version_key(row[1]), *row)))

    def older_than_count(self):
        return text([[len({host for host, _ in self.older()})]])

    def versions_of(self):
        found = collections.defaultdict(set)
        for host, record in self.state(self.now):
            if record["name"] == self.driver:
                found[record.get("version", "")].add(host)
        return text([(version, len(found[version])) for version in sorted(found, key=version_key)])

    def on_machine(self):
        rows = {
            (record["kind"], record["name"], record["key"], record.get("version", ""))
            for host, record in self.state(self.now)
            if self.hosts[host] == self.host
        }
        return text(sorted(rows, key=lambda row: by_bytes(*row)))

    def last_versions(self):
        found = {}
        for (host, time), records in sorted(self.drivers.items()):
            for record in records:
                if record["name"] == self.driver and record["kind"] == "service":
                    found[host] = record["version"]
        counts = collections.Counter(found.values())
        return text(sorted(counts.items(), key=lambda row: (-row[1], row[0])))

    def names(self):
        found = collections.defaultdict(list)
        for host, record in self.packages_and_services():
            found[record["name"]].append((host, record))
        return found

    def on_one_machine_only(self):
        rows = []
        for name, having in self.names().items():
            if len({host for host, _ in having}) == 1:
                rows.append(
                    (
                        name,
                        self.hosts[having[0][0]],
                        max(record.get("version", "") for _, record in having),
                        min(record.get("provider", "") for _, record in having),
                    )
                )
        return text(sorted(rows, key=lambda row: by_bytes(row[0])))

    def prevalence(self):
        rows = [
            (name, len({host for host, _ in having}), len({record.get("version_key", "") for _, record in having}))
            for name, having in self.names().items()
        ]
        return text(sorted(rows, key=lambda row: (-row[1], row[0].encode()))[:20])

    def first_sights(self, members):
        found = collections.defaultdict(set)
        for (host, time), records in self.drivers.items():
            for record in records:
                if "version" in record:
                    found[tuple(record.get(member, "") for member in members)].add((time, host))
        return {row: sights for row, sights in found.items() if min(sights)[0] >= self.since}

    def new_in_fleet(self):
        rows = self.first_sights(("name", "version_key", "version", "provider"))
        return text(
            [
                (name, version, provider, min(rows[name, key, version, provider])[0])
                for name, key, version, provider in sorted(rows, key=lambda row: by_bytes(*row))
            ]
        )

    def new_in_fleet_machines(self):
        rows = self.first_sights(("name", "version_key", "version"))
        return text(
            [
                (name, version, min(rows[name, key, version])[0], len({host for _, host in rows[name, key, version]}))
                for name, key, version in sorted(rows, key=lambda row: by_bytes(*row))
            ]
        )

    def changed(self):
        digests = collections.defaultdict(dict)
        for (host, time), first in sorted(self.collections.items()):
            digests[host][time >= self.since] = first["digest"]
        return {host for host, sides in digests.items() if len(sides) == 2 and sides[True] != sides[False]}

    def machines_that_changed(self):
        return text([[len(self.changed())]])

    def changes(self, hosts=None):
        old = self.last(where for where in self.whole if where[1] < self.since)
        new = self.last(where for where in self.whole if where[1] >= self.since)
        found = collections.defaultdict(list)
        for host in old.keys() & new.keys() if hosts is None else old.keys() & new.keys() & hosts:
            before, after = (
                {
                    (record["kind"], record["key"]): record.get("version_key", "")
                    for record in self.drivers[host, side[host]]
                }
                for side in (old, new)
            )
            for key in before.keys() | after.keys():
                if before.get(key) == after.get(key):
                    continue
                what = (
                    "added"
                    if key not in before
                    else "removed"
                    if key not in after
                    else "changed"
                    if "" in (before[key], after[key])
                    else "upgraded"
                    if before[key] < after[key]
                    else "downgraded"
                )
                found[what].append(host)
        return text([(what, len(found[what]), len(set(found[what]))) for what in sorted(found)])

    def changes_in_full(self):
        return self.changes()

    def changes_of_changed(self):
        return self.changes(self.changed())

    def changes_by_day(self):
        digests, days = {}, collections.Counter()
        for (host, time), first in sorted(self.collections.items()):
            days[time[:10]] += digests.get(host, first["digest"]) != first["digest"]
            digests[host] = first["digest"]
        return text(sorted((day, count) for day, count in days.items() if count))

    def drift(self):
        having = collections.defaultdict(set)
        for host, record in self.packages_and_services():
            having[host].add((record["kind"], record["name"], record.get("version_key", "")))
        golden = next(records for host, records in having.items() if self.hosts[host] == self.host)
        golden_names = {row[:2] for row in golden}
        rows = []
        for host, records in having.items():
            names = {row[:2] for row in records}
            rows.append(
                (
                    self.hosts[host],
                    len(names - golden_names),
                    len({row[:2] for row in records - golden} & golden_names),
                    len(golden_names - names),
                )
            )
        return text(sorted(rows, key=lambda row: (-sum(row[1:]), row[0]))[:20])

    def crashes(self):
        counts = collections.Counter((crash["host_id"], crash["name"]) for crash in self.crashed)
        crashed = {name for _, name in counts}
        having = {
            (host, record["name"], record.get("version", ""))
            for host, record in self.state(self.now)
            if record["kind"] == "service" and record["name"] in crashed
        }
        found = collections.defaultdict(list)
        for host, name, version in having:
            found[name, version].append(counts[host, name])
        rows = [
            (name, version, len(each), sum(each), sum(each) * 1000 // len(each))
            for (name, version), each in found.items()
            if len(each) >= 5
        ]
        return text(sorted(rows, key=lambda row: (-row[3] / row[2], row[0].encode(), version_key(row[1])))[:20])

    def vulnerable(self):
        rows = {
            (self.hosts[host], record["name"], record["version"], record["state"], record["signature"], record["known"])
            for host, record in self.state(self.now)
            if "known" in record
        }
        return text(sorted(rows, key=lambda row: by_bytes(*row)))

    def incomplete(self):
        rows = [
            (first["host"], time, first["drivers"], len(self.drivers[host, time]))
            for (host, time), first in self.collections.items()
            if len(self.drivers[host, time]) < first["drivers"] and "unchanged" not in first
        ]
        return text(sorted(rows))

    def all(self):
        """Name of each question, and its answer."""
        methods = {"changes": self.changes_of_changed}
        names = (
            "changes changes-by-day changes-in-full crashes drift incomplete last-versions machines-that-changed new-in-fleet "
            "new-in-fleet-machines older-than older-than-count on-machine on-one-machine-only prevalence versions-of vulnerable"
        ).split()
        return {name: methods.get(name, getattr(self, name.replace("-", "_"), None))() for name in names}
