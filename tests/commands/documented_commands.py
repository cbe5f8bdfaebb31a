#!/usr/bin/env python3
"""Every command that the documents give is one that works: it is tried as far as that is quick.

A preset exists; a target can be planned; a filter matches tests; a script is there, is executable and parses; what
only lists is run. What the long commands do is the business of the tests, the tour and the package's test.
Argument: the build folder whose targets and tests are looked at.
"""
import json
import re
import shlex
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
BUILD = Path(sys.argv[1])
PRESETS = {preset["name"] for preset in json.loads((ROOT / "CMakePresets.json").read_text())["configurePresets"]}
STARTS = ("./run", "./test", "tools/", "bench/", "cmake ", "ctest ", "build/", "mkdir ")


def commands(document):
    """Lines of code blocks and pieces of code in the text that begin as commands do, without their comments."""
    text = document.read_text()
    blocks = re.findall(r"^```\n(.*?)^```", text, re.DOTALL | re.MULTILINE) + re.findall(r"^    .*", text, re.MULTILINE)
    found = [line.strip() for block in blocks for line in block.splitlines()]
    found += re.findall(r"`([^`\n]+ [^`\n]+)`", text)
    return [re.sub(r"\s+#.*", "", line) for line in found if line.startswith(STARTS)]


def run(*command):
    done = subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False)
    return done.returncode == 0, done.stdout + done.stderr


def problem(command):
    """What is wrong with a command; None when nothing is."""
    words = shlex.split(command)
    preset = words[words.index("--preset") + 1] if "--preset" in words else None
    if preset and preset not in PRESETS:
        return f"there is no preset {preset}"
    here = preset == BUILD.name or str(BUILD).endswith(words[2] if words[:2] == ["cmake", "--build"] else "?")
    if words[0] == "cmake" and "--target" in words and here:
        ok, output = run("ninja", "-C", str(BUILD), "-n", words[words.index("--target") + 1])
        return None if ok else output
    if words[0] == "ctest" and here:
        ok, output = run("ctest", "--test-dir", str(BUILD), "-N", *words[words.index(preset) + 1:])
        return None if ok and "Total Tests: 0" not in output else "no test matches"
    if words[0].startswith(("./", "tools/", "bench/")):
        script = ROOT / words[0]
        if not script.stat().st_mode & 0o111:
            return "it cannot be executed"
        if words[0] == "tools/plant":
            ok, output = run(*words, "--list")
            return None if ok and output else output or "it plants nothing"
        if script.read_bytes().startswith(b"#!/usr/bin/env bash"):
            ok, output = run("bash", "-n", str(script))
            return None if ok else output
    return None


def main():
    documents = [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md")), *sorted(ROOT.glob("*/README.md"))]
    tried, wrong = 0, 0
    for document in documents:
        for command in commands(document):
            tried += 1
            what = problem(command)
            if what:
                wrong += 1
                print(f"{document.relative_to(ROOT)}: {command}\n    {what}")
    print(f"{tried} commands tried")
    return 1 if wrong or tried < 10 else 0


if __name__ == "__main__":
    sys.exit(main())
