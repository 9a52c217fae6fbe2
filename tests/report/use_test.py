"""The HTML pages in use: filters, columns, rows that open, links, the saved file and the keyboard: use_test.py FOLDER [TEST...]."""

import csv
import io
import json
import pathlib
import tempfile
import time

import pages
from pages import By, Keys, Page
from texts import visible

MAKER = "\u0421\u0435\u0432\u0435\u0440\u043d\u044b\u0439 \u0412\u0435\u0442\u0435\u0440"
DIFFERENCE_MEMBERS = ["difference", "kind", "name", "member", "old", "new"]


def setUpModule():
    global chromium
    chromium = pages.start()


def tearDownModule():
    pages.stop()


class UsedPage(Page):
    def bar(self, facet, label):
        """The button of a bar."""
        buttons = chromium.driver.find_elements(By.CSS_SELECTOR, f"[data-facet='{facet}'] button")
        return next(button for button in buttons if button.get_property("textContent") == label)

    def chosen(self):
        return [button.text.rstrip("\u00a0\u00d7") for button in chromium.driver.find_elements(By.CSS_SELECTOR, "#chosen button")]

    def choose_column(self, label):
        menu = self.element("#columns summary")
        menu.click()
        choices = chromium.driver.find_elements(By.CSS_SELECTOR, "#columns label")
        next(choice for choice in choices if choice.text == label).click()
        menu.click()

    def labels(self):
        return chromium.run("return Array.from(document.querySelectorAll('thead th'), (th) => th.checkVisibility() && th.textContent)"
                            ".filter(Boolean)")

    def row_button(self, name):
        buttons = chromium.driver.find_elements(By.CSS_SELECTOR, "tbody th button")
        return next(button for button in buttons if button.get_property("textContent") == name)

    def opened(self):
        """Labels and values of the rows that are open."""
        return chromium.run("""return Array.from(document.querySelectorAll(".opening"), (row) =>
            Object.fromEntries(Array.from(row.querySelectorAll(".members > div"), (line) =>
                [line.querySelector("dt").textContent, Array.from(line.querySelectorAll("dd"), (dd) => dd.textContent).join(" | ")])));""")

    def links(self):
        return chromium.run("""return Array.from(document.querySelectorAll(".opening .related h3"), (heading) =>
            [heading.textContent, Array.from(heading.nextElementSibling.children, (item) => item.textContent)]);""")

    def saved(self):
        """The name and content of the file that the page saves."""
        with tempfile.TemporaryDirectory(prefix="report-test-") as downloads:
            chromium.command("Browser.setDownloadBehavior", behavior="allow", downloadPath=downloads)
            self.element("#csv").click()
            deadline = time.monotonic() + 20
            while time.monotonic() < deadline:
                files = [file for file in pathlib.Path(downloads).iterdir() if file.suffix == ".csv"]
                if files and files[0].stat().st_size > 0:
                    return files[0].name, files[0].read_bytes()
                time.sleep(0.05)
        self.fail("nothing was saved")

    def records(self, machine):
        return json.loads((pages.folder / f"{machine}.json").read_text(encoding="utf-8"))["drivers"]


