"""A headless Chromium that leaves nothing behind: no process, no profile."""

import atexit
import json
import os
import pathlib
import shutil
import signal
import tempfile
import time

from selenium import webdriver
from selenium.webdriver.chrome.service import Service

PROGRAMS = ("chromium", "chromedriver")


def missing():
    """The programs that are not installed."""
    return [program for program in PROGRAMS if not shutil.which(program)]


class Browser:
    def __init__(self):
        self.driver = None
        self._profile = tempfile.mkdtemp(prefix="report-browser-")
        options = webdriver.ChromeOptions()
        options.binary_location = shutil.which("chromium")
        # Chromium has no sandbox for root, and in most containers for nobody. It reads nothing but pages of this project.
        for argument in ("--headless", "--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu", "--no-first-run",
                         "--disable-background-networking", "--disable-component-update", "--disable-extensions",
                         "--window-size=1366,900", "--user-data-dir=" + self._profile):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"performance": "ALL", "browser": "ALL"})
        service = Service(shutil.which("chromedriver"), env={**os.environ, "HOME": self._profile})
        try:
            self.driver = webdriver.Chrome(service=service, options=options)
        except BaseException:
            service.stop()
            self._remove()
            raise
        # However the program ends.
        atexit.register(self.close)
        self.driver.set_page_load_timeout(60)
        self.driver.set_script_timeout(60)

    def close(self):
        """Ends the browser, if that was not done before. Returns how many of its processes had to be killed."""
        if not self.driver:
            return 0
        driver, self.driver = self.driver, None
        try:
            driver.quit()
        finally:
            killed = self._remove()
        return killed

    def open(self, path):
        """Opens a file, with logs that begin there."""
        self.driver.get("about:blank")
        self.requests()
        self.messages()
        self.driver.get(pathlib.Path(path).resolve().as_uri())

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def command(self, name, **parameters):
        return self.driver.execute_cdp_cmd(name, parameters)

    def requests(self):
        """Addresses that pages asked for since the last call."""
        events = [json.loads(entry["message"])["message"] for entry in self.driver.get_log("performance")]
        return [event["params"]["request"]["url"] for event in events if event["method"] == "Network.requestWillBeSent"]

    def messages(self):
        """What stood in the console since the last call."""
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def _remove(self):
        # The processes of a browser end one after the other.
        deadline = time.monotonic() + 10
        while self._processes() and time.monotonic() < deadline:
            time.sleep(0.1)
        left = self._processes()
        for process in left:
            try:
                os.kill(process, signal.SIGKILL)
            except ProcessLookupError:
                pass
        shutil.rmtree(self._profile, ignore_errors=True)
        return len(left)

    def _processes(self):
        """The processes that were started with this profile, which no other browser has."""
        found = []
        for line in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
            try:
                if self._profile.encode() in line.read_bytes():
                    found.append(int(line.parent.name))
            except OSError:
                pass
        return found
