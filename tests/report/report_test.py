"""The HTML report in a real browser: report_test.py FOLDER [TEST...], FOLDER holding the pages that write-reports wrote."""

import http.server
import json
import pathlib
import re
import statistics
import sys
import tempfile
import threading
import time
import unittest

import pages
from pages import By, Keys, Page
from texts import visible

# Processor time after which nobody thinks that the page hangs. Recent browsers take a fifth of it, older ones two thirds.
REACTION_MS = 1000

SORTING = ["beta10.sys", "Beta9.sys", "alpha.sys", "\u00e4ther.sys", "gamma.sys", "delta.sys"]
HOSTILE = [
    "<script>window.hacked = 1</script>",
    '<img src=x onerror="window.hacked = 1">',
    '"><svg onload=window.hacked=1>',
    "'onmouseover='window.hacked=1",
    "</th></tr></tbody></table><h1>gone</h1>",
    "</script></style></title><!--",
    "{{table}}{{script}}",
    "&lt;b&gt; &amp;amp; &#60;",
    "bell[U+0007] nul[U+0000] escape[U+001B][2J line[U+000D][U+000A]end",
    "undefined [U+0081] soft[U+00AD]hyphen turned [U+202E]gpj.exe",
    "  two  blanks  ",
    "<iframe src=javascript:window.hacked=1></iframe>",
]


# Columns of the hostile page that are not texts of its records.
NOT_TEXT = {"Kind", "Version key", "Image missing", "Size, bytes", "Devices using it", "Problem code", "Problem"}


def setUpModule():
    global chromium
    chromium = pages.start()


def tearDownModule():
    pages.stop()


class Search(Page):
    def setUp(self):
        self.open("sorting.html")

    def test_shows_all_at_first(self):
        self.assertEqual(self.names(), SORTING)
        self.assertEqual(self.shown(), "6 records")

    def test_shows_rows_that_have_all_words_in_any_column_whatever_their_case(self):
        self.search(" BETA  2021-01 ")
        self.assertEqual(self.names(), ["Beta9.sys"])
        self.assertEqual(self.shown(), "1 of 6 records")
        self.search("\u00c4THER")
        self.assertEqual(self.names(), ["\u00e4ther.sys"])
        self.search("10.0")
        self.assertEqual(self.names(), ["beta10.sys", "Beta9.sys", "gamma.sys"])

    def test_does_not_take_the_ends_of_two_cells_for_a_word(self):
        self.search("sysC:")
        self.assertEqual(self.names(), [])

    def test_says_when_nothing_is_found(self):
        none = self.element("#none")
        self.assertFalse(none.is_displayed())
        self.search("no such driver")
        self.assertEqual(self.names(), [])
        self.assertEqual(self.shown(), "0 of 6 records")
        self.assertEqual(none.text, "Nothing has all of these words and filters.")

    def test_shows_all_again_when_it_is_cleared(self):
        self.search("alpha")
        self.element("#search").send_keys(Keys.CONTROL, "a", Keys.DELETE)
        self.assertEqual(self.names(), SORTING)
        self.assertEqual(self.shown(), "6 records")

    def test_takes_markup_and_patterns_as_words(self):
        self.search(".*")
        self.assertEqual(self.names(), [])
        self.search("<th")
        self.assertEqual(self.names(), [])

    def test_tells_its_count_to_those_who_listen(self):
        self.assertEqual(self.element("#shown").aria_role, "status")
        self.assertEqual(self.element("#search").accessible_name, "Search")