class Filters(UsedPage):
    def setUp(self):
        self.open("world.html")
        self.all = self.records("world")

    def names_of(self, test):
        return [record.get("name", "") for record in self.all if test(record)]

    def test_of_a_bar_show_its_records_and_are_shown_themselves(self):
        bar = self.bar("Kind", "Devices")
        self.assertEqual(bar.get_attribute("aria-pressed"), "false")
        bar.click()
        self.assertEqual(bar.get_attribute("aria-pressed"), "true")
        devices = self.names_of(lambda record: record["kind"] == "device")
        self.assertEqual(self.column("Kind"), ["device"] * len(devices))
        self.assertEqual(self.shown(), f"{len(devices)} of {len(self.all)} records")
        self.assertEqual(self.chosen(), ["Kind: Devices"])

    def test_of_one_list_add_up_and_those_of_two_narrow_down(self):
        self.bar("Kind", "Devices").click()
        self.bar("Kind", "Services").click()
        self.bar("Provider", MAKER).click()
        expected = self.names_of(lambda record: record["kind"] != "package" and record.get("provider") == MAKER)
        self.assertGreater(len(expected), 2)
        self.assertEqual(self.names(), expected)
        self.assertEqual(self.chosen(), [f"Provider: {MAKER}", "Kind: Devices", "Kind: Services", "Clear all"])

    def test_are_removed_one_by_one_or_together(self):
        self.bar("Kind", "Devices").click()
        self.bar("State of services", "Running").click()
        self.assertEqual(self.names(), [])
        self.assertTrue(self.element("#none").is_displayed())
        self.element("#chosen button").click()
        self.assertEqual(self.chosen(), ["State of services: Running"])
        self.assertEqual(set(self.column("State")), {"Running"})
        self.bar("State of services", "Running").click()
        self.assertEqual(self.chosen(), [])
        self.assertEqual(len(self.names()), len(self.all))
        self.bar("Kind", "Devices").click()
        self.bar("Kind", "Packages").click()
        self.element("#chosen .clear button").click()
        self.assertEqual(self.shown(), f"{len(self.all)} records")
        pressed = chromium.driver.find_elements(By.CSS_SELECTOR, "[aria-pressed=true]")
        self.assertEqual(pressed, [])

    def test_work_with_the_search(self):
        self.bar("Kind", "Packages").click()
        self.search("keyboard")
        self.assertEqual(self.column("Description"), ["Keyboard disk"])

    def test_show_as_many_records_as_each_bar_says(self):
        for item in chromium.driver.find_elements(By.CSS_SELECTOR, ".bars li"):
            count = int(item.find_element(By.CSS_SELECTOR, ".count").text)
            button = item.find_element(By.TAG_NAME, "button")
            self.assertEqual(button.is_enabled(), count > 0)
            if count:
                button.click()
                self.assertEqual(len(self.names()), count, item.text)
                button.click()

    def test_of_a_finding_show_its_rows(self):
        self.open("world.health.html")
        self.element(".rules summary").click()
        rows = self.element(".rules details button")
        rows.click()
        found = json.loads((pages.folder / "world.health.json").read_text(encoding="utf-8"))
        label = self.element(".rules .label").text
        subjects = chromium.run("return Array.from(document.querySelector('.rules dl').querySelectorAll('dt'), (dt) => dt.textContent)")
        self.assertEqual(self.chosen(), [f"Finding: {label}"])
        self.assertEqual(set(self.column("Service")) | set(self.names()) | set(self.column("INF")) >= set(subjects), True)
        self.assertTrue(set(subjects) <= {finding["subject"] for finding in found["findings"]})


class Columns(UsedPage):
    def setUp(self):
        self.open("sorting.html" if "any" in self._testMethodName else "world.html")

    def test_are_hidden_and_come_back_to_their_place(self):
        before = self.labels()
        self.choose_column("Provider")
        self.assertEqual(self.labels(), [label for label in before if label != "Provider"])
        self.choose_column("Provider")
        self.assertEqual(self.labels(), before)

    def test_that_the_table_did_not_have_come_behind_it_and_sort(self):
        self.choose_column("Product version")
        self.choose_column("Size, bytes")
        self.assertEqual(self.labels()[-2:], ["Product version", "Size, bytes"])
        records = [record for record in self.records("world")]
        self.assertEqual(self.column("Size, bytes"), [str(record.get("size", "")) for record in records])
        self.header("Size, bytes").click()
        sizes = sorted(record["size"] for record in records if "size" in record)
        self.assertEqual(self.column("Size, bytes")[:len(sizes)], [str(size) for size in sizes])
        self.header("Product version").click()
        versions = [version for version in self.column("Product version") if version]
        known = sorted((tuple(map(int, version.split("."))) for version in versions if version.replace(".", "").isdigit()))
        self.assertEqual([tuple(map(int, version.split("."))) for version in versions if version.replace(".", "").isdigit()], known)

    def test_of_a_name_stays(self):
        self.element("#columns summary").click()
        boxes = chromium.driver.find_elements(By.CSS_SELECTOR, "#columns input:disabled")
        self.assertEqual([box.find_element(By.XPATH, "..").text for box in boxes], ["Name"])

    def test_show_a_dot_beside_a_state_that_was_added(self):
        self.choose_column("State")
        self.choose_column("State")
        self.assertEqual(len(chromium.driver.find_elements(By.CSS_SELECTOR, "td.good")),
                         sum(record.get("state") == "Running" for record in self.records("world")))

    def test_can_be_any_of_all_members(self):
        for label in self.labels():
            if label != "Name":
                self.choose_column(label)
        self.assertEqual(self.labels(), ["Name"])
        self.header("Name").click()
        self.assertEqual(self.names()[0], "alpha.sys")


