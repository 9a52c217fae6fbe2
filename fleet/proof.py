"""What scripts/fleet-proof measures when everything is set up: proof.py --samples FOLDER [options of scripts/fleet-proof]. It ends at the
first thing that is not as it should be."""

import argparse
import concurrent.futures
import json
import os
import pathlib
import platform
import re
import signal
import subprocess
import sys
import tempfile
import textwrap
import threading
import time

HERE = pathlib.Path(__file__).parent
sys.path.insert(0, str(HERE / "clickhouse"))

import ask  # noqa: E402
import keeper  # noqa: E402
import machines  # noqa: E402
import servers  # noqa: E402

DOCUMENT = HERE.parent / "docs/fleet.md"
# Questions that read all rows: what more shards are for.
FULL_SCANS = ("changes-in-full", "drift", "new-in-fleet-machines", "on-one-machine-only", "prevalence")
MOST_RATIO = 0.65
MACHINES_PER_REQUEST = 100


def say(text):
    print(text, file=sys.stderr, flush=True)


def check(fact, what):
    if not fact:
        sys.exit(f"fleet-proof: {what}.")


def table(heads, rows):
    lines = [
        "| " + " | ".join(heads) + " |",
        "| " + " | ".join("---" if i == 0 else "---:" for i in range(len(heads))) + " |",
    ]
    return "\n".join(lines + ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows]) + "\n"


class Lines:
    """The fleet in files, one for each request: by day."""

    def __init__(self, options, folder):
        samples = machines.samples_of(options.samples)
        made = machines.machines(samples, options.machines, options.drivers, options.seed)
        self.parameters = machines.parameters(made, options.days)
        self.days, self.records, self.bytes = [], [], 0
        for day in range(options.days):
            files, records = [], 0
            for first in range(0, len(made), MACHINES_PER_REQUEST):
                texts = []
                for machine in made[first : first + MACHINES_PER_REQUEST]:
                    machine.day(day)
                    texts.append(machine.lines(day))
                    records += texts[-1].count("\n") - 1
                file = folder / f"day-{day}-{first:06d}.jsonl"
                text = "".join(texts).encode()
                file.write_bytes(text)
                self.bytes += len(text)
                files.append(file)
            self.days.append(files)
            self.records.append(records)
        self.crashes = "".join(line for machine in made for line in machine.crashes()).encode()


