"""How the HTML pages look: sizes of screens, light and dark, paper, and to those who listen: look_test.py FOLDER [TEST...]."""

import base64
import itertools
import json
import pathlib
import re
import shutil
import subprocess
import tempfile

import pages
from pages import By, Page

AXE = pathlib.Path(__file__).resolve().parents[2] / ".deps/axe/node_modules/axe-core/axe.min.js"
PAGES = ("world.html", "world.health.html", "machines.diff.html", "findings.html", "scripts.html", "intel-laptop.html",
         "amd-server.html", "listing.html", "empty.html")


def setUpModule():
    global chromium
    chromium = pages.start()


def tearDownModule():
    pages.stop()


class Screens(Page):
    def test_of_1280_by_800_show_eight_rows(self):
        for page in ("world.html", "world.health.html", "intel-laptop.html", "amd-server.html", "findings.html", "large.html"):
            for dark in (False, True):
                self.screen(1280, 800, dark)
                self.open(page)
                rows = chromium.run("""const bottom = document.querySelector("thead").getBoundingClientRect().bottom;
                    return Array.from(document.querySelectorAll("tbody tr")).filter((row) => {
                      const box = row.getBoundingClientRect();
                      return box.top >= bottom - 1 && box.bottom <= document.documentElement.clientHeight;
                    }).length;""")
                all_rows = chromium.run("return document.querySelectorAll('tbody tr').length")
                self.assertGreaterEqual(rows, min(8, all_rows), page)

    def test_are_never_wider_than_the_window_with_the_usual_columns(self):
        # The empty page has all columns.
        for page, width in itertools.product(set(PAGES) - {"empty.html"}, (320, 400, 700, 1280, 1920)):
            self.screen(width, 800)
            self.open(page)
            inside, outside = chromium.run("const page = document.documentElement; return [page.scrollWidth, page.clientWidth]")
            self.assertLessEqual(inside, outside, f"{page} at {width}")

    def test_keep_a_state_and_its_dot_on_one_line(self):
        for width in (400, 1000, 1280, 1920):
            self.screen(width, 800)
            self.open("world.html")
            lines = chromium.run("""return Array.from(document.querySelectorAll("td.good, td.doubtful"), (cell) => {
                  const range = document.createRange();
                  range.selectNodeContents(cell);
                  const lines = Array.from(range.getClientRects());
                  return [lines.length, lines[0].left - cell.getBoundingClientRect().left];
                });""")
            self.assertGreater(len(lines), 5)
            for count, left in lines:
                self.assertEqual(count, 1)
                # The dot is in front of the word; on a narrow screen it is the label.
                self.assertGreater(left, 14)

    def test_cut_no_version_and_no_state(self):
        for page in ("world.html", "world.health.html", "intel-laptop.html", "findings.html"):
            self.screen(1280, 800)
            self.open(page)
            cut = chromium.run("""return Array.from(document.querySelectorAll("td.version, td.number, td.good, td.doubtful"))
                .filter((cell) => cell.scrollWidth > cell.clientWidth).map((cell) => cell.textContent);""")
            self.assertEqual(cut, [], page)

    def test_keep_names_whole(self):
        self.screen(1280, 800)
        self.open("world.html")
        cut = chromium.run("""return Array.from(document.querySelectorAll("tbody th"))
            .filter((cell) => cell.scrollWidth > cell.clientWidth || cell.scrollHeight > cell.clientHeight + 1)
            .map((cell) => cell.textContent);""")
        self.assertEqual(cut, [])


class Access(Page):
    """What axe-core finds on each page, folded and unfolded, in both colours and at both widths."""

    OPEN = """
        for (const details of document.querySelectorAll("details")) details.open = true;
        for (const button of Array.from(document.querySelectorAll("tbody .title button")).slice(0, 3)) button.click();
        for (const button of Array.from(document.querySelectorAll(".bars button:enabled")).slice(0, 2)) button.click();
        document.querySelector(".menu").open = true;
        """
    RUN = """
        const done = arguments[0];
        axe.run(document, { resultTypes: ["violations"] }).then((result) => done(result.violations.map((violation) =>
          [violation.id, violation.nodes.slice(0, 3).map((node) => `${node.html.slice(0, 200)} ${node.failureSummary}`)])));
        """

    def test_finds_nothing_wrong(self):
        self.assertTrue(AXE.is_file(), "axe-core is not there; scripts/setup --tests fetches it")
        source = AXE.read_text(encoding="utf-8")
        for page, width, dark in itertools.product(PAGES, (400, 1280), (False, True)):
            with self.subTest(page=page, width=width, dark=dark):
                self.screen(width, 800, dark)
                self.open(page)
                chromium.run(source)
                self.assertEqual(chromium.driver.execute_async_script(self.RUN), [])
                chromium.run(self.OPEN)
                self.assertEqual(chromium.driver.execute_async_script(self.RUN), [], "unfolded")

    def test_would_find_something(self):
        self.open("world.html")
        chromium.run(AXE.read_text(encoding="utf-8"))
        chromium.run("document.querySelector('#search').previousElementSibling.remove();"
                     "document.querySelector('#search').removeAttribute('placeholder')")
        self.assertIn("label", [rule for rule, _ in chromium.driver.execute_async_script(self.RUN)])