class Rows(UsedPage):
    SERVICE = "\u0441\u0435\u0442\u044c.sys"

    def setUp(self):
        self.open("world.html")

    def test_open_to_all_members(self):
        button = self.row_button("mdstor.sys")
        self.assertEqual(button.get_attribute("aria-expanded"), "false")
        button.click()
        self.assertEqual(button.get_attribute("aria-expanded"), "true")
        record = next(record for record in self.records("world") if record.get("name") == "mdstor.sys")
        opened = self.opened()[0]
        self.assertEqual(len(opened), len(record))
        self.assertEqual((opened["Name"], opened["Version key"], opened["Path"]),
                         ("mdstor.sys", record["version_key"], record["path"]))
        self.assertEqual(opened["Size, bytes"], str(record["size"]))
        button.click()
        self.assertEqual(self.opened(), [])

    def test_lead_to_what_refers_to_them_and_back(self):
        self.row_button(self.SERVICE).click()
        links = dict(self.links())
        self.assertEqual(len(links["Devices"]), 3)
        medium = "\u0414\u0438\u0441\u043a \u0441 \u0434\u0440\u0430\u0439\u0432\u0435\u0440\u043e\u043c \u00ab\u0412\u044c\u044e\u0433\u0430\u00bb"
        self.assertEqual(links["Packages"], [f"{self.SERVICE} {medium}"])
        self.element(".opening .related a").click()
        self.assertEqual(self.active().get_attribute("aria-expanded"), "true")
        self.assertEqual(self.opened()[1]["Kind"], "device")
        self.assertEqual([heading for heading, _ in self.links()[2:]], ["Services", "Packages"])
        chromium.driver.back()
        chromium.driver.forward()
        self.assertEqual(self.opened()[1]["Kind"], "device")

    def test_that_are_filtered_out_come_back_when_a_link_leads_there(self):
        self.row_button(self.SERVICE).click()
        self.bar("Kind", "Services").click()
        self.search(self.SERVICE)
        self.element(".opening .related a").click()
        self.assertEqual(self.chosen(), [])
        self.assertEqual(self.shown(), f"{len(self.records('world'))} records")

    def test_stay_with_their_openings_when_they_are_sorted_and_searched(self):
        self.row_button(self.SERVICE).click()
        self.header("Name").click()
        neighbour = chromium.run("return document.querySelector('.opening').previousElementSibling.cells[1].textContent")
        self.assertEqual(neighbour, self.SERVICE)
        self.search("mdstor")
        self.assertFalse(self.element(".opening").is_displayed())
        self.element("#search").clear()
        self.element("#search").send_keys("a", Keys.BACKSPACE)
        self.assertTrue(self.element(".opening").is_displayed())

    def test_of_findings_open_from_their_subject(self):
        self.open("world.health.html")
        self.element(".rules summary").click()
        link = self.element(".rules dt a")
        subject = link.text
        link.click()
        self.assertIn(subject, list(self.opened()[0].values()))

    def test_of_a_comparison_open_to_both_sides(self):
        self.open("differences.html")
        name = "\u30d7\u30ea\u30f3\u30bf.sys"
        self.row_button(name).click()
        opened = self.opened()[0]
        self.assertEqual(opened["Name"], name)
        self.assertRegex(opened["Provider"], r"^(.+) of old \| \1$")

    def test_show_hostile_texts_as_texts(self):
        self.open("hostile.html")
        for button in chromium.driver.find_elements(By.CSS_SELECTOR, "tbody th button"):
            button.click()
        count = "return document.querySelectorAll(arguments[0]).length"
        elements = {"script": 2, "table": 1, "img, iframe, .opening svg, [onload], [onerror], [onmouseover]": 0}
        self.assertEqual({selector: chromium.run(count, selector) for selector in elements}, elements)
        self.assertIsNone(chromium.run("return window.hacked"))
        self.assertEqual(len(self.opened()), 12)
        self.assertEqual(self.opened()[0]["Signer"], "<script>window.hacked = 1</script>")


