#!/usr/bin/env python3
"""Opens the page of `txcheck --report` in a real browser, Chromium, and looks at what it makes of it: markup, filter, contrast,
width and what a screen reader is told.  Usage: page.py PROGRAMS
PROGRAMS is the build directory with the programs; `script/setup page` installs the browser."""

import collections
import itertools
import json
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import time
import unicodedata

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "endtoend"))
import oracle  # noqa: E402

PROGRAMS = pathlib.Path(sys.argv[1]).resolve()
HOSTILE = [b"<script>alert(1)</script>", b"</td></table><h1>x</h1>", b"\"'><img src=x onerror=alert(1)>", b"&lt;b&gt;&amp;&#60;",
           b"b\x07\x1b[31m", b"\xe2\x80\xae gpj.exe", "שלום <i>א</i>".encode(), b"K\xe4se \x80\x9f", b"<!--", b"]]>",
           b"javascript:alert(1)", b"W" * 60]
ELEMENTS = set("html head meta title style body header h1 main article section h2 p br ul li table thead tbody tr th td bdi "
               "fieldset legend label input".split())
FACTS = """
const dark = matchMedia('(prefers-color-scheme: dark)').matches;
const all = [...document.querySelectorAll('*')], seen = element => element.getClientRects().length > 0;
const rgb = colour => colour.match(/[\\d.]+/g).map(Number);
const light = c => { const [r, g, b] = c.map(v => (v /= 255) <= .03928 ? v / 12.92 : ((v + .055) / 1.055) ** 2.4);
                     return .2126 * r + .7152 * g + .0722 * b; };
const canvas = dark ? [18, 18, 18] : [255, 255, 255];
const behind = e => { for (; e; e = e.parentElement) { const c = rgb(getComputedStyle(e).backgroundColor);
                                                       if (c.length < 4 || c[3] === 1) return c.slice(0, 3); } return canvas; };
const ratio = e => { const [a, b] = [light(rgb(getComputedStyle(e).color).slice(0, 3)), light(behind(e))].sort((x, y) => y - x);
                     return (a + .05) / (b + .05); };
const worded = all.filter(e => seen(e) && [...e.childNodes].some(n => n.nodeType === 3 && n.data.trim()));
const rows = title => [...document.querySelectorAll('section')].filter(s => s.querySelector('h2').innerText.startsWith(title))
                      .flatMap(s => [...s.querySelectorAll('tbody tr')]);
return {elements: [...new Set(all.map(e => e.localName))], 
        handlers: document.evaluate("count(//@*[starts-with(name(), 'on') or name() = 'href' or name() = 'src'])", document,
                                    null, 1).numberValue,
        ids: rows('Problems').map(r => r.cells[2].textContent), shown: rows('Problems').filter(seen).map(r => r.className),
        keys: rows('Keys').map(r => r.cells[0].textContent), kinds: [...document.querySelectorAll('input')].map(i => i.className),
        headings: [...document.querySelectorAll('h1, h2, h3')].map(h => h.localName).join(' '),
        narrowest: Math.min(...rows('Problems').map(r => r.cells[1].getBoundingClientRect().width)),
        wide: document.documentElement.scrollWidth - document.documentElement.clientWidth,
        contrast: Math.min(...worded.map(ratio)), ground: getComputedStyle(document.documentElement).colorScheme}"""


def expect(truth, what):
    if not truth:
        raise AssertionError(what)


class Chromium:
    """Driven by its own protocol over two pipes."""

    def __init__(self, work, dark):
        down, up = os.pipe(), os.pipe()
        self.out, self.input = os.fdopen(down[1], "wb", 0), os.fdopen(up[0], "rb")
        command = "exec chromium --headless %s --disable-dev-shm-usage --remote-debugging-pipe --user-data-dir=%s 3<&%d 4>&%d" % (
            "" if os.geteuid() else "--no-sandbox", work, down[0], up[1])
        self.process = subprocess.Popen(["bash", "-c", command], pass_fds=[down[0], up[1]], stderr=subprocess.DEVNULL)
        os.close(down[0]), os.close(up[1])
        self.numbers, self.session = itertools.count(1), None
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        self.call("Page.enable")
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])

    def message(self):
        text = bytearray()
        while (byte := self.input.read(1)) != b"\0":
            expect(byte, "Chromium has gone")
            text += byte
        return json.loads(text)

    def call(self, method, **parameters):
        number = next(self.numbers)
        request = {"id": number, "method": method, "params": parameters, **({"sessionId": self.session} if self.session else {})}
        self.out.write(json.dumps(request).encode() + b"\0")
        while (answer := self.message()).get("id") != number:
            pass
        expect("result" in answer, answer)
        return answer["result"]

    def open(self, path):
        self.call("Page.navigate", url=path.as_uri())
        while self.run("return document.readyState + location.protocol") != "completefile:":
            time.sleep(0.05)

    def run(self, script):
        result = self.call("Runtime.evaluate", expression="(() => {%s})()" % script, returnByValue=True)
        expect("exceptionDetails" not in result, result)
        return result["result"].get("value")

    def size(self, width, height):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)

    def tree(self):
        """Role and name of each thing that a screen reader is told of."""
        nodes = self.call("Accessibility.getFullAXTree")["nodes"]
        return [(node["role"]["value"], node.get("name", {}).get("value", "")) for node in nodes if not node["ignored"]]

    def close(self):
        self.call("Browser.close")
        self.process.wait()


