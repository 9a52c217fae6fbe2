"""What driverlist writes, by the schemas of docs/schema: schema_test.py FOLDER [TEST...], FOLDER being that of write-documents."""

import csv
import json
import pathlib
import sys
import unittest

try:
    import jsonschema
except ImportError:
    sys.exit("schema_test: python3-jsonschema is not installed; scripts/setup --tests installs it.")

HERE = pathlib.Path(__file__).parent
SCHEMAS = {path.name: json.loads(path.read_text()) for path in (HERE / "../../docs/schema").glob("*.json")}

# The schema of a document, by the end of its name.
DOCUMENTS = {
    "list.json": "list.schema.json",
    "by-device.json": "listing.schema.json",
    "registered.json": "listing.schema.json",
    "all.json": "listing.schema.json",
    ".jsonl": "jsonl.schema.json",
    "snapshot.json": "snapshot.schema.json",
    "diff.json": "diff.schema.json",
    "health.json": "health.schema.json",
}


def problems(document, name):
    """What is wrong with a document by the schema of that name."""
    schema = SCHEMAS[name]
    store = {schema["$id"]: schema for schema in SCHEMAS.values()}
    resolver = jsonschema.RefResolver(schema["$id"], schema, store)
    errors = jsonschema.Draft202012Validator(schema, resolver=resolver).iter_errors(document)
    return [f"{error.json_path}: {error.message[:300]}" for error in errors]


def documents(path):
    text = path.read_text(encoding="utf-8")
    return [json.loads(line) for line in text.splitlines()] if path.suffix == ".jsonl" else [json.loads(text)]


def live(file):
    return [json.loads(path.read_text(encoding="utf-8")) for path in sorted(folder.glob(f"*/{file}"))]


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
        self.assertEqual(self.check(folder.glob("*/*.json*")), 3 * (7 + 4))

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


if __name__ == "__main__":
    folder = pathlib.Path(sys.argv.pop(1))
    unittest.main()