class HostilePages(UsedPage):
    NAME = "</script></style></title><!--"

    def test_of_findings_and_differences_run_nothing(self):
        for page in ("hostile.findings.html", "hostile.differences.html"):
            self.open(page)
            for summary in chromium.driver.find_elements(By.CSS_SELECTOR, ".rules summary"):
                summary.click()
            self.row_button(self.NAME).click()
            self.assertIn(self.NAME, self.opened()[0]["Provider"])
            self.assertIsNone(chromium.run("return window.hacked"))
            self.assertEqual(chromium.run("return document.querySelectorAll('img, iframe, h1 ~ h1').length"), 0)


class SavedFile(UsedPage):
    # The file is an address of the page's own.
    fetches = True

    def tearDown(self):
        super().tearDown()
        others = {address for address in chromium.requests() if not address.startswith(("file:", "blob:"))}
        self.assertEqual(others, set())

    def test_is_what_the_program_writes_of_rows_and_columns_shown(self):
        for machine in ("intel-laptop", "amd-server", "world"):
            self.open(f"{machine}.html")
            self.bar("Kind", "Devices").click()
            name, content = self.saved()
            self.assertEqual(name, "drivers.csv")
            self.assertEqual(content, (pages.folder / f"{machine}.devices.csv").read_bytes(), machine)

    def test_has_every_text_as_the_program_writes_it(self):
        for page in ("hostile", "formulas", "sorting"):
            self.open(f"{page}.html")
            self.assertEqual(self.saved()[1], (pages.folder / f"{page}.csv").read_bytes(), page)

    def test_follows_the_order_and_the_columns(self):
        self.open("sorting.html")
        for label in [label for label in self.labels() if label not in ("Name", "Version")]:
            self.choose_column(label)
        self.header("Name").click()
        self.search("10.0")
        rows = list(csv.reader(io.StringIO(self.saved()[1].decode("utf-8"))))
        self.assertEqual(rows, [["name", "version"], ["Beta9.sys", "10.0.10.1"], ["beta10.sys", "10.0.9.1"],
                                ["gamma.sys", "10.0.A.1"]])

    def test_takes_no_text_for_a_formula(self):
        self.open("world.html")
        self.search("\u0412\u041f\u0420")
        self.assertIn("'=\u0412\u041f\u0420(A1;B:C;2)", self.saved()[1].decode("utf-8"))

    def test_of_a_comparison_has_its_rows(self):
        self.open("machines.diff.html")
        name, content = self.saved()
        rows = list(csv.reader(io.StringIO(content.decode("utf-8"))))
        self.assertEqual((name, rows[0]), ("differences.csv", DIFFERENCE_MEMBERS))
        document = json.loads((pages.folder / "machines.diff.json").read_text(encoding="utf-8"))
        changes = sum(max(len(difference["changes"]), 1) for difference in document["differences"])
        self.assertEqual(len(rows), changes + 1)


class Comparison(UsedPage):
    def test_shows_what_the_document_has(self):
        self.open("machines.diff.html")
        document = json.loads((pages.folder / "machines.diff.json").read_text(encoding="utf-8"))
        expected = [[difference["difference"], difference["kind"], change.get("member", "")]
                    for difference in document["differences"] for change in difference["changes"] or [{}]]
        shown = list(map(list, zip(self.column("Difference"), self.column("Kind"), self.column("Member"))))
        self.assertEqual(shown, expected)
        figures = {figure.find_element(By.TAG_NAME, "dt").text.lower(): int(figure.find_element(By.TAG_NAME, "dd").text.split()[0])
                   for figure in chromium.driver.find_elements(By.CSS_SELECTOR, ".figures > div")}
        same = figures.pop("the same")
        self.assertEqual({**figures, "same": same}, document["summary"])

    def test_filters_by_what_happened(self):
        self.open("machines.diff.html")
        self.bar("Difference", "removed").click()
        self.assertEqual(set(self.column("Difference")), {"removed"})