def written(path, content):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


def damaged(root):
    """One of every kind of problem, many of some."""
    subprocess.run([PROGRAMS / "txsample", "--damage", "all", root], check=True, stdout=subprocess.DEVNULL)


def hostile(root):
    """Keys, names of types and of files that would be markup, entities or turns of direction if anything let them."""
    written(root / "DBASE" / "A.DBS", oracle.dbs([*HOSTILE, *HOSTILE, b""]))
    for text in HOSTILE:
        name = os.fsdecode(text.replace(b"/", b"|"))
        header = oracle.counted(b"PHEN-DEF-v1.0")
        chunk = b"TGTPE" + struct.pack("<i", len(header) + 9 + 69) + oracle.field(text)
        written(root / "char" / (name + ".DEF"), header + chunk)
        written(root / "seq" / (name + ".DEF"), b"no file of its kind")


def worded(data):
    """Bytes as a page has to show them: in the encoding they are in, with what can't be seen in hex."""
    try:
        text = data.decode()
    except UnicodeDecodeError:
        text = "".join(bytes([byte]).decode("cp1252", "ignore") or chr(byte) for byte in data)
    return "".join("".join("\\x%02X" % byte for byte in sign.encode()) if unicodedata.category(sign) in ("Cc", "Cf") else sign
                   for sign in text)


def page_of(root):
    """The page of all keys, and what the document for programs says of them."""
    page = root.parent / "page.html"
    words = [PROGRAMS / "txcheck", "--no-lock", "--no-progress", "--all"]
    subprocess.run([*words, "--quiet", "--report", page, root], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    told = json.loads(subprocess.run([*words, "--json", root], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout)
    return page, told


def check_content(facts, told):
    expect(not facts["handlers"] and set(facts["elements"]) <= ELEMENTS, "a name has become markup: %s" % facts["elements"])
    expect(facts["ids"] == [worded(problem["id"].encode()) for problem in told["problems"]], "other problems")
    expect(facts["keys"] == [worded(oracle.bytes_of(key, "key")) or "(no key)" for key in told["keys"]], "other keys")


def check_filter(browser, facts):
    expect(len(facts["kinds"]) == len(set(facts["shown"])), "not a switch for each kind")
    for kind in facts["kinds"]:
        click = "document.querySelector('input.%s').click()" % kind
        browser.run(click)
        expect(browser.run(FACTS)["shown"] == [row for row in facts["shown"] if row != kind], "the filter of " + kind)
        browser.run(click)
    expect(browser.run(FACTS)["shown"] == facts["shown"], "the filter does not bring back what it hid")


def check_tree(tree, facts):
    """What a screen reader needs: titles, tables with heads, switches with names."""
    count = collections.Counter(role for role, _ in tree)
    expect(count["heading"] == len(facts["headings"].split()) and facts["headings"].startswith("h1 h2"), "headings")
    expect(count["table"] >= 2 and count["rowheader"] and count["columnheader"] >= 2 * count["table"], "a table without heads")
    expect(count["checkbox"] == len(facts["kinds"]), "not all switches are told")
    expect(all(name for role, name in tree if role in ("checkbox", "heading", "columnheader", "group")), "a thing without a name")


def check(browser, page, told):
    browser.size(1200, 900)
    browser.open(page)
    facts = browser.run(FACTS)
    check_content(facts, told)
    if facts["kinds"]:
        check_filter(browser, facts)
    check_tree(browser.tree(), facts)
    expect(facts["contrast"] >= 4.5, "contrast %.2f" % facts["contrast"])
    for width in 380, 1200, 2400:
        browser.size(width, 900)
        found = browser.run(FACTS)
        expect(found["wide"] <= 0, "wider than a window of %d pixels" % width)
        expect(found["narrowest"] > 250, "a problem in a column of %d pixels of %d" % (found["narrowest"], width))


def main():
    with tempfile.TemporaryDirectory(prefix="page-", ignore_cleanup_errors=True) as name:
        work, pages = pathlib.Path(name), {}
        for make in damaged, hostile:
            root = work / make.__name__ / os.fsdecode(HOSTILE[2])
            root.mkdir(parents=True)
            make(root)
            pages[make.__name__] = page_of(root)
        for word in "light", "dark":
            browser = Chromium(work / word, word == "dark")
            try:
                for sample, (page, told) in pages.items():
                    check(browser, page, told)
                    print("page: ok: %s, %s: %d problems, %d keys" % (word, sample, len(told["problems"]), len(told["keys"])))
            finally:
                browser.close()


if __name__ == "__main__":
    main()
