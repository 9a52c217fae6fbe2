"""One fleet, asked in every engine: fleet_test.py FOLDER [TEST...], FOLDER being one to work in."""

import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

import fleet
from fleet import ROOT, ask, machines

import servers  # noqa: I100

MODULES = ROOT / ".deps/fleet"
DATABASE_TABLES = ("driver", "collection", "version_seen")


def run(*command, **more):
    return subprocess.run(
        [str(part) for part in command], check=True, stdout=subprocess.PIPE, encoding="utf-8", **more
    ).stdout


class Machines(unittest.TestCase):
    def test_are_the_same_for_the_same_seed_and_have_what_questions_look_for(self):
        again = fleet.Fleet()
        self.assertEqual(again.days, FLEET.days)
        self.assertEqual({name for name, answer in FLEET.answers.items() if not answer}, set())
        self.assertEqual(set(FLEET.answers), set(ask.names()))

    def test_announce_the_digest_of_their_lines(self):
        head = {"schema_version", "tool_version", "host", "host_id", "windows", "time"}
        lines = [json.loads(line) for line in FLEET.days[0].splitlines()]
        first = lines[0]
        records = [
            {name: value for name, value in line.items() if name not in head}
            for line in lines[1:]
            if line["host"] == first["host"]
        ]
        text = "".join(machines.compact(record) + "\n" for record in records)
        self.assertEqual((first["drivers"], first["digest"]), (len(records), hashlib.sha256(text.encode()).hexdigest()))

    def test_have_the_version_keys_that_driverlist_writes(self):
        for sample in fleet.samples():
            for record in sample:
                self.assertEqual(
                    machines.version_key(record["version"]) if "version" in record else None, record.get("version_key")
                )


# Versions that someone may have written, and their keys.
KEYS = {version: machines.version_key(version) for version in sorted(set(fleet.odd_versions(600, 1)))}


def sql_of_keys():
    """Asks ClickHouse for the keys, by what the questions have for the version that they are asked for."""
    key = re.search(r"arrayStringConcat\(.*?'\.'\)\)\)\)", ask.text_of("older-than"), re.S)[0]
    key = key.replace("{version:String}", "version")
    return f"SELECT version, {key} AS made FROM (SELECT arrayJoin([{', '.join(map(ask.quoted, KEYS))}]) AS version)"


def comparable(a, b):
    """Whether numbers meet numbers and texts meet texts: elsewhere the library's order runs in circles, and no key can follow it."""

    def kinds(version):
        parts = version.replace(" ", ".").split(".")
        return ["" if not part else machines.version_key(part)[0] in "abcdefghijklmnopq" for part in parts]

    return all(x == y for x, y in zip(kinds(a), kinds(b)))


COMPILER = shutil.which("clang++-14") or shutil.which("clang++")


@unittest.skipUnless(COMPILER, "clang++ is not installed; scripts/setup --tests installs it")
class Versions(unittest.TestCase):
    def test_are_ordered_by_their_keys_as_the_library_orders_them(self):
        program = WORK / "compareversions"
        library = ROOT / "src/module/osinfos/driverinfo"
        headers = ROOT / ".deps/x86_64-w64-mingw32/include"
        sources = [pathlib.Path(__file__).parent / "compareversions.cpp", library / "versioncompare.cpp"]
        run(COMPILER, "-std=c++17", "-O1", f"-I{library}", "-isystem", headers, *sources, "-o", program)
        pairs = [(a, b) for a in list(KEYS)[::3] for b in KEYS if comparable(a, b)]
        self.assertGreater(len(pairs), 5000)
        signs = run(program, input="".join(f"{a}\t{b}\n" for a, b in pairs)).split()
        keys = {version: key.encode() for version, key in KEYS.items()}
        wrong = [
            (a, b, sign)
            for (a, b), sign in zip(pairs, signs, strict=True)
            if int(sign) != (keys[a] > keys[b]) - (keys[a] < keys[b])
        ]
        self.assertEqual(wrong, [])