class Sorting(Page):
    def setUp(self):
        self.open("sorting.html")

    def assert_sorts(self, label, ascending, descending):
        header = self.header(label)
        header.click()
        self.assertEqual(self.names(), ascending)
        self.assertEqual(self.sort_states(), {label: "ascending"})
        header.click()
        self.assertEqual(self.names(), descending)
        self.assertEqual(self.sort_states(), {label: "descending"})
        header.click()
        self.assertEqual(self.names(), ascending)

    def test_by_name_ignores_case_and_counts_numbers(self):
        ascending = ["alpha.sys", "\u00e4ther.sys", "Beta9.sys", "beta10.sys", "delta.sys", "gamma.sys"]
        self.assert_sorts("Name", ascending, ascending[::-1])

    def test_by_version_compares_components_and_keeps_unknown_ones_last(self):
        known = ["\u00e4ther.sys", "beta10.sys", "gamma.sys", "Beta9.sys"]
        self.assert_sorts("Version", known + ["alpha.sys", "delta.sys"], known[::-1] + ["alpha.sys", "delta.sys"])

    def test_by_size_compares_numbers(self):
        known = ["delta.sys", "beta10.sys", "\u00e4ther.sys", "gamma.sys", "Beta9.sys"]
        self.assert_sorts("Size, bytes", known + ["alpha.sys"], known[::-1] + ["alpha.sys"])

    def test_by_date_compares_moments(self):
        known = ["beta10.sys", "gamma.sys", "\u00e4ther.sys", "Beta9.sys", "delta.sys"]
        self.assert_sorts("Image time, UTC", known + ["alpha.sys"], known[::-1] + ["alpha.sys"])
        self.assertEqual(self.column("Image time, UTC")[3], "2021-01-01 00:00:00")

    def test_by_a_column_of_equals_keeps_the_order_of_the_listing(self):
        self.header("Name").click()
        self.header("Kind").click()
        self.assertEqual(self.names(), SORTING)
        self.assertEqual(self.sort_states(), {"Kind": "ascending"})
        self.header("Kind").click()
        self.assertEqual(self.names(), SORTING)
        self.assertEqual(self.sort_states(), {"Kind": "descending"})

    def test_works_from_the_keyboard(self):
        self.element("#csv").send_keys(Keys.TAB)
        active = chromium.driver.switch_to.active_element
        self.assertEqual(active.accessible_name, "Sort by Kind")
        active.send_keys(Keys.TAB)
        active = chromium.driver.switch_to.active_element
        self.assertEqual(active.accessible_name, "Sort by Name")
        active.send_keys(Keys.ENTER)
        self.assertEqual(self.names()[0], "alpha.sys")
        active.send_keys(Keys.SPACE)
        self.assertEqual(self.names()[0], "gamma.sys")
        self.assertEqual(chromium.driver.switch_to.active_element, active)

    def test_keeps_to_what_was_searched(self):
        self.search("beta")
        self.header("Name").click()
        self.assertEqual(self.names(), ["Beta9.sys", "beta10.sys"])
        self.search("")
        self.element("#search").send_keys("a", Keys.BACKSPACE)
        self.assertEqual(self.names()[:3], ["alpha.sys", "\u00e4ther.sys", "Beta9.sys"])


class Reading(Page):
    def test_headers_and_cells_are_those_of_a_table_to_those_who_listen(self):
        self.open("sorting.html")
        roles = {"table": "table", "thead th": "columnheader", "tbody tr": "row", "tbody th": "rowheader", "tbody td": "cell"}
        self.assertEqual({selector: self.element(selector).aria_role for selector in roles}, roles)
        self.assertEqual(self.element("table").accessible_name, "All drivers")


class SampleMachine(Page):
    """The page that driverlist writes, against what list --format json says of the same machine."""

    COLUMNS = {"Kind": "kind", "Name": "name", "Description": "description", "Provider": "provider",
               "Version": "version", "Service": "service", "State": "state", "Start": "start_type",
               "Image time, UTC": "image_time", "INF": "inf", "Path": "path"}

    def records(self, machine):
        records = json.loads((pages.folder / f"{machine}.json").read_text(encoding="utf-8"))["drivers"]
        for record in records:
            if "image_time" in record:
                record["image_time"] = record["image_time"].replace("T", " ").rstrip("Z")
        return records

    def assert_is_as_listed(self, machine):
        self.open(f"{machine}.html")
        records = self.records(machine)
        self.assertGreater(len(records), 10)
        for label, member in self.COLUMNS.items():
            self.assertEqual(self.column(label), [visible(record.get(member, "")) for record in records])
        self.assertEqual(self.shown(), f"{len(records)} records")
        running = [record["service"] for record in records if record.get("state") == "Running"]
        self.search("running service")
        self.assertEqual(self.column("Service"), running)
        self.header("Service").click()
        self.header("Service").click()
        self.assertEqual(sorted(self.column("Service")), sorted(running))

    def test_intel_laptop(self):
        self.assert_is_as_listed("intel-laptop")

    def test_amd_server(self):
        self.assert_is_as_listed("amd-server")

    def test_world(self):
        self.assert_is_as_listed("world")


