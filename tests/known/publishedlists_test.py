"""Whether the compact list holds what the published ones do: publishedlists_test.py WINE MAKEKNOWNDRIVERS FOLDER.

FOLDER holds drivers.json of LOLDrivers and SiPolicy_Enforced.xml of Microsoft. Without them the test is skipped (77)."""
import collections
import json
import pathlib
import re
import subprocess
import sys
import unittest
import xml.etree.ElementTree as ElementTree

NAMESPACE = "{urn:schemas-microsoft-com:sipolicy}"
NAMES = {"FileName": "original", "InternalName": "internal", "ProductName": "product", "FileDescription": "description"}


def hashes_of(sample):
    authentihash = sample.get("Authentihash") or {}
    texts = [of.get(kind) for of in (sample, authentihash) for kind in ("MD5", "SHA1", "SHA256")]
    return [text.lower() for text in texts if text and re.fullmatch("[0-9a-fA-F]+", text)]


def version(text):
    return tuple(map(int, text.split(".")))


def name_rule(rule):
    names = {member: rule.get(attribute) for attribute, member in NAMES.items() if rule.get(attribute)}
    if version(rule.get("MinimumFileVersion", "0.0.0.0")) > (0, 0, 0, 0):
        names["min"] = ".".join(map(str, version(rule.get("MinimumFileVersion"))))
    if version(rule.get("MaximumFileVersion", "65535.65535.65535.65535")) < (65535, 65535, 65535, 65535):
        names["max"] = ".".join(map(str, version(rule.get("MaximumFileVersion"))))
    return names


class PublishedLists(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        made = subprocess.run([wine, program, "2024-05-06", f"Z:{lol}", "2024-05-07", f"Z:{policy}"],
                              check=True, capture_output=True)
        cls.known = json.loads(made.stdout)
        cls.size = len(made.stdout)
        cls.entries = [[entry for entry in cls.known["entries"] if entry["list"] == i] for i in (0, 1)]
        cls.published = json.loads(lol.read_text(encoding="utf-8"))
        cls.policy = ElementTree.parse(policy).getroot()
        cls.rules = {rule.get("ID"): rule for rule in cls.policy.find(f"{NAMESPACE}FileRules")}

    def kernel(self, tag):
        """What the policy names for drivers, each once."""
        scenarios = [s for s in self.policy.iter(f"{NAMESPACE}SigningScenario") if s.get("Value") == "131"]
        attribute = {"FileRuleRef": "RuleID", "DeniedSigner": "SignerId"}[tag]
        return list(dict.fromkeys(e.get(attribute) for s in scenarios for e in s.iter(NAMESPACE + tag)))

    def test_lists_say_where_they_are_from(self):
        lol_drivers, microsoft = self.known["lists"]
        self.assertEqual((lol_drivers["name"], lol_drivers["licence"]), ("LOLDrivers", "Apache-2.0"))
        self.assertEqual(lol_drivers["date"], max(entry["Created"] for entry in self.published))
        self.assertEqual(microsoft["version"], self.policy.find(f"{NAMESPACE}VersionEx").text)
        self.assertEqual(microsoft["date"], "2024-05-07")
        self.assertEqual([entry["entries"] for entry in self.known["lists"]], list(map(len, self.entries)))
        self.assertLess(self.size, 1_100_000)

    def test_every_entry_and_every_sample_is_there(self):
        self.assertEqual([entry["id"] for entry in self.entries[0]], [entry["Id"] for entry in self.published])
        samples = 0
        for entry, published in zip(self.entries[0], self.published):
            expected = {h for sample in published["KnownVulnerableSamples"] for h in hashes_of(sample)}
            self.assertEqual(set(entry["hashes"]), expected)
            self.assertEqual(entry.get("malicious", False), published["Category"] == "malicious")
            samples += len(published["KnownVulnerableSamples"])
        self.assertGreater(samples, 2000)
        self.assertEqual(sum(entry.get("malicious", False) for entry in self.entries[0]),
                         collections.Counter(entry["Category"] for entry in self.published)["malicious"])

    def test_hashes_of_the_policy_are_there_but_for_those_of_pages(self):
        denied = [self.rules[i] for i in self.kernel("FileRuleRef") if self.rules[i].tag == f"{NAMESPACE}Deny"]
        expected = {rule.get("ID"): [rule.get("Hash").lower()] for rule in denied
                    if rule.get("Hash") and "hash page" not in rule.get("FriendlyName").lower()}
        found = {entry["id"]: entry["hashes"] for entry in self.entries[1] if "hashes" in entry}
        self.assertEqual(found, expected)
        pages = [rule for rule in denied if rule.get("Hash") and rule.get("ID") not in expected]
        self.assertGreater(len(pages), 100)

    def test_names_of_the_policy_are_there(self):
        denied = [self.rules[i] for i in self.kernel("FileRuleRef") if self.rules[i].tag == f"{NAMESPACE}Deny"]
        expected = {rule.get("ID"): [name_rule(rule)] for rule in denied if not rule.get("Hash")}
        found = {entry["id"]: entry["names"] for entry in self.entries[1]
                 if "hashes" not in entry and "tbs" not in entry}
        self.assertEqual(found, expected)

    def test_signers_of_the_policy_are_there(self):
        denied = self.kernel("DeniedSigner")
        expected = {}
        for signer in self.policy.find(f"{NAMESPACE}Signers"):
            if signer.get("ID") not in denied:
                continue
            rule = {"tbs": signer.find(f"{NAMESPACE}CertRoot").get("Value").lower()}
            for tag, member in (("CertPublisher", "publisher"), ("CertOemID", "program")):
                part = signer.find(NAMESPACE + tag)
                if part is not None:
                    rule[member] = part.get("Value")
            names = [name_rule(self.rules[e.get("RuleID")]) for e in signer.findall(f"{NAMESPACE}FileAttribRef")]
            if names:
                rule["names"] = names
            expected[signer.get("ID")] = rule
        members = ("tbs", "publisher", "program", "names")
        found = {entry["id"]: {member: entry[member] for member in members if member in entry}
                 for entry in self.entries[1] if "tbs" in entry}
        self.assertEqual(found, expected)
        self.assertEqual(len(found), len(denied))


if __name__ == "__main__":
    wine, program, folder = sys.argv[1:]
    sys.argv[1:] = []
    lol = pathlib.Path(folder, "drivers.json").absolute()
    policy = pathlib.Path(folder, "SiPolicy_Enforced.xml").absolute()
    if not (lol.is_file() and policy.is_file()):
        print(f"skipped: there are no published lists in {folder}")
        sys.exit(77)
    unittest.main(verbosity=2)