def ship_all(cluster, files):
    """Sends the files, a sender for each shard; how long it took."""
    senders = max(1, len(cluster.servers) // cluster.replicas)

    def send(numbered):
        number, file = numbered
        cluster.ship(file.read_bytes(), server=number % senders * cluster.replicas)

    start = time.monotonic()
    with concurrent.futures.ThreadPoolExecutor(senders) as pool:
        list(pool.map(send, enumerate(files)))
    return time.monotonic() - start


def disk(cluster):
    sql = "SELECT sum(bytes_on_disk) FROM system.parts WHERE active AND database = 'fleet' AND table IN ('driver_local', 'collection_local', 'version_seen_local')"
    return sum(int(ask.post(server.url, sql)) for server in cluster.servers)


def timed(cluster, name, parameters):
    """The answer, and the best of three times in milliseconds, with a thread for each shard."""
    sql, best = ask.bound(ask.text_of(name), parameters), float("inf")
    for _ in range(3):
        start = time.monotonic()
        answer = ask.post(cluster.url, sql, max_threads=1)
        best = min(best, 1000 * (time.monotonic() - start))
    return answer, best


def measure(shards, lines, folder):
    say(f"{shards} shard{'s' if shards > 1 else ''} ...")
    with servers.Cluster(folder / f"shards-{shards}", shards=shards) as cluster:
        seconds, sizes = [], []
        for files in lines.days:
            seconds.append(ship_all(cluster, files))
            cluster.optimize()
            sizes.append(disk(cluster))
        ask.post(
            cluster.url, lines.crashes, query="INSERT INTO fleet.crash FORMAT JSONEachRow", insert_distributed_sync=1
        )
        count = int(cluster.read("SELECT count() FROM fleet.driver"))
        check(count == sum(lines.records), f"{count} records arrived of {sum(lines.records)}")
        answers = {name: timed(cluster, name, lines.parameters) for name in ask.names()}
        check(answers["incomplete"][0] == "", "collections are incomplete")
        one = post_of_one_machine(cluster, lines)
    return {"seconds": seconds, "sizes": sizes, "answers": answers, "one": one}


def post_of_one_machine(cluster, lines):
    """Milliseconds of a request with the lines of one machine: the median of 51."""
    text = lines.days[0][0].read_text()
    host = json.loads(text[: text.index("\n")])["host"]
    body = "".join(line + "\n" for line in text.splitlines() if f'"host":"{host}"' in line)
    times = []
    for _ in range(51):
        start = time.monotonic()
        cluster.ship(body)
        times.append(1000 * (time.monotonic() - start))
    return sorted(times)[25]


def figures_of_shards(lines, options, folder):
    one, two = (measure(shards, lines, folder) for shards in (1, 2))
    rows = []
    for name in ask.names():
        check(one["answers"][name][0] == two["answers"][name][0], f"one shard and two answer {name} differently")
        times = [measured["answers"][name][1] for measured in (one, two)]
        rows.append(
            (
                name,
                f"{times[0]:,.0f}",
                f"{times[1]:,.0f}",
                f"{times[1] / times[0]:.2f}",
                "yes" if name in FULL_SCANS else "",
            )
        )
    total = sum(lines.records) + options.machines * options.days
    days = []
    for day, records in enumerate(lines.records):
        before = one["sizes"][day - 1] if day else 0
        days.append(
            (
                f"day {day + 1}",
                f"{records:,}",
                *(f"{(records + options.machines) / measured['seconds'][day]:,.0f}" for measured in (one, two)),
                f"{(one['sizes'][day] - before) / records:.2f}",
            )
        )
    scans = {name: two["answers"][name][1] / one["answers"][name][1] for name in FULL_SCANS}
    text = f"{options.machines:,} machines, {options.drivers} drivers asked of the generator, {options.days} days: {total:,} lines, " f"{lines.bytes / 1e6:,.0f} MB as they are sent, {MACHINES_PER_REQUEST} machines in a request, a sender for each shard.\n\n" + table(
        ("", "records", "lines/s, one shard", "lines/s, two shards", "bytes on disk for a record"), days
    ) + f"\nA request with the lines of one machine takes {one['one']:.0f} ms on one shard, {two['one']:.0f} ms on two (median of 51).\n\n" + "Each question, best of three, in milliseconds, with one thread for each shard; one shard and two gave the same answers:\n\n" + table(
        ("question", "one shard", "two shards", "ratio", "reads all rows"), rows
    )
    missed = [name for name in scans if scans[name] > MOST_RATIO]
    if missed:
        text += f"\nTwo shards should answer what reads all rows in at most {MOST_RATIO} of the time of one. Missed by: {', '.join(missed)}.\n"
    return text, on_paper(lines, options, one)


def on_paper(lines, options, one):
    """What a million machines need, from what was measured on one shard."""
    fleet, kept, servers_, threads, bundle = 1_000_000, 90, 4, 16, 100
    machines_of = options.machines
    records = lines.records[-1] / machines_of
    a_day = fleet * (records + 1)
    rate = (lines.records[-1] + machines_of) / one["seconds"][-1]
    disk = (one["sizes"][-1] - one["sizes"][-2]) / lines.records[-1]
    name = max(FULL_SCANS, key=lambda scan: one["answers"][scan][1])
    dearest = one["answers"][name][1] / 1000
    rows = sum(lines.records)
    state = fleet * records * len(lines.records)
    return f"""## A million machines, on paper

From the figures above, for a million machines of {records:.0f} records that report every day:

- **Lines.** {fleet:,} x ({records:.0f} + 1) = {a_day / 1e6:,.0f} million a day when every machine sends everything. With `--unless-digest`, a machine
  without changes sends one, and everything once a week: where one in ten changes on a day,
  {fleet / 1e6:,.0f} million x (1 + (1/10 + 1/7) x {records:.0f}) = {fleet * (1 + (0.1 + 1 / 7) * records) / 1e6:,.0f} million.
- **Ingest.** {a_day / 1e6:,.0f} million / {rate:,.0f} lines a second = {a_day / rate / 3600:,.1f} hours of one such shard; {servers_} of them need
  {a_day / rate / 3600 / servers_:,.1f} hours. Lines that come unbundled cost more: {fleet:,} / 86,400 s = {fleet / 86400:.1f} requests a second, each of which makes
  parts in four tables. Let relays put {bundle} machines into a request: {fleet / bundle / 86400:.2f} a second.
- **Disk.** A record of a later day took {disk:.2f} bytes: {a_day / 1e6:,.0f} million x {disk:.2f} = {a_day * disk / 1e9:,.1f} GB a day, {a_day * disk * kept / 1e9:,.0f} GB for
  {kept} days, {a_day * disk * kept * 2 / 1e9:,.0f} GB with two replicas.
- **Questions.** `{name}` took {dearest:.2f} s over {rows / 1e6:,.2f} million rows with one thread: {rows / 1e6 / dearest:,.1f} million rows a second. The same
  days of a million machines are {state / 1e6:,.0f} million rows: {state / rows * dearest:,.0f} s for one thread, {state / rows * dearest / servers_ / threads:,.0f} s
  for {servers_} shards with {threads} threads, if these share the work evenly. Others read one driver or one machine, and take a fraction of it.
- **Collections.** A row each: {fleet * kept / 1e6:,.0f} million in {kept} days, of which questions about the latest state read those behind `from`.
- **Shards.** {servers_}, for the hours of ingest and the seconds of the dearest question; two replicas each, so that one may fail; three servers for
  ZooKeeper, whose disks do nothing else. Drop months, or let TTL do it.

Nothing of this size was run.
"""


def distinct(cluster, server=0):
    return ask.post(
        cluster.servers[server].url, "SELECT count(), uniqExact(host_id, time, kind, key) FROM fleet.driver"
    ).split()


def send_until_taken(cluster, file, attempts):
    """As a shipper behind a list of servers: tries the next one until one takes the request."""
    for attempt in range(100):
        try:
            cluster.ship(file.read_bytes(), server=attempt % len(cluster.servers))
            return
        except ask.ServerError:
            attempts.append(file)
            time.sleep(0.2)
    check(False, f"no server took {file.name}")


def proof_of_replicas(lines, folder):
    """Two shards of two replicas; one is killed while lines come."""
    say("two shards of two replicas ...")
    files = lines.days[0]
    records = lines.records[0]
    attempts = []
    with keeper.Keeper(folder / "keeper") as keys, servers.Cluster(
        folder / "replicas", shards=2, replicas=2, keeper=keys.port
    ) as cluster:
        half = len(files) // 2
        for file in files[:half]:
            send_until_taken(cluster, file, attempts)
        killer = threading.Timer(0.3, cluster.servers[0].stop, [signal.SIGKILL])
        killer.start()
        for file in files[half:]:
            send_until_taken(cluster, file, attempts)
        killer.join()
        ask_of = 2
        count, different = distinct(cluster, ask_of)
        check(int(different) == records, f"{different} records of {records} arrived while a replica was dead")
        # Repeated requests leave equal rows at most until the next merge.
        start = time.monotonic()
        cluster.servers[0].start()
        pair = cluster.servers[:2]
        sql = "SELECT count() FROM fleet.driver_local"
        for _ in range(600):
            counts = [ask.post(server.url, sql) for server in pair]
            if counts[0] == counts[1]:
                break
            time.sleep(0.1)
        caught_up = time.monotonic() - start
        check(
            counts[0] == counts[1],
            f"the replica that was dead has {counts[0].strip()} rows, the other one {counts[1].strip()}",
        )
        before = distinct(cluster, ask_of)
        for _ in range(10):
            send_until_taken(cluster, files[0], attempts)
        after = distinct(cluster, ask_of)
        check(after[1] == before[1], "a repeated request brought records")
        incomplete = ask.post(cluster.servers[ask_of].url, ask.bound(ask.text_of("incomplete"), lines.parameters))
        check(incomplete == "", "collections are incomplete")
    return (
        f"- Replicas: of two shards with two replicas each, one server was killed (SIGKILL) while {len(files) - half} of {len(files)} requests "
        f"came; {len(attempts)} attempts were repeated. All {records:,} records were there and none twice, {count} rows for {different} records. "
        f"The killed replica was started again and had all rows of the other one after {caught_up:.1f} s.\n"
        f"- The same request ten times more: {before[0]} rows before, {after[0]} after, {after[1]} records both times.\n"
    )


def proof_of_shippers(lines, folder):
    """A request that was cut, and a day without connection."""
    say("cut requests, a day offline ...")
    files = lines.days[0]
    spool = folder / "spool"
    spool.mkdir()
    with servers.Cluster(folder / "one") as cluster:
        text = files[0].read_text().splitlines(keepends=True)
        cluster.ship("".join(text[: len(text) // 2]))
        asked = ask.bound(ask.text_of("incomplete"), lines.parameters)
        cut = cluster.read(asked).splitlines()
        check(len(cut) == 1, f"{len(cut)} collections are incomplete after a cut request")
        host, _, announced, received = cut[0].split("\t")
        cluster.ship("".join(text))
        check(cluster.read(asked) == "", "a collection is incomplete though it came again")
        command = [str(HERE / "shippers/ship.sh"), str(spool), cluster.url]
        environment = {
            "PATH": "/usr/bin:/bin",
            "DRIVERINFO_FLEET_PASSWORD": cluster.passwords["shipper"],
            "RETRIES": "0",
        }
        cluster.servers[0].stop()
        for day, files in enumerate(lines.days):
            for file in files[:5]:
                (spool / file.name).write_bytes(file.read_bytes())
            code = subprocess.run(command, env=environment, stderr=subprocess.DEVNULL).returncode
            check(code == 1, "a shipper without server does not say so")
        waiting = len(list(spool.glob("*.jsonl")))
        cluster.servers[0].start()
        start = time.monotonic()
        subprocess.run(command, env=environment, check=True)
        took = time.monotonic() - start
        check(not list(spool.glob("*.jsonl")), "the spool folder is not empty")
        check(cluster.read(asked) == "", "collections are incomplete")
        hosts = set()
        for files in lines.days:
            for file in files[:5]:
                hosts |= {
                    (record["host_id"], record["time"])
                    for record in map(json.loads, file.read_text().splitlines())
                    if record["kind"] == "collection"
                }
        collections = int(cluster.read("SELECT uniqExact(host_id, time) FROM fleet.collection"))
        check(collections == len(hosts), f"{collections} collections arrived of {len(hosts)}")
    return (
        f"- A request cut in the middle: `incomplete` named {host}, {received} of {announced} lines; after the whole request it named nothing.\n"
        f"- A shipper whose server was away: {waiting} files waited in its spool folder; {took:.1f} s after the server was back all "
        f"{collections:,} collections were there.\n"
    )


def proof_of_duckdb(lines, folder):
    say("DuckDB ...")
    parameters = [part for name, value in lines.parameters.items() for part in ("--" + name, value)]
    linked = folder / "linked"
    linked.mkdir()
    for files in lines.days:
        for file in files[:5]:
            (linked / file.name).symlink_to(file)
    count = sum(file.read_bytes().count(b"\n") for files in lines.days for file in files[:5])
    start = time.monotonic()
    output = subprocess.run(
        ["node", str(HERE / "duckdb/ask.mjs"), "--times", "--folder", str(linked), *parameters],
        check=True,
        stdout=subprocess.PIPE,
        encoding="utf-8",
    ).stdout
    took = time.monotonic() - start
    loaded = re.search(r"loaded in (\d+) ms", output)[1]
    times = [int(found) for found in re.findall(r", (\d+) ms: ", output)]
    return (
        f"- DuckDB, {count:,} lines in {len(list(linked.iterdir()))} files: loaded in {int(loaded):,} ms, questions in {min(times)} to {max(times)} ms, "
        f"{took:.1f} s in all.\n"
    )


def wrapped(text):
    """Paragraphs and items in lines of at most 120 characters; tables and headings as they are."""
    lines, paragraph = [], []

    def end_paragraph():
        if paragraph:
            indent = "  " if paragraph[0].startswith("- ") else ""
            words = " ".join(line.strip() for line in paragraph)
            lines.extend(textwrap.wrap(words, 120, subsequent_indent=indent, break_on_hyphens=False))
            paragraph.clear()

    for line in text.splitlines():
        if not line or line.startswith(("|", "#", "- ")):
            end_paragraph()
        if not line or line.startswith(("|", "#")):
            lines.append(line)
        else:
            paragraph.append(line)
    end_paragraph()
    return "\n".join(lines) + "\n"


def write(text):
    """Puts the figures into the document, between its marks."""
    document = DOCUMENT.read_text()
    begin, end = "<!-- written by scripts/fleet-proof -->\n", "<!-- end -->"
    before, _, rest = document.partition(begin)
    _, _, after = rest.partition(end)
    DOCUMENT.write_text(before + begin + "\n" + wrapped(text) + "\n" + end + after)


def main():
    arguments = argparse.ArgumentParser(
        prog="scripts/fleet-proof",
        description="Measures the fleet's ClickHouse and writes docs/fleet.md.",
        allow_abbrev=False,
    )
    for name, default, what in (
        ("machines", 20000, "how many machines"),
        ("days", 2, "how many days"),
        ("drivers", 300, "how many drivers each has, about"),
        ("seed", 1, "another fleet"),
    ):
        arguments.add_argument(
            "--" + name, type=int, default=default, metavar="N", help=f"{what}; {default} without the option"
        )
    arguments.add_argument("--print", action="store_true", help="print the figures rather than writing docs/fleet.md")
    arguments.add_argument("--samples", help=argparse.SUPPRESS)
    options = arguments.parse_args()
    if options.days < 2 or options.machines < 200:
        arguments.error("at least 2 days and 200 machines are expected.")
    if options.samples is None:
        return
    check(keeper.is_installed(), "ZooKeeper is not installed")
    # Whoever ends this ends the servers too, and the folder goes.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("fleet-proof: ended."))
    with tempfile.TemporaryDirectory(prefix="driverlist-proof-") as name:
        folder = pathlib.Path(name)
        say("making the machines ...")
        (folder / "lines").mkdir()
        lines = Lines(options, folder / "lines")
        processor = next(
            (
                line.split(": ")[1]
                for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines()
                if "model name" in line
            ),
            "unknown",
        )
        text = (
            f"Debian's ClickHouse 18.16 on the loopback of one machine with {os.cpu_count()} cores ({processor.strip()}), "
            f"Linux {platform.release().split('-')[0]}, load {os.getloadavg()[0]:.1f} at the start.\n\n"
        )
        measured, paper = figures_of_shards(lines, options, folder)
        text += (
            measured
            + "\n"
            + proof_of_replicas(lines, folder)
            + proof_of_shippers(lines, folder)
            + proof_of_duckdb(lines, folder)
        )
        text += "\n" + paper
    if options.print:
        print(text)
    else:
        write(text)


if __name__ == "__main__":
    try:
        main()
    except KeyboardInterrupt:
        sys.exit(130)
    except (ask.ServerError, RuntimeError, OSError) as error:
        sys.exit(f"fleet-proof: {error}")
