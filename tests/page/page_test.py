#!/usr/bin/env python3
"""The page of differences in a real browser: page_test.py VTROUT MAKE_PAGE SAMPLES.

Ends with 77 where there is none."""

import collections
import hashlib
import json
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

try:
    from selenium import webdriver
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.chrome.service import Service
except ImportError:
    sys.exit(77)

KINDS = ["changed", "removed", "added", "moved"]
NASTY = "<script>alert(1)</script> </script> <!-- --> ]]> &amp; \"'\\ \u2028\u2029 \u202e"


def changed(path, key, old, new):
    return {"kind": "changed", "path": path, "newPath": path, "key": key, "old": old, "new": new}


def differences(changes, header=()):
    counts = collections.Counter(change["kind"] for change in changes)
    return {"form": "vtr-differences", "version": 1, "codePage": 1252, "old": {"file": "a"}, "new": {"file": "b"},
            "different": bool(changes), "counts": {kind: counts[kind] for kind in KINDS}, "header": list(header),
            "changes": changes}


TABLE = {"Tid": "T050", "Name": "Valves", "Raw1": "00000000", "Fields": {"Count": 1, "Items": [{"Fid": "F1"}]}}
SMALL = differences([
    changed("Schema/Product/Description", "", "Plant, base", "Plant, extended"),
    changed("Schema/Tables/Max", "", 4, 5),
    changed("Schema/Tables/Items[3]/Fields/Items[4]/Lenght", "T003/F004", 12.5, 40),
    changed("Schema/Tables/Items[3]/Fields/Items[4]/Filter/FilterText", "T003/F004", "", NASTY),
    {"kind": "removed", "path": "Schema/Tables/Items[5]", "key": "T005", "old": TABLE},
    {"kind": "added", "newPath": "Schema/Tables/Items[5]", "key": "T050", "new": TABLE},
    {"kind": "added", "newPath": "Schema/Tables/Items[6]", "key": "6", "new": {"Tid": ""}, "unused": True},
    {"kind": "moved", "path": "TreeHierarchy/Items[2]", "newPath": "TreeHierarchy/Items[7]", "key": "A/B"},
    changed("TarvelDefinitionHeader/Items[1]/Nodes[2]/Description", "1/2", "", "Node"),
    changed("Language/Items[9]/Texts[4]", "MSG/1", "Ventil", "Ventile"),
    changed("Module/Items[1]/Var1", "M", {"type": 6, "value": "-15000"}, {"type": 8, "value": "\u2028" * 30000}),
], header=[changed("Header/Modified", "", "then", "now")])
BOOKKEEPING = 2


