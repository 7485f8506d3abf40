#!/usr/bin/env python3
"""Opens a report of the tool in a browser, headless, and looks at it as a reader would.

report_test.py TOOL SCREENSHOTS
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By
from selenium.webdriver.support.select import Select

TITLE = "Hall 3 <b>\"north\"</b> & {{folder}}"
HOSTILE = [
    "<script>document.title='broken'</script>",
    "\"><img src=x onerror=\"document.title='broken'\">",
    "' onmouseover='document.title=1' & &amp; &lt;b&gt;",
    "{{title}} {{{entries}}} {{#logbooks}} ${title}",
    "</td></tr></table><h1>broken</h1><!-- ]]> </script></style>",
    "漢字 and Umlaut ÄÖÜ ß",
]
BROKEN_DOCUMENT = '{"code":<img src=x>'
LONG_WORD = "Heatsink" * 40


class Logbooks:
    """A fresh folder of logbooks, filled through the tool."""

    def __init__(self, tool, folder):
        self.tool = tool
        self.folder = folder

    def run(self, *arguments, **options):
        command = [self.tool, "--folder", self.folder, *arguments]
        return subprocess.run(command, check=True, capture_output=True, text=True, **options).stdout

    def add(self, *arguments):
        self.run("add", *arguments)

    def add_document(self, logbook, document):
        line = {"seconds": 1600000000, "nanoseconds": 0, "time": "2020-09-13 14:26:40 +0200", "entry": document}
        self.run("import", logbook, "-", input=json.dumps(line))

    def fill(self):
        self.add_document("service", BROKEN_DOCUMENT)
        unknown = {"code": 999, "type": "W", "description": "", "details": {
            "device": -1, "generation": "Heron", "params": '{"odd":"<i>"}', "unit": -1}}
        self.add_document("service", json.dumps(unknown))
        self.add("customer", "error", "14", "--bus", "1", "--module", "3")
        self.add("customer", "warning", "6", "--bus", "2", "--module", "7", "--unit", "1", "--device", "2")
        self.add("customer", "info", "20")
        self.add("customer", "info", "229")
        for text in HOSTILE:
            self.add("service", "info", "--text", text)
        self.add("service", "info", "--text", "first line\nsecond line")
        self.add("service", "info", "--text", LONG_WORD)
        self.add("service", "error", "79", "--unit", "2")


def start_browser():
    options = Options()
    options.add_argument("--headless=new")
    options.add_argument("--disable-gpu")
    if os.geteuid() == 0:
        options.add_argument("--no-sandbox")
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


class Report(unittest.TestCase):
    """Each test has the report freshly opened on a wide, light screen."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        logbooks = Logbooks(cls.tool, folder.name)
        logbooks.fill()
        cls.file = pathlib.Path(folder.name) / "report.html"
        logbooks.run("report", "--title", TITLE, "--output", str(cls.file))
        cls.screenshots.mkdir(parents=True, exist_ok=True)
        cls.browser = start_browser()
        cls.addClassCleanup(cls.browser.quit)

    def setUp(self):
        self.open(1280, 900)

    def open(self, width, height, scheme="light", media="screen"):
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": height, "deviceScaleFactor": 1, "mobile": width < 600})
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "media": media, "features": [{"name": "prefers-color-scheme", "value": scheme}]})
        self.browser.get(self.file.as_uri())

    def script(self, text):
        return self.browser.execute_script(text)

    def entries(self, logbook):
        """Type, description and code of each entry that is in sight."""
        rows = self.browser.find_elements(By.CSS_SELECTOR, f"[data-logbook={logbook}] tbody tr")
        cell = lambda row, name: row.find_element(By.CLASS_NAME, name).get_property("innerText")
        return [[cell(row, name) for name in ("type", "words", "code")] for row in rows if row.is_displayed()]

    def descriptions(self):
        return [words for logbook in ("customer", "service") for _, words, _ in self.entries(logbook)]

    def count(self):
        return self.browser.find_element(By.ID, "count").text

    def search(self, text):
        field = self.browser.find_element(By.ID, "search")
        field.clear()
        field.send_keys(text)

    def click(self, value):
        self.browser.find_element(By.CSS_SELECTOR, f"input[value={value}]").click()

    def test_shows_every_entry_in_full_newest_first(self):
        self.assertEqual(self.entries("customer"), [
            ["Info", "RF was turned on.", "I229"],
            ["Info", "System restarted.", "I20"],
            ["Warning", "Device 2, Unit 1: Too low current for amplifier 7 on bus 2 reduced RF Power!", "W6"],
            ["Error", "Setting attenuation failed for amplifier 3 on bus 1!", "E14"],
        ])
        service = self.entries("service")
        self.assertEqual(service[:3], [
            ["Error", "Unit 2: Detected all fans to be defective!", "E79"],
            ["Info", LONG_WORD, ""],
            ["Info", "first line\\x0asecond line", ""],
        ])
        self.assertEqual([words for _, words, _ in service[3:-2]], HOSTILE[::-1])

    def test_shows_what_an_unknown_and_an_unreadable_entry_hold(self):
        unknown, unreadable = self.entries("service")[-2:]
        self.assertEqual(unknown[0], "Warning")
        self.assertEqual(unknown[2], "W999")
        self.assertIn("unknown entry", unknown[1])
        self.assertIn('{"odd":"<i>"}', unknown[1])
        self.assertEqual([unreadable[0], unreadable[2]], ["Unreadable", ""])
        self.assertIn("unreadable: not JSON", unreadable[1])
        self.assertIn(BROKEN_DOCUMENT, unreadable[1])

    def test_takes_texts_as_texts(self):
        self.assertEqual(self.browser.title, TITLE)
        self.assertEqual(self.browser.find_element(By.TAG_NAME, "h1").text, TITLE)
        self.assertEqual(self.script("return document.querySelectorAll('h1').length"), 1)
        self.assertEqual(self.script("return document.querySelectorAll('script').length"), 1)
        self.assertEqual(self.script("return document.querySelectorAll('img, b, i, iframe, object, base').length"), 0)
        self.assertEqual(self.script("""return [...document.querySelectorAll("*")].flatMap(
            (element) => element.getAttributeNames()).filter((name) => name.startsWith("on"))"""), [])

    def test_finds_texts(self):
        self.assertEqual(self.count(), "All 15 entries")
        self.search("ATTENUATION")
        self.assertEqual(self.descriptions(), ["Setting attenuation failed for amplifier 3 on bus 1!"])
        self.assertEqual(self.count(), "1 of 15 entries")
        self.search("amplifier bus")
        self.assertEqual(self.count(), "2 of 15 entries")
        self.search("e79")
        self.assertEqual(self.descriptions(), ["Unit 2: Detected all fans to be defective!"])
        self.search("漢字")
        self.assertEqual(self.descriptions(), [HOSTILE[-1]])
        self.search("<script>")
        self.assertEqual(self.count(), "1 of 15 entries")
        self.search("nowhere to be found")
        self.assertEqual(self.descriptions(), [])
        self.assertEqual(self.count(), "0 of 15 entries")

    def test_filters_by_type(self):
        for value, left in [("info", 5), ("error", 3), ("unreadable", 2), ("warning", 0)]:
            self.click(value)
            self.assertEqual(self.count(), f"{left} of 15 entries")
            self.assertEqual(len(self.descriptions()), left)

    def test_filters_by_logbook(self):
        choice = Select(self.browser.find_element(By.ID, "logbook"))
        choice.select_by_value("customer")
        self.assertEqual((len(self.entries("customer")), len(self.entries("service"))), (4, 0))
        self.assertEqual(self.count(), "4 of 15 entries")
        choice.select_by_value("service")
        self.assertEqual((len(self.entries("customer")), len(self.entries("service"))), (0, 11))
        self.assertEqual(self.count(), "11 of 15 entries")

    def test_shows_all_again(self):
        self.search("fans")
        self.click("warning")
        Select(self.browser.find_element(By.ID, "logbook")).select_by_value("service")
        self.browser.find_element(By.ID, "reset").click()
        self.assertEqual(self.count(), "All 15 entries")
        self.assertFalse(self.browser.find_element(By.ID, "reset").is_displayed())

    def test_counts_and_charts_both_logbooks(self):
        figures = lambda name: self.browser.find_element(By.CSS_SELECTOR, f"#{name}-summary .figures").text.split()
        self.assertEqual(figures("customer"), ["Errors", "1", "Warnings", "1", "Information", "2"])
        self.assertEqual(figures("service"), ["Errors", "1", "Warnings", "1", "Information", "8",
                                              "Unreadable", "1"])
        for name in ("customer", "service"):
            chart = self.browser.find_element(By.CSS_SELECTOR, f"#{name}-summary svg")
            self.assertEqual(chart.aria_role, "image")
            self.assertRegex(chart.accessible_name, f"^Entries of the {name} logbook from .* Errors: 1, Warnings: 1")
            self.assertEqual({bar.get_attribute("class") for bar in chart.find_elements(By.TAG_NAME, "rect")},
                             {"bar-error", "bar-warning", "bar-info"})

    def test_fits_every_screen(self):
        for width, height in [(360, 740), (1280, 900)]:
            self.open(width, height)
            self.assertEqual(self.script("""return document.documentElement.scrollWidth -
                document.documentElement.clientWidth"""), 0)
            self.assertEqual(self.script("""return [...document.querySelectorAll("main *, header *")].filter((element) =>
                !element.closest(".visually-hidden, thead, [hidden]") &&
                element.getBoundingClientRect().right > document.documentElement.clientWidth + 1).map((element) => element.outerHTML)"""), [])

    def test_is_dark_when_asked(self):
        background = "return getComputedStyle(document.body).backgroundColor"
        self.assertEqual(self.script(background), "rgb(255, 255, 255)")
        self.open(1280, 900, scheme="dark")
        self.assertEqual(self.script(background), "rgb(20, 23, 26)")

    def test_is_read_without_script_and_on_paper(self):
        self.browser.execute_cdp_cmd("Emulation.setScriptExecutionDisabled", {"value": True})
        self.addCleanup(self.browser.execute_cdp_cmd, "Emulation.setScriptExecutionDisabled", {"value": False})
        self.open(1280, 900)
        self.assertEqual(len(self.descriptions()), 15)
        self.assertFalse(self.browser.find_element(By.ID, "search").is_displayed())
        self.open(700, 900, scheme="dark", media="print")
        self.assertEqual(len(self.descriptions()), 15)
        self.assertEqual(self.script("return getComputedStyle(document.body).backgroundColor"), "rgb(255, 255, 255)")
        self.assertFalse(self.browser.find_element(By.ID, "search").is_displayed())

    def test_asks_nothing_of_the_network_and_complains_of_nothing(self):
        self.assertEqual(self.script("return performance.getEntriesByType('resource').map((entry) => entry.name)"), [])
        self.assertEqual(self.browser.get_log("browser"), [])

    def test_takes_screenshots(self):
        for name, width, scheme, media in [("phone", 390, "light", "screen"), ("desktop", 1280, "light", "screen"),
                                           ("dark", 1280, "dark", "screen"), ("phone-dark", 390, "dark", "screen"),
                                           ("print", 700, "light", "print")]:
            self.open(width, 900, scheme, media)
            self.open(width, self.script("return document.documentElement.scrollHeight"), scheme, media)
            self.assertTrue(self.browser.save_screenshot(str(self.screenshots / f"{name}.png")))


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit("usage: report_test.py TOOL SCREENSHOTS")
    Report.tool = str(pathlib.Path(sys.argv[1]).resolve())
    Report.screenshots = pathlib.Path(sys.argv[2])
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