class HostileRecords(Page):
    def setUp(self):
        self.open("hostile.html")

    def test_are_shown_as_text(self):
        self.assertEqual(self.names(), HOSTILE)
        labels = chromium.run("return Array.from(document.querySelectorAll('thead th'), (th) => th.textContent)")
        for label in set(labels) - NOT_TEXT - {"Files", "Names", "Known as"}:
            self.assertEqual(self.column(label), HOSTILE, label)
        for label in ("Files", "Names"):
            self.assertEqual(self.column(label), [f"{name}\n{name}" for name in HOSTILE])
        known = [f"{name}: {name}, vulnerable, name-and-version" for name in HOSTILE]
        self.assertEqual(self.column("Known as"), known)
        labels = chromium.run("return Array.from(document.querySelectorAll('.label'), (label) => label.textContent)")
        self.assertEqual(set(labels[:8]) - set(HOSTILE), set())

    def test_stay_text_when_they_are_searched_and_sorted(self):
        self.search("<script>window")
        self.assertEqual(self.names(), HOSTILE[:1])
        self.search("hacked")
        self.header("Name").click()
        self.header("Provider").click()
        self.assertEqual(sorted(self.names()), sorted(name for name in HOSTILE if "hacked" in name))

    def test_add_no_element_and_run_no_script(self):
        count = "return document.querySelectorAll(arguments[0]).length"
        elements = {"script": 2, "style": 1, "table": 1, "h1": 1, "tbody tr": 12, "tbody tr > *": 12 * 36, "img": 0,
                    "iframe": 0, "svg": chromium.run(count, ".bars li"), "[onload], [onerror], [onmouseover]": 0}
        self.assertEqual({selector: chromium.run(count, selector) for selector in elements}, elements)
        kinds = chromium.run(
            "return Array.from(new Set(Array.from(document.querySelectorAll('tbody *'), (e) => e.localName))).sort()")
        self.assertEqual(kinds, ["button", "td", "th", "tr", "wbr"])
        self.assertIsNone(chromium.run("return window.hacked"))


class Server:
    """A server on this machine that notes what it is asked for."""

    def __enter__(self):
        self.paths = paths = []

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                paths.append(self.path)
                self.send_error(404)

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.address = f"http://127.0.0.1:{self._server.server_port}"
        self._thread = threading.Thread(target=self._server.serve_forever)
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._server.shutdown()
        self._thread.join()
        self._server.server_close()


