"""What the tests of pages share: a page open in the browser of the program."""

import pathlib
import signal
import sys
import unittest

try:
    import browser
except ImportError as problem:
    sys.exit(f"pages: {problem.name or 'selenium'} is not installed; scripts/setup --tests installs it.")

from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

chromium = None
folder = None


def start():
    """Starts the browser of this program."""
    global chromium
    chromium = browser.Browser()
    return chromium


def stop():
    killed = chromium.close()
    assert killed == 0, f"{killed} processes of the browser did not end by themselves"


def main():
    """Runs the tests of the program on the pages in the folder that its command line names first."""
    program = pathlib.Path(sys.argv[0]).stem
    missing = browser.missing()
    if missing:
        sys.exit(f"{program}: {' and '.join(missing)} not found; scripts/setup --tests installs them.")
    global folder
    folder = pathlib.Path(sys.argv.pop(1)) if len(sys.argv) > 1 else None
    if not folder or not folder.is_dir():
        sys.exit(f"{program}: it takes the folder of the reports; scripts/test-report writes them.")
    # Ends the browser too.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    unittest.main(module="__main__", verbosity=2)


class Page(unittest.TestCase):
    """A test that reads a page. The console stays empty, and nothing but the page itself is asked for, unless it says so."""

    speaks = False
    fetches = False

    def open(self, file):
        self.path = folder / file
        chromium.open(self.path)

    def tearDown(self):
        messages, requests = chromium.messages(), chromium.requests()
        if not self.speaks:
            self.assertEqual(messages, [])
        if not self.fetches:
            self.assertEqual(set(requests), {self.path.resolve().as_uri()})
            self.assertEqual(chromium.run("return performance.getEntriesByType('resource').map((entry) => entry.name)"), [])

    def element(self, selector):
        return chromium.driver.find_element(By.CSS_SELECTOR, selector)

    def search(self, text):
        field = self.element("#search")
        field.clear()
        field.send_keys(text)

    def header(self, label):
        """The button that sorts by the column."""
        headers = chromium.driver.find_elements(By.CSS_SELECTOR, "thead th")
        header = next(header for header in headers if header.get_property("textContent") == label)
        return header.find_element(By.TAG_NAME, "button")

    def column(self, label):
        """Texts of a column, top to bottom, as a reader sees them."""
        return chromium.run(
            """const headers = Array.from(document.querySelectorAll("thead th"), (th) => th.textContent);
            const column = headers.indexOf(arguments[0]);
            const rows = Array.from(document.querySelectorAll("tbody tr:not(.opening)")).filter((row) => row.checkVisibility());
            return rows.map((row) => row.cells[column].textContent);""", label)

    def names(self):
        return self.column("Name")

    def shown(self):
        return self.element("#shown").text

    def sort_states(self):
        """Labels of the headers that say that they sort, with the direction."""
        return chromium.run(
            """const headers = Array.from(document.querySelectorAll("thead th"));
            const states = headers.map((th) => [th.textContent, th.getAttribute("aria-sort")]);
            return Object.fromEntries(states.filter(([, state]) => state !== "none"));""")

    def screen(self, width, height, dark=False):
        chromium.command("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)
        scheme = {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}
        chromium.command("Emulation.setEmulatedMedia", media="", features=[scheme])
        self.addCleanup(chromium.command, "Emulation.clearDeviceMetricsOverride")
        self.addCleanup(chromium.command, "Emulation.setEmulatedMedia", media="", features=[])

    def active(self):
        return chromium.driver.switch_to.active_element

    def press(self, *keys):
        """Keys for whatever has the focus, and what has it then."""
        for key in keys:
            self.active().send_keys(key)
        return self.active()

    def press_until(self, key, selector, most=200):
        """Presses a key until an element that the selector means has the focus."""
        for _ in range(most):
            if chromium.run("return document.activeElement.matches(arguments[0])", selector):
                return self.active()
            self.press(key)
        self.fail(f"{selector} never got the focus")

