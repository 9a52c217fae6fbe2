"""The samples are what osslsigncode says that they are, and make-samples makes such ones: samples_test.py [TEST...]."""

import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).parent
SAMPLES = HERE / "samples"
# For ctest, which calls that skipped.
SKIPPED = 77


def expected(folder):
    return json.loads((folder / "expected.json").read_text())["samples"]


def without_hashes(samples):
    return [{name: value for name, value in sample.items() if "sha" not in name} for sample in samples]


class Samples(unittest.TestCase):
    maxDiff = None

    def test_are_verified_by_osslsigncode_where_they_are_valid(self):
        with tempfile.NamedTemporaryFile() as root:
            subprocess.run(["openssl", "x509", "-inform", "der", "-in", SAMPLES / "root.der", "-out", root.name], check=True)
            for sample in expected(SAMPLES):
                catalog = ["-catalog", SAMPLES / sample["catalog"]] if "catalog" in sample else []
                run = subprocess.run(
                    ["osslsigncode", "verify", "-CAfile", root.name, "-TSA-CAfile", root.name, *catalog, "-in", SAMPLES / sample["file"]],
                    stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
                with self.subTest(file=sample["file"]):
                    self.assertEqual(run.returncode == 0, sample["state"] == "valid")

    def test_are_of_all_states_and_kinds(self):
        samples = expected(SAMPLES)
        self.assertEqual({sample["state"] for sample in samples}, {"valid", "invalid", "unsigned"})
        self.assertEqual({sample["file"] for sample in samples}, {path.name for path in SAMPLES.glob("*.sys")})

    def test_are_made_by_make_samples(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([HERE / "make-samples", folder], check=True, stdout=subprocess.DEVNULL)
            self.assertEqual(without_hashes(expected(pathlib.Path(folder))), without_hashes(expected(SAMPLES)))
            made = {path.name for path in pathlib.Path(folder).iterdir()}
            self.assertEqual(made, {path.name for path in SAMPLES.iterdir()})


if __name__ == "__main__":
    if not shutil.which("osslsigncode"):
        print("samples_test: osslsigncode is not installed; scripts/setup --tests installs it.")
        sys.exit(SKIPPED)
    unittest.main()