class Policy(Page):
    """Should a record ever become markup, the page's policy still forbids what it could do."""

    speaks = True
    fetches = True

    ATTACK = """
        const add = (name, attributes, text) => {
          const element = document.createElement(name);
          for (const [key, value] of Object.entries(attributes)) element.setAttribute(key, value);
          element.textContent = text || "";
          document.body.append(element);
          return element;
        };
        add("img", { src: arguments[0] + "/image" });
        add("script", { src: arguments[0] + "/script" });
        add("iframe", { src: arguments[0] + "/frame" });
        add("link", { rel: "stylesheet", href: arguments[0] + "/style" });
        fetch(arguments[0] + "/fetch", { mode: "no-cors" }).catch(() => {});
        add("script", {}, "window.inline = 1");
        add("button", { onclick: "window.handler = 1" }).click();
        """

    def attack(self, path):
        """What the server was asked for, and which injected scripts ran."""
        with Server() as server:
            chromium.open(path)
            chromium.run(self.ATTACK, server.address)
            deadline = time.monotonic() + 2
            while len(server.paths) < 5 and time.monotonic() < deadline:
                time.sleep(0.05)
            return set(server.paths), chromium.run("return [window.inline === 1, window.handler === 1]")

    def test_forbids_fetching_and_other_scripts(self):
        self.assertEqual(self.attack(pages.folder / "hostile.html"), (set(), [False, False]))
        self.assertTrue([line for line in chromium.messages() if "Content Security Policy" in line], "the console is heard")

    def test_is_what_forbids_them(self):
        html = (pages.folder / "hostile.html").read_text(encoding="utf-8")
        with tempfile.TemporaryDirectory(prefix="report-test-") as copies:
            copy = pathlib.Path(copies) / "without-policy.html"
            copy.write_text(html.replace("Content-Security-Policy", "no-policy", 1), encoding="utf-8")
            asked, ran = self.attack(copy)
        self.assertEqual(asked, {"/image", "/script", "/frame", "/style", "/fetch"})
        self.assertEqual(ran, [True, True])
        noticed = [address for address in chromium.requests() if address.startswith("http:")]
        self.assertEqual(len(noticed), 5, "the requests of a page are noticed")


class Large(Page):
    ACTIONS = """
        const actions = {
          search: (turn) => {
            const field = document.getElementById("search");
            field.value = turn % 2 ? "" : "drv1 running";
            field.dispatchEvent(new Event("input"));
          },
          sort: (turn) => document.querySelectorAll("thead button")[turn % 5 + 1].click(),
        };
        const [action, turn, done] = arguments;
        actions[action](turn);
        document.body.getBoundingClientRect();
        requestAnimationFrame(() => setTimeout(done));
        """

    def setUp(self):
        self.open("large.html")

    def worked(self):
        """Milliseconds for which the page's thread has worked; other programs of the machine do not count."""
        metrics = {metric["name"]: metric["value"] for metric in chromium.command("Performance.getMetrics")["metrics"]}
        return metrics["TaskDuration"] * 1000

    def reaction(self, action):
        """Milliseconds of work from an action to the end of the frame that shows what it did."""
        chromium.command("Performance.enable", timeDomain="threadTicks")
        reactions = []
        for turn in range(9):
            before = self.worked()
            chromium.driver.execute_async_script(self.ACTIONS, action, turn)
            reactions.append(self.worked() - before)
        chromium.command("Performance.disable")
        return statistics.median(reactions)

    def test_reacts_to_a_search_at_once(self):
        self.search("drv1 running")
        self.assertRegex(self.shown(), "^[1-9][0-9]+ of 3000 records$")
        self.assertEqual(len(self.names()), int(self.shown().split()[0]))
        milliseconds = self.reaction("search")
        print(f"search in 3000 rows: {milliseconds:.0f} ms", file=sys.stderr)
        self.assertLess(milliseconds, REACTION_MS)

    def test_reacts_to_a_click_at_once(self):
        self.header("Name").click()
        self.assertEqual(self.names(), sorted(self.names()))
        milliseconds = self.reaction("sort")
        print(f"sort of 3000 rows: {milliseconds:.0f} ms", file=sys.stderr)
        self.assertLess(milliseconds, REACTION_MS)

    def test_opens_without_a_pause(self):
        chromium.command("Performance.enable", timeDomain="threadTicks")
        before = self.worked()
        self.open("large.html")
        milliseconds = self.worked() - before
        chromium.command("Performance.disable")
        print(f"opening 3000 rows of all columns: {milliseconds:.0f} ms", file=sys.stderr)
        self.assertLess(milliseconds, 6 * REACTION_MS)

    def test_keeps_search_and_headers_in_sight(self):
        for down, right in ((30000, 0), (30000, 1250)):
            chromium.run("window.scrollTo(arguments[1], arguments[0])", down, right)
            rectangle = """const { top, bottom, left } = document.querySelector(arguments[0]).getBoundingClientRect();
                return [top, bottom, left];"""
            search_top, search_bottom, search_left = chromium.run(rectangle, "#search")
            head_top, head_bottom, _ = chromium.run(rectangle, "thead th")
            self.assertGreaterEqual(search_top, 0)
            self.assertGreaterEqual(search_left, 0)
            self.assertGreaterEqual(head_top, search_bottom)
            self.assertLess(head_bottom, 200)
            self.assertTrue(chromium.run("return window.scrollY === 30000"))

    def test_keeps_its_columns_where_they_are(self):
        lefts = "return Array.from(document.querySelectorAll('thead th'), (th) => th.getBoundingClientRect().left)"
        # Columns of least widths, and columns that share a screen.
        for file in ("large.html", "world.html"):
            self.open(file)
            before = chromium.run(lefts)
            self.search("drv0042")
            self.assertEqual(chromium.run(lefts), before, file)