class Paper(Page):
    def setUp(self):
        self.assertIsNotNone(shutil.which("pdftotext"), "pdftotext is not there; scripts/setup --tests installs it")

    def printed(self):
        """The text of each page that is printed."""
        document = base64.b64decode(chromium.command("Page.printToPDF", preferCSSPageSize=True)["data"])
        with tempfile.TemporaryDirectory(prefix="report-test-") as files:
            path = pathlib.Path(files) / "page.pdf"
            path.write_bytes(document)
            text = subprocess.run(["pdftotext", "-layout", path, "-"], check=True, capture_output=True, encoding="utf-8").stdout
        return text.split("\f")[:-1]

    def choose_columns(self, labels):
        chromium.run("""for (const label of document.querySelectorAll("#columns label")) {
              const box = label.querySelector("input");
              if (!box.disabled && box.checked !== arguments[0].includes(label.textContent)) box.click();
            }""", labels)

    def test_has_the_head_of_the_table_on_every_page(self):
        for page in ("world.html", "world.health.html", "amd-server.html", "machines.diff.html"):
            self.open(page)
            labels = chromium.run("return Array.from(document.querySelectorAll('thead th'), (th) => th.textContent)")
            printed = self.printed()
            first = next(number for number, text in enumerate(printed) if self.has_head(text, labels))
            self.assertGreaterEqual(len(printed), 2, page)
            for number, text in enumerate(printed[first:], first):
                self.assertTrue(self.has_head(text, labels), f"{page}, page {number + 1}: {text[:400]}")

    @staticmethod
    def has_head(text, labels):
        """Whether the labels are in the order of the columns, over at most two lines."""
        lines = text.split("\n")
        words = [label.split()[0] for label in labels]
        return any(re.search(r"\s+".join(map(re.escape, words[:3])), line) or
                   set(words) <= set((line + " " + after).split()) for line, after in zip(lines, lines[1:]))

    def test_divides_no_number_whatever_the_columns(self):
        choices = (None, ["Kind", "Name", "Version"], "all",
                   ["Name", "Version", "Product version", "Size, bytes", "Image time, UTC", "INF date", "Devices using it", "Problem code"],
                   ["Name", "Instance identifier", "Hardware identifier", "Identity", "Version"],
                   ["Name", "Version", "Product version", "Version key", "Service", "Path", "State", "Start", "Image time, UTC",
                    "Size, bytes", "INF", "Delivered as", "INF date", "Class"])
        self.open("intel-laptop.html")
        every = chromium.run("return Array.from(document.querySelectorAll('#columns label'), (label) => label.textContent)")
        records = json.loads((pages.folder / "intel-laptop.json").read_text(encoding="utf-8"))["drivers"]
        for columns in choices:
            if columns is not None:
                self.choose_columns(every if columns == "all" else columns)
            shown = chromium.run("return Array.from(document.querySelectorAll('thead th'), (th) => th.hidden ? null : th.textContent)")
            text = "\n".join(self.printed())
            numbers = set()
            if "Version" in shown:
                numbers |= {record["version"] for record in records if "version" in record}
            if "Size, bytes" in shown:
                numbers |= {str(record["size"]) for record in records if "size" in record}
            if "Image time, UTC" in shown:
                numbers |= {record["image_time"][:10] for record in records if "image_time" in record}
            words = set(text.split())
            self.assertEqual({number for number in numbers if number not in words}, set(), columns)
            # Digits of names, identifiers and paths stay together, too.
            digits = {number for record in records for number in re.findall(r"\d{4,}", record.get("name", "") + record.get("service", ""))}
            self.assertEqual({number for number in digits if number not in text}, set(), columns)

    def test_is_within_its_margins(self):
        for page in ("world.html", "intel-laptop.html", "machines.diff.html", "findings.html"):
            self.open(page)
            document = base64.b64decode(chromium.command("Page.printToPDF", preferCSSPageSize=True)["data"])
            with tempfile.TemporaryDirectory(prefix="report-test-") as files:
                path = pathlib.Path(files) / "page.pdf"
                path.write_bytes(document)
                boxes = subprocess.run(["pdftotext", "-bbox", path, "-"], check=True, capture_output=True, encoding="utf-8").stdout
            width = float(re.search(r'<page width="([\d.]+)"', boxes)[1])
            right = max(map(float, re.findall(r'xMax="([\d.]+)"', boxes)))
            self.assertLessEqual(right, width - 30, page)

    def test_has_findings_unfolded_and_no_controls(self):
        self.open("world.health.html")
        text = " ".join("\n".join(self.printed()).split())
        self.assertIn("Next: ", text)
        for word in ("Show only", "Download CSV", "Columns"):
            self.assertNotIn(word, text)

    def test_has_the_rows_that_are_shown(self):
        self.open("sorting.html")
        self.search("beta")
        text = "\n".join(self.printed())
        self.assertIn("beta10.sys", text)
        self.assertNotIn("gamma.sys", text)


if __name__ == "__main__":
    pages.main()