class Files(unittest.TestCase):
    def test_of_the_schema_are_what_the_script_writes(self):
        written = WORK / "schema"
        written.mkdir()
        run(sys.executable, "-B", ROOT / "fleet/clickhouse/write-schema", written)
        for layout in ("one", "shards", "replicas"):
            self.assertEqual(
                (ROOT / f"fleet/clickhouse/schema/{layout}.sql").read_text(), (written / f"{layout}.sql").read_text()
            )

    def test_of_the_questions_have_one_text_for_each_engine_under_one_sentence(self):
        for path in (ROOT / "fleet/clickhouse/questions").iterdir():
            first = path.read_text().splitlines()[0]
            self.assertRegex(first, r"^-- [A-Z].*\.$")
            self.assertEqual((ROOT / "fleet/duckdb/questions" / path.name).read_text().splitlines()[0], first)
            self.assertEqual(path.read_text().count(";"), 0)

    def test_of_the_schema_have_every_member_of_a_record(self):
        members = json.loads((ROOT / "docs/schema/record.schema.json").read_text())["properties"]
        columns = set(re.findall(r"^  (\w+) ", (ROOT / "fleet/clickhouse/schema/one.sql").read_text(), re.M))
        # It is the key of its record.
        self.assertEqual(set(members) - columns, {"instance_id"})
        loaded = (ROOT / "fleet/duckdb/load.sql").read_text()
        self.assertEqual({member for member in members if f'"{member}":' not in loaded}, set())


class Engine:
    """What holds for every engine. `ask` gives the answer to a question."""

    def check_answers(self):
        for name, answer in FLEET.answers.items():
            with self.subTest(question=name):
                self.assertEqual(self.ask(name), answer)


@unittest.skipUnless((MODULES / "duckdb/node_modules").is_dir(), "DuckDB is not there; scripts/setup-fleet fetches it")
class DuckDb(unittest.TestCase, Engine):
    maxDiff = None

    def load(self, folder, *questions):
        parameters = [part for name, value in FLEET.parameters.items() for part in ("--" + name, value)]
        crashes = WORK / "crashes.ndjson"
        crashes.write_text(FLEET.crashes)
        return run(
            "node", ROOT / "fleet/duckdb/ask.mjs", "--folder", folder, "--crashes", crashes, *parameters, *questions
        )

    def answers(self, folder):
        parts = re.split(r"^-- ([a-z-]+): .*\n", self.load(folder), flags=re.M)[1:]
        return dict(zip(parts[::2], parts[1::2]))

    def folder(self, *texts):
        folder = WORK / self.id().rpartition(".")[2]
        folder.mkdir()
        for number, text in enumerate(texts):
            (folder / f"{number}.jsonl").write_text(text)
        return folder

    def test_answers_all_questions(self):
        self.assertEqual(self.answers(self.folder(*FLEET.days)), FLEET.answers)

    def test_answers_the_same_when_lines_come_twice_and_bad_ones_among_them(self):
        bad = "".join(line + "\n" for line, _ in fleet.bad_lines())
        folder = self.folder(*FLEET.days, bad, FLEET.days[1])
        self.assertEqual(self.answers(folder), FLEET.answers)

    def rows(self, database, sql):
        """Of a database that was made before, asked without the program."""
        script = (
            "const {DuckDBInstance} = require('@duckdb/node-api'); (async () => {"
            "const connection = await (await DuckDBInstance.create(process.argv[1])).connect();"
            "console.log(JSON.stringify((await connection.runAndReadAll(process.argv[2])).getRows())) })()"
        )
        return json.loads(run("node", "-e", script, database, sql, cwd=MODULES / "duckdb"))

    def test_gives_the_reason_for_each_bad_line_and_makes_the_keys_of_versions(self):
        folder = self.folder(*(line + "\n" for line, _ in fleet.bad_lines()))
        database = folder / "fleet.duckdb"
        run("node", ROOT / "fleet/duckdb/ask.mjs", "--folder", folder, "--database", database, "older-than")
        rejected = sorted(self.rows(database, "SELECT beginning, reason FROM rejected"))
        self.assertEqual(rejected, sorted([line[:1000], reason] for line, reason in fleet.bad_lines()))
        versions = ", ".join("'" + version.replace("'", "''") + "'" for version in KEYS)
        keys = self.rows(database, f"SELECT v, version_key(v) FROM (SELECT unnest([{versions}]) AS v)")
        self.assertEqual(dict(keys), KEYS)

    def test_reads_snapshots_too(self):
        folder = WORK / "snapshots"
        folder.mkdir()
        for path in fleet.SNAPSHOTS:
            shutil.copy(path, folder)
        snapshots = [json.loads(path.read_text(encoding="utf-8")) for path in fleet.SNAPSHOTS]
        host = snapshots[0]["host"]
        rows = {
            (record["kind"], record["name"], record.get("version", ""))
            for snapshot in snapshots
            if snapshot["host"] == host
            for record in snapshot["drivers"]
        }
        found = run(
            "node", ROOT / "fleet/duckdb/ask.mjs", "--folder", folder, "--host", host, "on-machine"
        ).splitlines()
        self.assertTrue(found)
        self.assertLessEqual({tuple(row.split("\t")[index] for index in (0, 1, 3)) for row in found}, rows)

    def test_refuses_a_folder_without_lines_and_an_unknown_question_in_one_sentence(self):
        for arguments, sentence in (
            ([self.folder(), "drift"], "holds no *.jsonl and no *.json file"),
            ([self.folder_with_day(), "what"], 'there is no question "what"'),
        ):
            done = subprocess.run(
                ["node", ROOT / "fleet/duckdb/ask.mjs", "--folder", *map(str, arguments)],
                stderr=subprocess.PIPE,
                encoding="utf-8",
            )
            self.assertEqual(
                (done.returncode, done.stderr.count("\n"), sentence in done.stderr), (1, 1, True), done.stderr
            )

    def test_says_that_it_is_not_there(self):
        done = subprocess.run(
            ["node", ROOT / "fleet/duckdb/ask.mjs", "--folder", WORK],
            env={**os.environ, "DRIVERINFO_FLEET_MODULES": str(WORK)},
            stderr=subprocess.PIPE,
            encoding="utf-8",
        )
        self.assertEqual(done.stderr, "ask: DuckDB is not there; scripts/setup-fleet fetches it\n")

    def folder_with_day(self):
        folder = WORK / "day"
        folder.mkdir()
        (folder / "day.jsonl").write_text(FLEET.days[0])
        return folder


