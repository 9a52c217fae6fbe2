"""The page of the fleet in a headless Chromium, over a real server: page_test.py FOLDER, FOLDER being one to work in."""

import functools
import http.server
import pathlib
import shutil
import subprocess
import sys
import threading
import time
import unittest
import urllib.parse

import fleet
from fleet import ROOT, ask

import servers  # noqa: I100

sys.path.append(str(ROOT / "tests/report"))

CARDS = ("prevalence", "versions-of", "new-in-fleet", "changes-by-day", "drift", "vulnerable")
CHARTS = ("prevalence", "versions-of", "changes-by-day", "drift")


class Quiet(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


class Page(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        import browser

        if browser.missing():
            raise unittest.SkipTest("there is no " + " and no ".join(browser.missing()))
        if not servers.is_installed():
            raise unittest.SkipTest("clickhouse-server is not installed")
        cls.fleet = fleet.Fleet(count=40, drivers=40)
        cls.cluster = servers.Cluster(WORK / "servers")
        cls.enterClassContext(cls.cluster)
        for day in cls.fleet.days:
            cls.cluster.ship(day)
        handler = functools.partial(Quiet, directory=str(WORK / "page"))
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        cls.addClassCleanup(server.server_close)
        cls.addClassCleanup(server.shutdown)
        threading.Thread(target=server.serve_forever, daemon=True).start()
        cls.address = f"http://127.0.0.1:{server.server_port}/"
        cls.browser = browser.Browser()
        cls.addClassCleanup(cls.browser.close)

    def open(self, **more):
        given = {
            "url": self.cluster.url,
            "user": "fleet_reader",
            "password": self.cluster.passwords["reader"],
            **self.fleet.parameters,
            **more,
        }
        driver = self.browser.driver
        driver.get("about:blank")
        driver.get(self.address + "#" + urllib.parse.urlencode(given))
        for _ in range(600):
            done = driver.execute_script("return document.body.dataset.done")
            if done:
                return done
            time.sleep(0.1)
        self.fail("the page does not end asking")

    def shown(self, card):
        """The rows of a card's table, as the server would write them."""
        rows = self.browser.driver.execute_script(
            "return [...document.querySelectorAll('#' + arguments[0] + ' tbody tr')].map(r => [...r.cells].map(c => c.textContent))",
            card,
        )
        return "".join("\t".join(row) + "\n" for row in rows)

    def test_shows_the_answers_to_its_questions(self):
        self.assertEqual(self.open(), "yes")
        for card in CARDS:
            with self.subTest(card=card):
                self.assertEqual(self.shown(card), self.fleet.answers[card])

    def test_draws_a_bar_for_each_figure(self):
        self.open()
        for card in CHARTS:
            drawn = self.browser.driver.execute_script(
                "const c = document.querySelector('#' + arguments[0] + ' canvas'); const chart = c.chart;"
                "const painted = new Set(c.getContext('2d').getImageData(0, 0, c.width, c.height).data).size;"
                "return [chart.data.labels, chart.data.datasets.map(d => d.data), chart.getDatasetMeta(0).data.map(b => b.width > 0), painted]",
                card,
            )
            rows = [row.split("\t") for row in self.fleet.answers[card].splitlines()]
            figures = [[int(row[column]) for row in rows] for column in range(1, 4 if card == "drift" else 2)]
            with self.subTest(card=card):
                self.assertEqual(drawn[:2], [[row[0] for row in rows], figures])
                self.assertTrue(all(drawn[2]))
                self.assertGreater(drawn[3], 10)

    def test_says_what_the_server_refuses(self):
        self.assertEqual(self.open(password="wrong"), "with trouble")
        self.assertEqual(
            self.browser.driver.execute_script("return document.getElementById('status').textContent"),
            "6 of 6 questions have no answer.",
        )

    def test_asks_again_with_another_driver_that_is_any_text(self):
        for driver, rows in (
            ("no' OR 1=1 OR '\\", ""),
            (self.fleet.parameters["driver"], self.fleet.answers["versions-of"]),
        ):
            self.open(driver=driver)
            self.assertEqual(self.shown("versions-of"), rows)

    def test_keeps_the_password_out_of_its_address_and_runs_no_other_script(self):
        self.open()
        self.assertEqual(self.browser.driver.current_url, self.address)
        self.browser.driver.execute_script(
            "const s = document.createElement('script'); s.textContent = 'document.title = \"run\"';"
            "document.body.append(s)"
        )
        self.assertEqual(self.browser.driver.title, "Drivers of the fleet")

    def test_fits_a_narrow_window(self):
        self.browser.driver.set_window_size(500, 900)
        try:
            self.open()
            widths = self.browser.driver.execute_script("return [document.documentElement.scrollWidth, innerWidth]")
            self.assertLessEqual(widths[0], widths[1])
        finally:
            self.browser.driver.set_window_size(1366, 900)


if __name__ == "__main__":
    WORK = pathlib.Path(sys.argv.pop(1)).resolve()
    shutil.rmtree(WORK, ignore_errors=True)
    WORK.mkdir(parents=True)
    subprocess.run([ROOT / "fleet/page/build", WORK / "page"], check=True)
    unittest.main()
