"""What driverlist writes, by the schemas of docs/schema: schema_test.py FOLDER [TEST...], FOLDER being that of write-documents."""

import csv
import hashlib
import json
import pathlib
import sys
import unittest

try:
    import jsonschema
except ImportError:
    sys.exit("schema_test: python3-jsonschema is not installed; scripts/setup --tests installs it.")

try:
    import referencing
except ImportError:
    # jsonschema before 4.18 resolves references itself.
    referencing = None

HERE = pathlib.Path(__file__).parent
SCHEMAS = {path.name: json.loads(path.read_text()) for path in (HERE / "../../docs/schema").glob("*.json")}

# The schema of a document, by the end of its name.
DOCUMENTS = {
    "groups.json": "groups.schema.json",
    "list.json": "list.schema.json",
    "by-device.json": "listing.schema.json",
    "registered.json": "listing.schema.json",
    "all.json": "listing.schema.json",
    "collect.jsonl": "collect.schema.json",
    ".jsonl": "jsonl.schema.json",
    "snapshot.json": "snapshot.schema.json",
    "diff.json": "diff.schema.json",
    "health.json": "health.schema.json",
    "baseline.json": "baseline.schema.json",
    "check.json": "check.schema.json",
}


def validator(schema):
    if referencing:
        registry = referencing.Registry().with_contents((schema["$id"], schema) for schema in SCHEMAS.values())
        return jsonschema.Draft202012Validator(schema, registry=registry)
    store = {schema["$id"]: schema for schema in SCHEMAS.values()}
    return jsonschema.Draft202012Validator(schema, resolver=jsonschema.RefResolver(schema["$id"], schema, store))


def problems(document, name):
    """What is wrong with a document by the schema of that name."""
    errors = validator(SCHEMAS[name]).iter_errors(document)
    return [f"{error.json_path}: {error.message[:300]}" for error in errors]


def documents(path):
    text = path.read_text(encoding="utf-8")
    return [json.loads(line) for line in text.splitlines()] if path.suffix == ".jsonl" else [json.loads(text)]


def live(file):
    return [json.loads(path.read_text(encoding="utf-8")) for path in sorted(folder.glob(f"*/{file}"))]


def definition(schemas, reference):
    """What a reference such as "head.schema.json#/$defs/text" leads to, and the file it is in."""
    file, _, path = reference.partition("#")
    found = schemas[file]
    for step in filter(None, path.split("/")):
        found = found[step]
    return file, found


def members(schemas, file, node):
    """Every member that a node has with its type, by the first reference that has one."""
    found = {}
    for name, member in node.get("properties", {}).items():
        where = file
        while member is not False and "$ref" in member:
            where, member = definition(schemas, member["$ref"] if member["$ref"][0] != "#" else where + member["$ref"])
        if member is not False:
            constant = member.get("const", (member.get("enum") or [None])[0])
            found[name] = member.get("type") or type(constant).__name__
    for key in ("$ref", "then", "else"):
        if key == "$ref" and key in node:
            reference = node[key] if node[key][0] != "#" else file + node[key]
            found.update(members(schemas, *definition(schemas, reference)))
        elif key in node:
            found.update(members(schemas, file, node[key]))
    return found