@unittest.skipUnless(
    servers.is_installed(), "clickhouse-server is not installed; scripts/setup-fleet --clickhouse installs Debian 12's"
)
class TwoShards(unittest.TestCase, Engine):
    """Debian's server."""

    maxDiff = None
    shards = 2

    @classmethod
    def setUpClass(cls):
        cls.cluster = servers.Cluster(WORK / cls.__name__, shards=cls.shards)
        cls.enterClassContext(cls.cluster)
        for day in FLEET.days:
            cls.cluster.ship(day)
        ask.post(
            cls.cluster.url,
            FLEET.crashes.encode(),
            query="INSERT INTO fleet.crash FORMAT JSONEachRow",
            insert_distributed_sync=1,
        )

    def ask(self, name):
        return self.cluster.read(ask.bound(ask.text_of(name), FLEET.parameters))

    def counts(self):
        tables = [self.cluster.read(f"SELECT count() FROM fleet.{table}") for table in DATABASE_TABLES]
        self.assertNotIn("0\n", tables)
        return tables

    def refused(self, user, sql):
        with self.assertRaises(ask.ServerError) as caught:
            ask.post(self.cluster.url, sql, "fleet_" + user, self.cluster.passwords[user])
        return str(caught.exception)

    def test_answer_all_questions_on_every_server(self):
        self.check_answers()
        self.assertEqual(
            self.cluster.read(ask.bound(ask.text_of("drift"), FLEET.parameters), server=self.shards - 1),
            FLEET.answers["drift"],
        )

    def test_keep_all_lines_of_a_machine_on_one_shard(self):
        hosts = [
            set(ask.post(server.url, "SELECT DISTINCT host_id FROM fleet.driver_local").split())
            for server in self.cluster.servers
        ]
        self.assertTrue(all(hosts))
        self.assertEqual(sum(map(len, hosts)), len(set.union(*hosts)))

    def test_answer_the_same_when_requests_come_ten_times_and_in_other_pieces(self):
        lines = FLEET.days[1].splitlines(keepends=True)
        for _ in range(10):
            self.cluster.ship(FLEET.days[1])
        middle = len(lines) // 2 + 3
        self.cluster.ship("".join(lines[:middle]))
        self.cluster.ship("".join(lines[middle:]))
        self.check_answers()
        self.cluster.optimize()
        self.check_answers()
        self.assertEqual(
            int(self.cluster.read("SELECT count() FROM fleet.driver")),
            FLEET.lines - len(re.findall('"collection"', "".join(FLEET.days))),
        )

    def test_take_packed_lines(self):
        import gzip
        import urllib.request

        before = self.counts()
        request = urllib.request.Request(
            self.cluster.url + "/?query=INSERT%20INTO%20intake.line%20FORMAT%20CSV",
            gzip.compress(FLEET.days[0].encode()),
            {
                "Content-Encoding": "gzip",
                "X-ClickHouse-User": "fleet_shipper",
                "X-ClickHouse-Key": self.cluster.passwords["shipper"],
            },
        )
        urllib.request.urlopen(request).read()
        self.assertNotEqual(self.counts(), before)
        self.check_answers()

    def test_let_shippers_insert_and_nothing_else(self):
        for sql, words in (
            ("SELECT count() FROM fleet.driver", "Access denied"),
            ("SELECT count() FROM fleet.landing", "Access denied"),
            ("INSERT INTO fleet.landing VALUES ('x')", "Access denied"),
            ("DROP TABLE intake.line", "prohibited"),
            ("CREATE TABLE intake.other (a String) ENGINE = Log", "prohibited"),
            ("SYSTEM SHUTDOWN", "prohibited"),
            ("ALTER TABLE intake.line ADD COLUMN b String", "prohibited"),
        ):
            with self.subTest(sql=sql):
                self.assertIn(words, self.refused("shipper", sql))
        self.assertEqual(
            ask.post(
                self.cluster.url, "SELECT count() FROM intake.line", "fleet_shipper", self.cluster.passwords["shipper"]
            ),
            "0\n",
        )

    def test_let_readers_read_and_nothing_else(self):
        for sql, words in (
            ("INSERT INTO fleet.crash_local SELECT now(), '', '', ''", "readonly"),
            ("DROP TABLE fleet.driver_local", "readonly"),
            ("SELECT count() FROM intake.line", "Access denied"),
            ("SET readonly = 0", "readonly"),
        ):
            with self.subTest(sql=sql):
                self.assertIn(words, self.refused("reader", sql))

    def test_make_the_keys_of_versions_that_the_library_orders(self):
        rows = self.cluster.read(sql_of_keys() + " FORMAT JSONEachRow").splitlines()
        self.assertEqual({row["version"]: row["made"] for row in map(json.loads, rows)}, KEYS)