class Layout(Page):
    def tearDown(self):
        super().tearDown()
        chromium.command("Emulation.setEmulatedMedia", media="", features=[])

    def test_fits_a_narrow_screen(self):
        self.open("sorting.html")
        for width in (320, 600, 900):
            self.screen(width, 800)
            inside, visible = chromium.run("const page = document.documentElement; return [page.scrollWidth, page.clientWidth]")
            self.assertLessEqual(inside, visible, f"at {width}")

    def test_names_the_fields_on_a_narrow_screen_as_the_headers_do(self):
        self.open("large.html")
        labels = chromium.run("return Array.from(document.querySelectorAll('thead th'), (th) => th.textContent)")
        self.screen(400, 800)
        shown = chromium.run(
            """const row = document.querySelector("td.good").closest("tr");
            const cells = Array.from(row.cells).filter((cell) => cell.localName === "td" && cell.textContent !== "");
            return cells.map((td) => [td.cellIndex, JSON.parse(getComputedStyle(td, "::before").content)]);""")
        self.assertEqual([label for _, label in shown], [labels[column] for column, _ in shown])
        self.assertGreater(len(shown), 8)

    def test_begins_a_card_with_the_name(self):
        self.open("sorting.html")
        self.screen(400, 800)
        tops = chromium.run(
            """const cells = Array.from(document.querySelector("tbody tr").cells).filter((cell) => cell.checkVisibility());
            return cells.map((cell) => [cell.getBoundingClientRect().top, cell.localName]);""")
        self.assertGreater(len(tops), 3)
        self.assertEqual(min(tops)[1], "th")

    def test_sorts_on_a_narrow_screen(self):
        self.open("sorting.html")
        self.screen(400, 800)
        self.header("Name").click()
        self.assertEqual(self.names()[0], "alpha.sys")

    def test_can_be_read_in_light_and_dark(self):
        self.open("sorting.html")
        for scheme in ("light", "dark"):
            chromium.command("Emulation.setEmulatedMedia",
                             features=[{"name": "prefers-color-scheme", "value": scheme}])
            for text, ground in (("h1", "body"), (".facts dt", "body"), (".figures dt", "body"),
                                 (".bars .label", "body"), (".bars .unknown .label", "body"),
                                 ("thead th", "thead tr"), ("tbody td", "body"), ("#shown", ".tools")):
                self.assertGreaterEqual(self.contrast(text, ground), 4.5, f"{text} in {scheme}")
        self.assertLess(self.luminance("body", "backgroundColor"), 0.05)

    def luminance(self, selector, style):
        colour = chromium.run("return getComputedStyle(document.querySelector(arguments[0]))[arguments[1]]", selector, style)
        parts = [int(part) / 255 for part in colour[4:-1].split(",")]
        linear = [part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4 for part in parts]
        return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]

    def contrast(self, text, ground):
        low, high = sorted((self.luminance(text, "color"), self.luminance(ground, "backgroundColor")))
        return (high + 0.05) / (low + 0.05)

    def test_prints_the_rows_that_are_shown_and_no_search(self):
        self.open("sorting.html")
        self.search("beta")
        chromium.command("Emulation.setEmulatedMedia", media="print")
        self.assertFalse(self.element(".tools").is_displayed())
        self.assertEqual(self.names(), ["beta10.sys", "Beta9.sys"])
        self.assertEqual(chromium.run("return getComputedStyle(document.querySelector('thead th')).position"), "static")

    def test_prints_all_columns_that_fit_no_page_with_their_labels(self):
        self.open("sorting.html")
        chromium.command("Emulation.setEmulatedMedia", media="print")
        content = "return getComputedStyle(document.querySelector('td[data-label=Version]'), '::before').content"
        self.assertEqual(chromium.run(content).replace('" "', ""), '"Version: "')
        self.assertFalse(self.element("thead").is_displayed())


