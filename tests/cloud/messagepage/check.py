#!/usr/bin/env python3
"""Shows hostile messages of the service in headless Chromium, each in the page's template as the system's HTML
dialog would, and fails when anything of one comes to life.  check.py [PICTURE.png] takes a picture of a harmless
one instead.  Ends with 77 where there is no Chromium."""
import html
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
TEMPLATE = (HERE / "../../../cloud/res/message_template.htm").read_text()
ALLOWED = {"div", "ol", "li", "p", "b", "i", "u", "em", "strong", "span", "br", "a", "ul"}
CLASSES = {"header", "attn", "hilite", "stop", "cont"}
HARMLESS = """<div class="header" align="center">FarreachVeltrix returned the following messages:</div><ol START=1>\
<li class="stop">Please renew your agreement.<br><a href="http://practice.example/renew">Renew now</a></li>
<li class="cont">The service is not available on Sunday from 2 to 3.<br><a href="http://practice.example/news">News</a>\
</li></ol><p class="attn"><b>Item <span class="hilite">#1</span> must be completed before synchronization with \
FarreachVeltrix can proceed!</b></p>"""

# Every message in a frame of its own; what the frames hold then is written into the page as JSON.
DRIVER = """<!DOCTYPE html><body><pre id="result"></pre><script>
var pages = %s;
var frames = pages.map(function (text) {
  var frame = document.createElement("iframe");
  frame.srcdoc = text;
  document.body.appendChild(frame);
  return frame;
});
setTimeout(function () {
  document.getElementById("result").textContent = JSON.stringify(frames.map(function (frame) {
    var inside = frame.contentDocument;
    if (!inside || !inside.getElementById("page")) { return null; }
    return { title: inside.title, parts: inside.body.children.length,
      elements: Array.from(inside.getElementById("page").querySelectorAll("*")).map(function (element) {
        return [element.localName, Array.from(element.attributes).map(function (a) { return [a.name, a.value]; })];
      }) };
  }));
}, 2000);
</script></body>"""


def in_script(value):
    return json.dumps(value).replace("<", "\\u003c")


def page(text):
    return TEMPLATE.replace("<script>", "<script>window.dialogArguments = %s;</script><script>" % in_script(text), 1)


def browse(folder, content, *options):
    (folder / "page.html").write_text(content)
    return subprocess.run(
        ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--virtual-time-budget=5000",
         f"--user-data-dir={folder}/profile", *options, f"file://{folder}/page.html"],
        check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=100).stdout.decode()


def attribute_is_harmless(element, name, value):
    if name == "class":
        return value in CLASSES
    if element == "a":
        return (name == "href" and re.fullmatch(r"https?://[^\s\\]+", value, re.IGNORECASE) is not None
                or (name, value) in (("target", "_blank"), ("rel", "noopener noreferrer")))
    return element == "div" and (name, value) == ("style", "text-align: center;")


def faults(shown):
    if shown is None:
        return ["the page was left"]
    found = [] if shown["title"] == "FarreachVeltrix" and shown["parts"] == 4 else ["title or page changed"]
    found += [f"<{name}>" for name, _ in shown["elements"] if name not in ALLOWED]
    found += [f"{name} {attribute}={value}" for name, attributes in shown["elements"]
              for attribute, value in attributes if not attribute_is_harmless(name, attribute, value)]
    if ["li", [["class", "cont"]]] not in shown["elements"]:
        found.append("the item is gone")
    return found


def check(folder):
    messages = (HERE / "hostile.txt").read_text().splitlines()
    items = ['<ol START=1><li class="cont">%s<br><a href="http://%s">%s</a></li></ol>' % (m, m, m) for m in messages]
    dom = browse(folder, DRIVER % in_script([page(item) for item in items]), "--dump-dom")
    shown = json.loads(html.unescape(re.search(r'<pre id="result">(.*?)</pre>', dom, re.DOTALL).group(1)))
    bad = [(message, faults(one)) for message, one in zip(messages, shown, strict=True) if faults(one)]
    for message, found in bad:
        print(f"came to life: {message}\n  {found}")
    if not bad:
        print(f"{len(messages)} messages were harmless")
    return 1 if bad else 0


def main():
    if not shutil.which("chromium"):
        print("chromium is not installed: not checked")
        return 77
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        if len(sys.argv) < 2:
            return check(folder)
        browse(folder, page(HARMLESS), "--window-size=550,380", f"--screenshot={pathlib.Path(sys.argv[1]).resolve()}")
        return 0


sys.exit(main())