@unittest.skipUnless(
    servers.is_installed(), "clickhouse-server is not installed; scripts/setup-fleet --clickhouse installs Debian 12's"
)
class BadLines(unittest.TestCase):
    maxDiff = None

    def test_are_put_aside_with_the_reason_and_the_others_are_taken(self):
        bad = fleet.bad_lines()
        text, hostile = fleet.hostile_lines()
        cluster = self.enterContext(servers.Cluster(WORK / "BadLines"))
        # Between good lines, in one request, with both ends of line.
        # The one line of which a part is dropped: with a carriage return in it.
        dropped = "a line\rin two\n"
        reasons = sorted([(line[:1000], reason) for line, reason in bad] + [("a line", dict(bad)["no JSON"])])
        cluster.ship(
            "".join(line + "\n" for line, _ in bad[:9])
            + dropped
            + hostile
            + "".join(line + "\r\n" for line, _ in bad[9:])
        )
        rows = [
            json.loads(row)
            for row in cluster.read("SELECT beginning, reason FROM fleet.rejected FORMAT JSONEachRow").splitlines()
        ]
        self.assertEqual(sorted((row["beginning"], row["reason"]) for row in rows), reasons)
        columns = "host, windows, description, service, files, known, size"
        row = json.loads(cluster.read(f"SELECT {columns} FROM fleet.driver FORMAT JSONEachRow"))
        self.assertEqual((row["host"], row["windows"], row["description"], row["service"]), (text,) * 4)
        self.assertEqual(json.loads(row["known"]), [{"list": "x", "id": text}])
        parameters = {**ask.PARAMETERS, "host": text}
        self.assertEqual(cluster.read(ask.bound(ask.text_of("incomplete"), parameters)), "")
        self.assertEqual(cluster.read(ask.bound(ask.text_of("on-machine"), parameters)).count("hostile.sys"), 1)


