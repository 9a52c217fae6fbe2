"""The images of the machine "signed", as sha256sum and osslsigncode see them: signed_test.py FOLDER, FOLDER being that of write-documents.

What osslsigncode says of each image is in tests/trust/samples/expected.json, which is not made by driverlist."""

import hashlib
import json
import pathlib
import sys
import unittest

HERE = pathlib.Path(__file__).parent
SAMPLES = HERE / "../trust/samples"
VENDOR = "Sample Platform Components"
# Made by the vendor of the policy, but later.
NEWER = "signed-newer.sys"
# Wine judges no time stamps: what was signed in time has expired for it, too.
UNDER_WINE = {"expired-stamped.sys": "invalid"}


class SignedMachine(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        expected = json.loads((SAMPLES / "expected.json").read_text(encoding="utf-8"))
        cls.samples = {sample["file"]: {**sample, "state": UNDER_WINE.get(sample["file"], sample["state"])}
                       for sample in expected["samples"]}
        cls.thumbprints = {certificate["thumbprint"] for certificate in expected["certificates"]}
        machine = json.loads((HERE / "signed.json").read_text(encoding="utf-8"))
        cls.files = {service["name"]: service["image_path"].rpartition("\\")[2] for service in machine["services"]}
        cls.services = {record["service"]: record for record in cls.document("list.json")["drivers"]
                        if record["kind"] == "service"}

    @staticmethod
    def document(file):
        return json.loads((folder / file).read_text(encoding="utf-8"))

    def for_each_service(self, check):
        self.assertEqual(set(self.services), set(self.files))
        for name, record in self.services.items():
            with self.subTest(service=name, file=self.files[name]):
                check(record, self.samples[self.files[name]])

    def test_hashes_are_those_of_other_programs(self):
        def check(record, sample):
            content = (SAMPLES / sample["file"]).read_bytes()
            self.assertEqual(record["sha256"], hashlib.sha256(content).hexdigest())
            if "image_sha256" in sample:
                self.assertEqual(record["image_sha256"], sample["image_sha256"])

        self.for_each_service(check)

    def test_states_are_those_of_osslsigncode(self):
        def check(record, sample):
            self.assertEqual(record["signature"], sample["state"])
            self.assertEqual("signature_problem" in record, sample["state"] != "valid")

        self.for_each_service(check)

    def test_signers_are_those_of_osslsigncode(self):
        def check(record, sample):
            if sample["state"] != "valid":
                return
            self.assertEqual(record["signer"], sample["signer"])
            self.assertIn(record["signer_thumbprint"], self.thumbprints)
            self.assertEqual(record.get("signed_at"), sample.get("signed_at"))
            self.assertEqual(record.get("catalog"), sample.get("catalog"))
            self.assertEqual(record["signature_kind"], "catalog" if "catalog" in sample else "embedded")

        self.for_each_service(check)

    def matches(self, kind):
        """Files with a match of that kind, and the entry."""
        return {(self.files[name], match["entry"][-1]) for name, record in self.services.items()
                for match in record.get("known", []) if match["match"] == kind}

    def test_lists_know_what_they_list(self):
        self.assertEqual(self.matches("file-hash"), {("unsigned-odd.sys", "1")})
        self.assertEqual(self.matches("image-hash"),
                         {(sample["file"], "2") for sample in self.samples.values()
                          if sample.get("image_sha256") == self.samples["tampered.sys"]["image_sha256"]})
        self.assertEqual(self.matches("name-and-version"), {(NEWER, "3")})

    def test_a_signer_is_known_within_the_range_of_the_rule_and_no_other_vendor_of_the_authority(self):
        found = {file for file, _ in self.matches("signer-rule")}
        of_vendor = {sample["file"] for sample in self.samples.values()
                     if sample.get("signer") == VENDOR and "catalog" not in sample and sample["state"] == "valid"}
        self.assertGreater(len(of_vendor), 5)
        self.assertLessEqual(of_vendor - {NEWER}, found)
        others = {sample["file"] for sample in self.samples.values() if sample.get("signer") not in (None, VENDOR)}
        self.assertIn("neighbour.sys", others)
        self.assertEqual(found & (others | {NEWER}), set())

    def test_health_names_each_bad_image_with_its_rule_and_evidence(self):
        health = self.document("health.json")
        found = {}
        for finding in health["findings"]:
            found.setdefault(finding["rule"], {})[finding["subject"]] = finding["evidence"]
        by_state = {state: {name for name, file in self.files.items() if self.samples[file]["state"] == state}
                    for state in ("invalid", "unsigned")}
        self.assertEqual(set(found["signature-invalid"]), by_state["invalid"])
        self.assertEqual(set(found["unsigned"]), by_state["unsigned"])
        listed = {name for name, record in self.services.items() if "known" in record}
        named = [set(found[rule]) for rule in ("known-malicious", "known-vulnerable", "listed-name")]
        self.assertEqual(set().union(*named), listed)
        self.assertEqual(sum(map(len, named)), len(listed))
        self.assertEqual({self.files[name] for name in found["known-malicious"]}, {"unsigned-odd.sys"})
        self.assertEqual({self.files[name] for name in found["listed-name"]}, {NEWER})
        self.assertEqual(health["findings"][0]["rule"], "known-malicious")
        for rule in ("known-malicious", "known-vulnerable", "signature-invalid", "unsigned", "listed-name"):
            for name, evidence in found[rule].items():
                with self.subTest(rule=rule, service=name):
                    self.assertIn(self.services[name]["path"], evidence)
                    self.assertIn(self.services[name]["sha256"], evidence)
                    for match in self.services[name].get("known", []):
                        if rule.startswith("known-"):
                            self.assertIn(match["entry"], evidence)
        self.assertEqual((folder / "health.status").read_text().strip(), "1")

    def test_health_says_which_lists_were_asked(self):
        lists = [(known["name"], known.get("version"), known.get("date")) for known in
                 self.document("health.json")["known_lists"]]
        self.assertEqual(lists, [("LOLDrivers", None, "2024-05-03"), ("Microsoft", "10.0.1.0", None)])
        self.assertRegex((folder / "health.txt").read_text(encoding="utf-8"),
                         r"(?s)^!!! known-malicious .*\nlooked up in LOLDrivers of 2024-05-03, \d+ days old \(3 entries\); "
                         r"Microsoft 10\.0\.1\.0 \(1 entry\)\n$")

    def test_a_snapshot_holds_the_same_records_and_shows_no_difference(self):
        self.assertEqual(self.document("snapshot.json")["drivers"], self.document("list.json")["drivers"])
        self.assertEqual(self.document("diff.json")["differences"], [])


if __name__ == "__main__":
    folder = pathlib.Path(sys.argv.pop(1), "signed")
    unittest.main(verbosity=2)