def random_pair(rng):
    pieces = ["a", "bb", "Ventil", "12.5", " ", ", ", "弁", "\n", "\r\n"]
    words = [rng.choice(pieces) for _ in range(rng.randrange(40))]
    other = [word for word in words if rng.random() < 0.9]
    for _ in range(rng.randrange(4)):
        other.insert(rng.randrange(len(other) + 1), rng.choice(["neu", " ", "\n", "bb"]))
    return "x" + "".join(words), "x" + "".join(other)


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = pathlib.Path(tempfile.mkdtemp())
        cls.files = [cls.folder / "<old> & large.vtr", pathlib.Path(SAMPLES, "plant-next.vtr")]
        cls.files[0].write_bytes(random.Random(1).randbytes(150_000))
        options = webdriver.ChromeOptions()
        options.binary_location = shutil.which("chromium")
        for option in ["headless=new", "no-sandbox", "disable-gpu", "disable-quic", "no-first-run", "disable-sync",
                       "disable-background-networking", "disable-component-update", "disable-dev-shm-usage",
                       "window-size=1280,1600", f"user-data-dir={cls.folder}/profile"]:
            options.add_argument("--" + option)
        options.set_capability("goog:loggingPrefs", {"performance": "ALL", "browser": "ALL"})
        cls.driver = webdriver.Chrome(service=Service(shutil.which("chromedriver")), options=options)
        cls.driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": """
            window.violations = [];
            addEventListener('securitypolicyviolation', (event) => violations.push(event.violatedDirective));
            addEventListener('error', (event) => violations.push(event.message));
            window.alert = () => violations.push('alert');"""})

    @classmethod
    def tearDownClass(cls):
        cls.driver.quit()
        shutil.rmtree(cls.folder, ignore_errors=True)

    def make(self, content):
        source, page = self.folder / "differences.json", self.folder / "page.html"
        source.write_text(json.dumps(content, ensure_ascii=False))
        counts = [str(content["counts"][kind]) for kind in KINDS]
        with page.open("wb") as output:
            subprocess.run([MAKE_PAGE, source, *self.files, *counts], stdout=output, check=True)
        return page.as_uri()

    def open(self, content, place=""):
        self.driver.get("about:blank")
        self.driver.get(self.make(content) + place)

    def js(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def keys(self, *keys):
        self.driver.switch_to.active_element.send_keys(*keys)

    def content(self, selector):
        return self.js("return document.querySelector(arguments[0]).textContent", selector)

    def members(self):
        return self.js("return [...document.querySelectorAll('#list .member')].map((member) => member.textContent)")

    def size(self):
        return self.js("return Number(document.querySelector('#list article')?.getAttribute('aria-setsize') ?? 0)")

    def wait(self, holds, what):
        for _ in range(100):
            if holds():
                return
            time.sleep(0.05)
        self.fail(what)

    def search(self, words, size):
        self.one("#search").clear()
        self.one("#search").send_keys(words)
        self.wait(lambda: self.size() == size, f"{words}: {self.members()}")

    def test_counts_are_those_of_the_differences(self):
        self.open(SMALL)
        told = {kind: int(self.one(f"#totals .{kind}").get_attribute("data-count")) for kind in KINDS}
        self.assertEqual(told, SMALL["counts"])
        sections = collections.defaultdict(lambda: [0, 0, 0, 0])
        for change in SMALL["changes"]:
            sections[(change.get("path") or change["newPath"]).split("/")[0]][KINDS.index(change["kind"])] += 1
        rows = {row.get_attribute("data-section"): [int(cell.text) for cell in row.find_elements(By.TAG_NAME, "td")[1:]]
                for row in self.all("#sections tr")}
        self.assertEqual(rows, dict(sections))
        self.assertEqual(self.size(), len(SMALL["changes"]) - BOOKKEEPING)
        self.one("#bookkeeping").click()
        self.assertEqual(self.size(), len(SMALL["changes"]))
        self.assertIn("1 change in the header", self.one("#header-changes").text)
        self.assertIn("<old> & large.vtr → ", self.driver.title)
        digests = [hashlib.sha256(file.read_bytes()).hexdigest() for file in self.files]
        self.assertEqual([cell.text for cell in self.all("#files code")], digests)
        self.assertIn("7 changed, 1 removed, 2 added, 1 moved", self.content("noscript"))

    def test_the_command_writes_it(self):
        page = self.folder / "of-command.html"
        for old, new, *options in [("plant", "plant-next"), ("dense", "dense-next"), ("plant-old-format", "plant"),
                                   ("plant", "plant"), ("plant", "plant-next", "--only", "Schema/**")]:
            command = [VTROUT, "diff", f"{SAMPLES}/{old}.vtr", f"{SAMPLES}/{new}.vtr", *options]
            told = json.loads(subprocess.run([*command, "--json"], capture_output=True).stdout)
            subprocess.run([*command, "--yes", "--html", page], capture_output=True)
            self.driver.get("about:blank")
            self.driver.get(page.as_uri())
            self.assertEqual(self.js("return JSON.parse(document.getElementById('differences').textContent)"), told)
            counts = {kind: int(self.one(f"#totals .{kind}").get_attribute("data-count")) for kind in KINDS
                      if told["different"]}
            self.assertEqual(counts, told["counts"] if told["different"] else {})
            if told["different"]:
                for box in self.all("#bookkeeping, #unfold"):
                    self.js("if (arguments[0].offsetParent) arguments[0].click()", box)
                self.assertEqual(self.size(), len(told["changes"]))
                self.js("window.dispatchEvent(new Event('beforeprint'));")
                self.assertEqual(len(self.all("#list article")), len(told["changes"]))
            self.assertEqual("A part of the documents" in self.one(".head").text, bool(options))
            self.assertEqual(self.js("return violations"), [])

    def test_names_are_those_that_users_know(self):
        self.open(SMALL)
        self.assertEqual(self.members(), ["Description", "Lenght", "Filter / FilterText", "T005", "T050", "A/B",
                                          "Description", "German", "Var1"])
        self.assertEqual([element.text.replace(" ", "") for element in self.all("#list h3")],
                         ["Schema/Product", "Schema/Tables/T003/Fields/F004", "Schema/Tables", "Tree",
                          "Datasend/#1/Nodes/#2", "Languagetexts/MSG/1", "Modules/M"])
        self.assertIn("-1.5", self.all("#list .old")[-1].text)

    def test_filters_and_search(self):
        self.open(SMALL)
        self.one("#kinds .changed").click()
        self.assertEqual(self.members(), ["T005", "T050", "A/B"])
        self.one("[data-section=TreeHierarchy] button").click()
        self.assertEqual(self.members(), ["A/B"])
        self.one("[data-section=TreeHierarchy] button").click()
        self.one("#kinds .changed").click()
        self.search("t003 LENGHT", 1)
        self.search("valves f1", 2)
        self.search("&amp;", 1)
        self.search("nowhere", 0)
        self.one("#none button").click()
        self.assertEqual(self.size(), 9)

    def test_texts_stay_texts_and_nothing_is_fetched(self):
        self.driver.get_log("performance")
        self.open(SMALL)
        self.assertEqual(self.js("return JSON.parse(document.getElementById('differences').textContent)"), SMALL)
        shown = self.js("return [...document.querySelectorAll('#list ins')].map((mark) => mark.textContent)")
        self.assertIn("<script>alert(1)</script> </script> <!-- --> ]]> &amp; \"'\\ U+2028U+2029 U+202E", shown)
        self.assertEqual(self.js("return document.querySelectorAll('#list script, #list img').length"), 0)
        self.assertEqual(self.js("return violations"), [])
        self.assertEqual(self.js("return performance.getEntriesByType('resource').length"), 0)
        events = [json.loads(entry["message"])["message"] for entry in self.driver.get_log("performance")]
        asked = {event["params"]["request"]["url"] for event in events
                 if event["method"] == "Network.requestWillBeSent"}
        self.assertEqual({url for url in asked if url != "about:blank"}, {(self.folder / "page.html").as_uri()})
        # The policy that says so is in force.
        self.js("document.body.append(Object.assign(document.createElement('script'), {textContent: 'alert(2)'}));"
                "document.body.append(Object.assign(document.createElement('img'), {src: 'http://127.0.0.1:9/'}));"
                "fetch('http://127.0.0.1:9/').catch(() => {});")
        self.wait(lambda: len(self.js("return violations")) >= 3, "the policy")
        self.assertEqual(sorted(self.js("return violations")), ["connect-src", "img-src", "script-src-elem"])

    def test_marks_are_few(self):
        cases = [("Feed the pump now", "Feed the big pump now", [], ["big "]),
                 ("one two three four", "one three four five", ["two "], [" five"]),
                 ("a = 1\r\nb = 2\r\nc = 3", "a = 1\r\nc = 3\r\nd = 4", ["b = 2"], ["d = 4"]),
                 ("one\r\ntwo", "one\ntwo\n", ["CR LF"], ["LF", "LF"]), ("Pump", "Valve", ["Pump"], ["Valve"])]
        self.open(differences([changed(f"Module/Items[{at + 1}]/Description", str(at), old, new)
                               for at, (old, new, _, _) in enumerate(cases)]))
        marks = self.js("""return [...document.querySelectorAll('#list .change')].map((row) =>
            ['del', 'ins'].map((name) => [...row.querySelectorAll(name)].map((mark) => mark.textContent)))""")
        for case, marked in zip(cases, marks):
            self.assertEqual(marked, list(case[2:]))

    def test_marks_take_nothing_away(self):
        rng = random.Random(20261123)
        pairs = [random_pair(rng) for _ in range(300)]
        pairs += [("x " * 9000 + "a" + " y" * 9000, "x " * 9000 + "b" + " y" * 9000), ("a b " * 9000, "c d " * 8000),
                  ("one\r\ntwo", "one\ntwo")]
        pairs = [pair for pair in pairs if pair[0] != pair[1]]
        self.open(differences([changed(f"Module/Items[{at + 1}]/Description", str(at), old, new)
                               for at, (old, new) in enumerate(pairs)]))
        self.js("window.dispatchEvent(new Event('beforeprint'));")  # all rows are made
        self.js("for (let more; (more = document.querySelector('#list .more'));) more.click();")
        rows = self.js("""
            const text = (cell, marks) => {
              const copy = cell.cloneNode(true);
              for (const out of copy.querySelectorAll(marks)) out.remove();
              return copy.textContent;
            };
            return [...document.querySelectorAll('#list .change')].map((row) => ['.old', '.new'].map((side) =>
              [...row.querySelectorAll(side + ':not(.absent)')].map((cell) =>
                [text(cell, '.end, .note'), text(cell, 'del, ins, .note')])))""")
        self.assertEqual(len(rows), len(pairs))
        for (old, new), (olds, news) in zip(pairs, rows):
            for text, cells in [(old, olds), (new, news)]:
                lines = [line or " " for line in text.replace("\r\n", "\n").removesuffix("\n").split("\n")]
                self.assertEqual([line or " " for line, _ in cells], lines, (old, new))
            equal = ["".join(rest for _, rest in cells) for cells in (olds, news)]
            self.assertEqual(*equal, (old, new))

    def test_keyboard_and_links(self):
        self.open(SMALL)
        self.one("body").send_keys("n")
        current = lambda: self.one(".current .member").text
        self.assertEqual(current(), "Description")
        self.keys("nnn")
        self.assertEqual(current(), "T005")
        self.assertEqual(self.all(".current dl"), [])
        self.keys(Keys.ENTER)
        self.assertIn("Valves", self.one(".current dl").text)
        self.keys("p")
        self.assertEqual(current(), "Filter / FilterText")
        self.keys("/")
        self.assertEqual(self.driver.switch_to.active_element.get_attribute("id"), "search")
        self.keys("np")
        self.wait(lambda: self.size() == 0, "keys go into the search")
        self.keys(Keys.ESCAPE)
        self.assertEqual(self.size(), 9)
        # A link leads to what a filter hides, too; an item that was added isn't the one that was removed at its place.
        for place, member in [("Schema/Tables/Items[5]", "T005"), ("new:Schema/Tables/Items[5]", "T050"),
                              ("TreeHierarchy", "A/B"), ("Schema/Tables/Max", "Max")]:
            self.one("#search").send_keys("lenght")
            self.wait(lambda: self.size() == 1, "the search")
            self.js("window.location.hash = arguments[0]", place)
            self.wait(lambda: self.all(".current .member") and current() == member, place)
        self.open(SMALL, "#Module/Items%5B1%5D/Var1")
        self.assertEqual(current(), "Var1")
        self.one("#tree li a").click()
        self.wait(lambda: current() == "Description", "a name in the contents")

    def test_a_hundred_thousand_changes(self):
        changes = [changed(f"Schema/Tables/Items[{at // 50 + 1}]/Fields/Items[{at % 50 + 1}]/Description",
                           f"T{at // 50}/F{at % 50}", f"Capacity of pump {at}",
                           f"Capacity of the pump {at} " * (at % 7 + 1))
                   for at in range(100_000)]
        page = self.make(differences(changes))
        self.driver.get("about:blank")
        self.driver.get(page)
        timing = self.js("const [entry] = performance.getEntriesByType('navigation'); return entry.loadEventEnd")
        print(f"100,000 changes, {os.path.getsize(self.folder / 'page.html') / 1e6:.0f} MB: opened in {timing:.0f} ms")
        rows = lambda: len(self.all("#list article"))
        last = lambda: self.all("#list article")[-1]
        self.assertLess(rows(), 200)
        for _ in range(5):  # what is above turns out to be higher than guessed
            self.js("window.scrollTo(0, document.documentElement.scrollHeight)")
            time.sleep(0.1)
        self.wait(lambda: last().get_attribute("data-number") == "99999", "the last change")
        self.assertTrue(last().is_displayed() and "pump 99999" in last().text)
        self.assertLess(rows(), 200)
        self.js("window.location.hash = '#Schema/Tables/Items[1001]'")
        self.wait(lambda: self.all(".current"), "the link")
        top = self.js("return document.querySelector('.current').getBoundingClientRect().top")
        below = top - self.one("#bar").size["height"]
        self.assertTrue(0 <= below < 12, below)
        self.one("#unfold").click()
        after = self.js("return document.querySelector('.current').getBoundingClientRect().top")
        self.assertAlmostEqual(after, top, delta=2, msg="what is seen stays in its place")
        self.search("t1234 f7", 1)
        self.one("#search").clear()
        self.one("#search").send_keys(" ")
        self.wait(lambda: self.size() == 100_000, "no search")
        self.js("window.dispatchEvent(new Event('beforeprint'));")
        self.assertEqual(rows(), 5000)
        self.assertIn("Printed: the first 5,000 of 100,000 changes; search: ", self.content("#printed"))
        self.js("window.dispatchEvent(new Event('afterprint'));")
        self.assertLess(rows(), 200)

    def test_colours_and_narrow_screens(self):
        contrasts = """
            const style = getComputedStyle(document.documentElement);
            const light = (name) => {
              const code = style.getPropertyValue('--' + name).trim();
              const [r, g, b] = [1, 3, 5].map((at) => parseInt(code.slice(at, at + 2), 16) / 255)
                .map((part) => part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4);
              return 0.2126 * r + 0.7152 * g + 0.0722 * b + 0.05;
            };
            const pairs = [['text', 'del'], ['text', 'ins']];
            for (const name of ['text', 'muted', 'link', 'changed', 'removed', 'added', 'moved']) {
              pairs.push([name, 'ground'], [name, 'panel']);
            }
            return pairs.map(([a, b]) => [light(a), light(b)]).map(([a, b]) => Math.max(a, b) / Math.min(a, b));"""
        grounds = set()
        for scheme in ["light", "dark"]:
            self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia",
                                        {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
            self.open(SMALL)
            self.assertGreater(min(self.js(contrasts)), 4.5)
            grounds.add(self.js("return getComputedStyle(document.body).backgroundColor"))
            self.one("#theme").click()
            other = {"light": "dark", "dark": "light"}[scheme]
            self.assertEqual(self.js("return document.documentElement.dataset.theme"), other)
        self.assertEqual(len(grounds), 2)
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": []})
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                                    {"width": 400, "height": 800, "deviceScaleFactor": 1, "mobile": False})
        self.open(SMALL)
        self.assertLessEqual(self.js("return document.documentElement.scrollWidth"), 400)
        self.driver.execute_cdp_cmd("Emulation.clearDeviceMetricsOverride", {})


if __name__ == "__main__":
    if not (shutil.which("chromium") and shutil.which("chromedriver")):
        sys.exit(77)
    VTROUT, MAKE_PAGE, SAMPLES = sys.argv[1:4]
    unittest.main(argv=sys.argv[:1] + sys.argv[4:])