@unittest.skipUnless(
    servers.is_installed(), "clickhouse-server is not installed; scripts/setup-fleet --clickhouse installs Debian 12's"
)
class OneServer(unittest.TestCase, Engine):
    """The schema for a server without a cluster, and TLS."""

    maxDiff = None

    def test_answers_all_questions_over_tls(self):
        keys = WORK / "keys"
        keys.mkdir()
        run(
            "openssl",
            "req",
            "-x509",
            "-newkey",
            "rsa:2048",
            "-nodes",
            "-days",
            "2",
            "-subj",
            "/CN=localhost",
            "-addext",
            "subjectAltName=IP:127.0.0.1",
            "-keyout",
            keys / "server.key",
            "-out",
            keys / "server.crt",
            stderr=subprocess.DEVNULL,
        )
        cluster = servers.Cluster(WORK / "OneServer", layout="one", tls=keys)
        with cluster:
            address = f"https://127.0.0.1:{cluster.servers[0].https}/"
            settings = "format_csv_delimiter=%0D&format_csv_allow_single_quotes=0&format_csv_allow_double_quotes=0"
            for number, day in enumerate(FLEET.days):
                (WORK / f"day-{number}").write_text(day)
                run(
                    "curl",
                    "-sS",
                    "--fail",
                    "--cacert",
                    keys / "server.crt",
                    "--data-binary",
                    f"@{WORK}/day-{number}",
                    f"{address}?{settings}&query=INSERT%20INTO%20intake.line%20FORMAT%20CSV",
                )
            ask.post(cluster.url, FLEET.crashes.encode(), query="INSERT INTO fleet.crash FORMAT JSONEachRow")
            self.ask = lambda name: cluster.read(ask.bound(ask.text_of(name), FLEET.parameters))
            self.check_answers()
            untrusted = subprocess.run(["curl", "-sS", address], stderr=subprocess.PIPE, encoding="utf-8")
            self.assertIn("certificate", untrusted.stderr)


@unittest.skipUnless(
    servers.is_installed(), "clickhouse-server is not installed; scripts/setup-fleet --clickhouse installs Debian 12's"
)
class Shipper(unittest.TestCase, Engine):
    maxDiff = None

    def test_keeps_what_it_cannot_send_and_catches_up(self):
        spool = WORK / "spool"
        spool.mkdir()
        cluster = self.enterContext(servers.Cluster(WORK / "Shipper"))
        environment = {**os.environ, "DRIVERINFO_FLEET_PASSWORD": cluster.passwords["shipper"], "RETRIES": "0"}

        def ship():
            command = [ROOT / "fleet/shippers/ship.sh", spool, cluster.url]
            return subprocess.run(command, env=environment, stderr=subprocess.PIPE, encoding="utf-8")

        cluster.servers[0].stop()
        for number, day in enumerate(FLEET.days):
            (spool / f"day-{number}.jsonl").write_text(day)
            self.assertEqual(ship().returncode, 1)
        self.assertEqual(len(list(spool.glob("*.jsonl"))), len(FLEET.days))
        cluster.servers[0].start()
        done = ship()
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(list(spool.glob("*.jsonl")), [])
        ask.post(
            cluster.url,
            FLEET.crashes.encode(),
            query="INSERT INTO fleet.crash FORMAT JSONEachRow",
            insert_distributed_sync=1,
        )
        self.ask = lambda name: cluster.read(ask.bound(ask.text_of(name), FLEET.parameters))
        self.check_answers()

    def test_says_what_is_wrong_in_one_sentence(self):
        for arguments in ([], [WORK / "none", "http://127.0.0.1:1"]):
            done = subprocess.run(
                [ROOT / "fleet/shippers/ship.sh", *arguments], stderr=subprocess.PIPE, encoding="utf-8"
            )
            self.assertEqual((done.returncode, done.stderr.count("\n")), (2, 1))