class Schemas(unittest.TestCase):
    maxDiff = None

    def check(self, paths):
        count = 0
        for path in sorted(paths):
            schema = next((schema for end, schema in DOCUMENTS.items() if path.name.endswith(end)), None)
            if schema:
                count += 1
                for document in documents(path):
                    with self.subTest(document=f"{path.parent.name}/{path.name}"):
                        self.assertEqual(problems(document, schema), [])
        return count

    def test_are_schemas(self):
        for schema in SCHEMAS.values():
            jsonschema.Draft202012Validator.check_schema(schema)

    def test_hold_for_everything_that_driverlist_writes_on_the_sample_machines(self):
        machines = len(list(HERE.glob("*.json"))) - 1
        self.assertEqual(self.check(folder.glob("*/*.json*")), machines * (9 + 6 + 4) + 5 + 6)

    def test_hold_for_the_golden_files(self):
        self.assertGreaterEqual(self.check((HERE / "expected").glob("*.json*")), 3 * 7)

    def test_have_the_members_of_a_record_in_their_order(self):
        for path in folder.glob("*/list.csv"):
            header = next(csv.reader(path.read_text(encoding="utf-8").splitlines()))
            self.assertEqual(list(SCHEMAS["record.schema.json"]["properties"]), header)

    def test_have_the_fields_of_the_library_in_their_order(self):
        for document in live("all.json"):
            self.assertEqual(list(SCHEMAS["listed-driver.schema.json"]["properties"]), list(document["drivers"][0]))

    def test_have_no_member_that_no_sample_machine_has(self):
        found = {member for document in live("list.json") for record in document["drivers"] for member in record}
        self.assertEqual(set(SCHEMAS["record.schema.json"]["properties"]) - found, set())

    def test_keep_every_member_of_the_last_release_and_its_type(self):
        released = {path.name: json.loads(path.read_text()) for path in (HERE / "released/2").glob("*.json")}
        before = members(released, "collect.schema.json", released["collect.schema.json"])
        now = members(SCHEMAS, "collect.schema.json", SCHEMAS["collect.schema.json"])
        self.assertEqual({"drivers": "integer", "digest": "string", "unchanged": "bool", "time": "string", "size": "integer",
                          "files": "array", "kind": "str", "image_missing": "bool"}.items() - before.items(), set())
        self.assertEqual({name: now.get(name) for name in before}, before)
        self.assertEqual(SCHEMAS["head.schema.json"]["properties"]["schema_version"]["const"], 2)

    def test_have_a_digest_that_anyone_can_compute(self):
        for path in sorted(folder.glob("*/collect.jsonl")):
            first, *records = documents(path)
            head = set(SCHEMAS["head.schema.json"]["$defs"]["machine"]["properties"]) | {"schema_version"}
            lines = [{name: value for name, value in record.items() if name not in head} for record in records]
            text = "".join(json.dumps(line, ensure_ascii=False, separators=(",", ":")) + "\n" for line in lines)
            self.assertEqual((first["drivers"], first["digest"]),
                             (len(records), hashlib.sha256(text.encode()).hexdigest()))

    def test_describe_every_member(self):
        for name, schema in SCHEMAS.items():
            for member, definition in schema.get("properties", {}).items():
                with self.subTest(schema=name, member=member):
                    self.assertRegex(definition["description"], r"^[A-Z\"`].*\.$")

    def test_refuse_what_they_do_not_know(self):
        document = live("snapshot.json")[0]
        record = document["drivers"][0]
        self.assertEqual(problems(document, "snapshot.schema.json"), [])
        for change in ({"surprise": 1}, {"inf": "oem0.inf"}, {"image_time": "2024-05-06 07:08:09"}, {"size": "4096"},
                       {"state": "running"}, {"kind": "driver"}, {"version_key": "10.0"}, {"path": ""}):
            with self.subTest(change=change):
                changed = {**document, "drivers": [{**record, **change}]}
                self.assertNotEqual(problems(changed, "snapshot.schema.json"), [])
        for change in ({"surprise": 1}, {"schema_version": 1}, {"time": "2024-05-06"}, {"kind": "list"}):
            with self.subTest(change=change):
                self.assertNotEqual(problems({**document, **change}, "snapshot.schema.json"), [])
        first = documents(sorted(folder.glob("*/collect.jsonl"))[0])[0]
        self.assertEqual(problems(first, "collect.schema.json"), [])
        for change in ({"surprise": 1}, {"drivers": "26"}, {"unchanged": False}, {"digest": "ad9c"}, {"kind": "service"}):
            with self.subTest(change=change):
                self.assertNotEqual(problems({**first, **change}, "collect.schema.json"), [])


if __name__ == "__main__":
    folder = pathlib.Path(sys.argv.pop(1))
    unittest.main()