class Listing(Page):
    def test_of_the_library_has_no_summary(self):
        self.open("listing.html")
        self.assertIn("Listing of devices, services and OEM packages (all)", self.element("header").text)
        self.assertEqual(chromium.driver.find_elements(By.CSS_SELECTOR, ".figures, .bars"), [])
        self.assertEqual(self.column("Version"), ["N/A"])
        self.header("Version").click()
        self.assertEqual(self.shown(), "1 record")


class Scripts(Page):
    def test_are_shown_as_they_are(self):
        self.open("scripts-all.html")
        self.assertEqual(self.names()[:2], ["\u30d7\u30ea\u30f3\u30bf.sys", "\u0442\u0435\u0441\u0442.sys"])
        self.assertEqual(self.column("Provider")[0], "\u65e5\u672c\u8a9e\u682a\u5f0f\u4f1a\u793e \U0001f5a8\ufe0f")
        self.assertIn("turned [U+202E]gpj", self.column("Description")[2])
        self.search("\u0422\u0415\u0421\u0422")
        self.assertEqual(self.names(), ["\u0442\u0435\u0441\u0442.sys"])

    def test_marks_what_is_wrong(self):
        self.open("scripts-all.html")
        bad = chromium.run("return Array.from(document.querySelectorAll('tbody .bad'), (cell) => cell.textContent)")
        self.assertEqual(bad, ["\u0442\u0435\u0441\u0442.sys", "yes", self.names()[2], "43"])

    def test_keeps_long_lists_short_on_the_screen(self):
        self.open("scripts-all.html")
        self.assertEqual(len(self.column("Files")[3].split("\n")), 30)
        height = chromium.run("return document.querySelectorAll('tbody tr')[3].getBoundingClientRect().height")
        self.assertLess(height, 250)


class WithoutScript(Page):
    def setUp(self):
        chromium.command("Emulation.setScriptExecutionDisabled", value=True)

    def tearDown(self):
        chromium.command("Emulation.setScriptExecutionDisabled", value=False)
        super().tearDown()

    def test_everything_can_be_read(self):
        self.open("sorting.html")
        text = self.element("body").text
        for name in SORTING:
            self.assertIn(name, text)
        self.assertIn("Drivers of SAMPLE-PC", text)
        self.assertIn("2024-05-06 07:08:09 UTC", text)
        self.assertIn("Image time, UTC", text)
        bars = chromium.driver.find_elements(By.CSS_SELECTOR, ".bars li")
        self.assertIn("2 to 5 years 4", [" ".join(bar.text.split()) for bar in bars])
        self.assertGreater(self.element(".bars svg").size["width"], 50)

    def test_nothing_is_there_that_would_need_it(self):
        self.open("sorting.html")
        self.assertFalse(self.element("#tools").is_displayed())
        self.assertEqual(chromium.driver.find_elements(By.TAG_NAME, "button"), [])


class Empty(Page):
    def test_says_so(self):
        self.open("empty.html")
        self.assertEqual(self.names(), [])
        self.assertIn("No driver was found.", self.element("body").text)
        self.assertEqual(self.shown(), "0 records")
        self.header("Name").click()
        self.search("a")
        self.assertEqual(self.shown(), "0 of 0 records")


if __name__ == "__main__":
    pages.main()