@unittest.skipUnless(
    servers.is_installed(), "clickhouse-server is not installed; scripts/setup-fleet --clickhouse installs Debian 12's"
)
@unittest.skipUnless((MODULES / "duckdb/node_modules").is_dir(), "DuckDB is not there; scripts/setup-fleet fetches it")
class Script(unittest.TestCase):
    """scripts/fleet behind its set-up."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.samples = WORK / "samples"
        cls.samples.mkdir()
        for path, records in zip(fleet.SNAPSHOTS, fleet.samples()):
            (cls.samples / (path.stem + ".jsonl")).write_text(
                "".join(machines.compact(record) + "\n" for record in records)
            )

    def call(self, *options):
        return subprocess.run(
            [sys.executable, "-B", ROOT / "fleet/run.py", "--samples", self.samples, "--machines", "60", *options],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            encoding="utf-8",
        )

    def answers(self, *options):
        done = self.call(*options)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return (
            re.sub(r"\(\d+ ms\)", "", done.stdout[done.stdout.index("\n\n") :].partition("\nThe page: ")[0]).rstrip(),
            done.stdout,
        )

    def test_gives_the_same_answers_with_every_engine_and_stops_its_server(self):
        with_duckdb, output = self.answers()
        self.assertEqual(re.findall(r"^([a-z-]+) \(", output, re.M), ask.names())
        with_clickhouse, output = self.answers("--engine", "clickhouse")
        self.assertEqual(with_clickhouse, with_duckdb)
        with self.assertRaises(ask.ServerError):
            ask.post(re.search(r"to (http://\S+),", output)[1], "SELECT 1")

    def test_takes_a_server_of_the_user(self):
        with servers.Cluster(WORK / "Script", layout="one") as cluster:
            for server in cluster.servers:
                ask.post(server.url, "DROP DATABASE fleet")
                ask.post(server.url, "DROP DATABASE intake")
            self.assertEqual(self.answers("--engine", "clickhouse", "--url", cluster.url)[0], self.answers()[0])

    def test_says_in_one_sentence_what_is_wrong(self):
        for options in (
            ["--machines", "5"],
            ["--engine", "sql"],
            ["--url", "http://127.0.0.1:1"],
            ["--engine", "clickhouse", "--url", "server"],
            ["--engine", "clickhouse", "--url", "http://127.0.0.1:1"],
            ["more"],
        ):
            with self.subTest(options=options):
                done = self.call(*options)
                self.assertNotEqual(done.returncode, 0)
                self.assertRegex(done.stderr, r"^fleet: .*\n$")


@unittest.skipUnless(
    (MODULES / "current/node_modules").is_dir(), "no current ClickHouse; scripts/setup-fleet --current fetches one"
)
class CurrentClickHouse(unittest.TestCase):
    maxDiff = None

    def test_answers_all_questions_as_debians_does(self):
        folder = WORK / "current"
        folder.mkdir()
        (folder / "lines.jsonl").write_text("".join(FLEET.days) + "".join(line + "\n" for line, _ in fleet.bad_lines()))
        (folder / "crashes.ndjson").write_text(FLEET.crashes)
        (folder / "parameters.json").write_text(json.dumps(FLEET.parameters))
        (folder / "keys.sql").write_text(sql_of_keys())
        answers = json.loads(
            run(
                "node",
                pathlib.Path(__file__).parent / "current.cjs",
                MODULES / "current",
                ROOT / "fleet/clickhouse",
                folder,
            )
        )
        rejected = [json.loads(row)["reason"] for row in answers.pop("rejected").splitlines()]
        self.assertEqual(sorted(rejected), sorted(reason for _, reason in fleet.bad_lines()))
        keys = answers.pop("keys").splitlines()
        self.assertEqual({row["version"]: row["made"] for row in map(json.loads, keys)}, KEYS)
        self.assertEqual(answers, FLEET.answers)


if __name__ == "__main__":
    WORK = pathlib.Path(sys.argv.pop(1)).resolve()
    shutil.rmtree(WORK, ignore_errors=True)
    WORK.mkdir(parents=True)
    os.chdir(WORK)
    FLEET = fleet.Fleet()
    unittest.main()