class Findings(UsedPage):
    def test_are_those_of_the_examination(self):
        self.open("world.health.html")
        self.assertEqual(self.element("h1").text.split(" on ")[0], "Findings")
        found = json.loads((pages.folder / "world.health.json").read_text(encoding="utf-8"))["findings"]
        shown = chromium.run("""return Array.from(document.querySelectorAll(".rules dl > div"), (finding) =>
            Array.from(finding.children, (line) => line.textContent));""")
        steps = lambda finding: [finding["next_step"][0].upper() + finding["next_step"][1:] + "."] if "next_step" in finding else []
        expected = [[finding["subject"], finding["evidence"], *steps(finding)] for finding in found]
        plain = lambda findings: sorted(list(map(visible, finding)) for finding in findings)
        self.assertEqual(plain(shown), plain(expected))
        severities = [severity.text.lower() for severity in chromium.driver.find_elements(By.CSS_SELECTOR, ".rules .severity")]
        order = ["critical", "high", "medium", "low"]
        self.assertEqual(severities, sorted(severities, key=order.index))

    def test_can_be_read_without_script(self):
        chromium.command("Emulation.setScriptExecutionDisabled", value=True)
        self.addCleanup(chromium.command, "Emulation.setScriptExecutionDisabled", value=False)
        self.open("world.health.html")
        self.element(".rules summary").click()
        self.assertTrue(self.element(".rules dl").is_displayed())
        link = self.element(".rules dt a")
        row = link.get_attribute("href").rpartition("#")[2]
        link.click()
        self.assertTrue(self.element(f"#{row}").is_displayed())

    def tearDown(self):
        chromium.command("Emulation.setScriptExecutionDisabled", value=False)
        super().tearDown()


class Keyboard(UsedPage):
    def test_reaches_findings_bars_columns_rows_and_links(self):
        self.open("world.health.html")
        summary = self.press_until(Keys.TAB, ".rules summary")
        self.press(Keys.ENTER)
        self.assertTrue(self.element(".rules dl").is_displayed())
        self.press_until(Keys.TAB, ".rules dt a")
        self.press_until(Keys.TAB, ".bars button")
        self.press(Keys.SPACE)
        self.assertEqual(len(self.chosen()), 1)
        self.press_until(Keys.TAB, "#search")
        self.press_until(Keys.TAB, "#chosen button")
        self.press(Keys.ENTER)
        self.assertEqual(self.chosen(), [])
        self.assertEqual(self.active().get_attribute("id"), "search")
        self.press_until(Keys.TAB, "#columns summary")
        self.press(Keys.ENTER)
        self.press_until(Keys.TAB, "#columns input")
        before = self.labels()
        self.press(Keys.SPACE)
        self.assertEqual(self.labels(), before[1:])
        self.press(Keys.ESCAPE)
        self.assertFalse(self.element("#columns").get_property("open"))
        self.assertEqual(self.active().text, "Columns")
        self.press_until(Keys.TAB, "#csv")
        self.press_until(Keys.TAB, "thead button")
        self.press_until(Keys.TAB, "tbody th button")
        self.press(Keys.ENTER)
        self.assertEqual(len(self.opened()), 1)
        self.assertTrue(summary.is_displayed())

    def test_follows_a_link_to_the_row(self):
        self.open("world.html")
        self.search(Rows.SERVICE)
        self.press_until(Keys.TAB, "tbody th button")
        self.press(Keys.ENTER)
        self.press_until(Keys.TAB, ".opening a")
        self.press(Keys.ENTER)
        self.assertEqual(self.active().get_attribute("aria-expanded"), "true")
        self.assertEqual(self.opened()[1]["Kind"], "device")

    def test_sees_where_it_is(self):
        self.open("world.html")
        seen = chromium.run("""const unseen = [];
            for (const element of document.querySelectorAll("a, button, input, summary")) {
              element.focus({ focusVisible: true });
              if (document.activeElement !== element) continue;
              const widths = [getComputedStyle(element), getComputedStyle(element, "::after")].map((style) =>
                style.outlineStyle === "none" ? 0 : parseFloat(style.outlineWidth));
              if (Math.max(...widths) < 1) unseen.push(element.outerHTML);
            }
            return unseen;""")
        self.assertEqual(seen, [])


if __name__ == "__main__":
    pages.main()
