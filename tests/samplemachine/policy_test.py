"""Policies and baselines on the sample machines, by other readers: policy_test.py FOLDER [TEST...], FOLDER being that of write-documents."""

import hashlib
import json
import pathlib
import sys
import unittest
import xml.etree.ElementTree

from schema_test import problems

HERE = pathlib.Path(__file__).parent
POLICIES = {path.stem: json.loads(path.read_text(encoding="utf-8"))
            for path in sorted((HERE / "../../docs/policies").glob("*.json"))}
# What these two ask for, only a machine has whose images were verified.
OF_IMAGES = {"signed-drivers", "known-drivers"}


def document(path):
    return json.loads(path.read_text(encoding="utf-8"))


def identity(rule, state):
    """The identity of a finding, as the manual says that it is made."""
    texts = [text.lower() for text in state]
    text = " ".join([rule] + [f"{len(part.encode())}:{part}" for part in texts])
    return f"{rule}-{hashlib.sha256(text.encode()).hexdigest()[:20]}"


class Policies(unittest.TestCase):
    maxDiff = None

    def machines(self):
        found = sorted(path for path in folder.iterdir() if path.is_dir())
        self.assertEqual(len(found), len(list(HERE.glob("*.json"))))
        return found

    def checks(self):
        """Each machine, policy, what the check says of it, and the same as JUnit."""
        for machine in self.machines():
            for name, policy in POLICIES.items():
                if name in OF_IMAGES and machine.name != "signed":
                    continue
                with self.subTest(machine=machine.name, policy=name):
                    junit = xml.etree.ElementTree.parse(machine / f"{name}.junit.xml").getroot()
                    yield machine, policy, document(machine / f"{name}.check.json"), junit

    def results(self, machine, policy):
        """For each rule its result and the subjects of its violations."""
        rules = document(folder / machine / f"{policy}.check.json")["machines"][0]["rules"]
        return {rule["rule"]: (rule["result"], [violation["subject"] for violation in rule["violations"]])
                for rule in rules}

    def test_examples_follow_the_schema(self):
        self.assertGreaterEqual(len(POLICIES), 4)
        for name, policy in POLICIES.items():
            with self.subTest(policy=name):
                self.assertEqual(problems(policy, "policy.schema.json"), [])

    def test_the_schema_refuses_what_driverlist_refuses(self):
        for rule in ({"name": "a"}, {"signed": True}, {"name": "a", "signed": False}, {"name": "a", "forbit": ["a=b"]},
                     {"name": "a", "signed": True, "forbid": "a=b"}, {"name": "a", "forbid": []},
                     {"name": "a", "forbid": [["a=b"], "a=b"]}, {"name": "a", "maximum_age": "2020"},
                     {"name": "a", "start_type": "Auto"}, {"name": "a", "signed": True, "severity": "urgent"}):
            with self.subTest(rule=rule):
                self.assertNotEqual(problems({"rules": [rule]}, "policy.schema.json"), [])
        self.assertNotEqual(problems({"rules": []}, "policy.schema.json"), [])

    def test_every_rule_is_reported_in_its_order(self):
        for _, policy, check, _ in self.checks():
            self.assertEqual(check["policy"]["name"], policy["name"])
            rules = check["machines"][0]["rules"]
            self.assertEqual([(rule["rule"], rule["severity"]) for rule in rules],
                             [(rule["name"], rule.get("severity", "medium")) for rule in policy["rules"]])
            states = [rule["result"] for rule in rules]
            self.assertEqual(check["summary"], {state: states.count(state) for state in ("passed", "failed", "skipped")})
            for rule in rules:
                self.assertEqual(rule["violation_count"], len(rule["violations"]))
                self.assertEqual(rule["result"] == "failed", rule["violation_count"] > 0)

    def test_junit_says_the_same(self):
        for _, policy, check, suites in self.checks():
            rules = check["machines"][0]["rules"]
            self.assertEqual(suites.tag, "testsuites")
            (suite,) = suites
            cases = list(suite)
            counts = {"tests": len(cases), "failures": len(suite.findall("testcase/failure")),
                      "errors": len(suite.findall("testcase/error")), "skipped": len(suite.findall("testcase/skipped"))}
            self.assertEqual(counts, {"tests": len(rules), "failures": check["summary"]["failed"], "errors": 0,
                                      "skipped": check["summary"]["skipped"]})
            for node in (suites, suite):
                self.assertEqual({name: int(node.get(name)) for name in counts}, counts)
            self.assertEqual(suite.get("hostname"), check["machines"][0]["host"])
            self.assertRegex(suite.get("timestamp"), r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d$")
            for case, rule, written in zip(cases, rules, policy["rules"]):
                self.assertEqual((case.tag, case.get("name"), case.get("classname")),
                                 ("testcase", rule["rule"], policy["name"]))
                if rule["result"] != "failed":
                    self.assertIsNone(case.find("failure"))
                    continue
                failure = case.find("failure")
                self.assertEqual((failure.get("message"), failure.get("type")), (written["message"], rule["severity"]))
                self.assertEqual(len(failure.text.splitlines()), rule["violation_count"])
                for line, violation in zip(failure.text.splitlines(), rule["violations"]):
                    if violation["subject"].isascii():
                        self.assertTrue(line.startswith(violation["subject"] + ": "), line)

    def test_the_laptop_breaks_the_rules_that_its_description_breaks(self):
        self.assertEqual(self.results("intel-laptop", "workstation"), {
            "network-driver-version": ("passed", []),
            "no-docking-tool": ("failed", ["oem4.inf"]),
            "disk-drivers-present": ("passed", []),
            "no-old-drivers": ("passed", []),
            "beep-disabled": ("passed", []),
            "no-device-without-driver": ("failed", ["8086-7E4C-1028-0A5C_nodriver#"]),
        })
        self.assertEqual(self.results("intel-laptop", "server"), {
            "no-sound": ("failed", ["TonartAudio"]),
            "boot-drivers-run": ("passed", []),
            "some-disk-runs": ("passed", []),
            "no-broken-devices": ("passed", []),
            "images-where-they-belong": ("passed", []),
        })

    def test_rules_about_images_find_what_the_list_has(self):
        services = [record for record in document(folder / "signed/list.json")["drivers"] if record["kind"] == "service"]
        self.assertGreater(len(services), 10)
        signed = self.results("signed", "signed-drivers")
        self.assertEqual(signed["only-signed"][1],
                         [service["service"] for service in services if service["signature"] != "valid"])
        makers = ("Meridian", "Northlight", "Sample Platform")
        self.assertEqual(signed["approved-signers"][1],
                         [service["service"] for service in services if not service.get("signer", "").startswith(makers)])
        known = self.results("signed", "known-drivers")
        findings = document(folder / "signed/health.json")["findings"]
        self.assertEqual(known["no-malicious-driver"][1],
                         [finding["subject"] for finding in findings if finding["rule"] == "known-malicious"])
        self.assertLessEqual({finding["subject"] for finding in findings if finding["rule"] == "known-vulnerable"},
                             set(known["no-vulnerable-driver"][1]))
        self.assertNotEqual(known["no-vulnerable-driver"][1], [])

    def test_a_baseline_hides_everything_on_an_unchanged_machine(self):
        for machine in self.machines():
            with self.subTest(machine=machine.name):
                baseline = document(machine / "baseline.json")
                findings = document(machine / "health.json")["findings"]
                self.assertEqual(baseline["findings"], findings)
                self.assertEqual(baseline["verified"], machine.name == "signed")
                later = document(machine / "hidden.health.json")
                self.assertEqual(later["findings"], [])
                self.assertEqual(later["baseline"], {"time": baseline["time"], "hidden": len(findings)})
                self.assertGreater(len(findings), 0)

    def test_identities_are_those_that_the_manual_describes(self):
        checked = set()
        for machine in self.machines():
            records = document(machine / "list.json")["drivers"]
            packages = {record["inf"]: record for record in records if record["kind"] == "package"}
            services = {record["service"]: record for record in records if record["kind"] == "service"}
            findings = document(machine / "health.json")["findings"]
            self.assertEqual(len({finding["id"] for finding in findings}), len(findings))
            for finding in findings:
                rule, subject = finding["rule"], finding["subject"]
                if rule == "unused-package":
                    state = [packages[subject].get(member, "") for member in ("inf", "original_inf", "provider", "version")]
                elif rule == "not-running":
                    state = [subject]
                elif rule in ("image-missing", "unsigned", "known-malicious", "known-vulnerable", "listed-name"):
                    members = ("service", "path") if rule == "image-missing" else ("service", "path", "sha256")
                    state = [services[subject].get(member, "") for member in members]
                else:
                    continue
                checked.add(rule)
                with self.subTest(machine=machine.name, rule=rule, subject=subject):
                    self.assertEqual(finding["id"], identity(rule, state))
        self.assertEqual(checked, {"unused-package", "not-running", "image-missing", "unsigned", "known-malicious",
                                   "known-vulnerable", "listed-name"})

    def test_every_finding_has_a_next_step_that_names_its_thing(self):
        for machine in self.machines():
            for finding in document(machine / "health.json")["findings"]:
                with self.subTest(machine=machine.name, finding=finding["id"]):
                    self.assertNotEqual(finding["next_step"], "")
                    if finding["rule"] == "unused-package":
                        self.assertIn(f"pnputil /delete-driver {finding['subject']}", finding["next_step"])


if __name__ == "__main__":
    folder = pathlib.Path(sys.argv.pop(1))
    unittest.main()
