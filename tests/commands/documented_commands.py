#!/usr/bin/env python3
"""Every command that the documents give is one that works: it is tried as far as that is quick.

A preset exists; a target or a program can be planned; a filter matches tests; a script is there, is executable, parses and
knows its options; what only lists is run; the service's own commands are carried out in a folder of their own. What the
long commands do is the business of the tests, the tour and the package's test.
Argument: the build folder whose targets, programs and tests are looked at.
"""
import json
import re
import shlex
import subprocess
import sys
import tempfile
from itertools import takewhile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
BUILD = Path(sys.argv[1])
PRESETS = {preset["name"] for preset in json.loads((ROOT / "CMakePresets.json").read_text())["configurePresets"]}
STARTS = ("./run", "./test", "tools/", "bench/", "service/", "cmake ", "ctest ", "build/", "velservice ")
SERVICE = BUILD / "bin" / "velservice"


def commands(document):
    """Lines of code blocks and pieces of code in the text that begin as commands do, without their comments."""
    text = document.read_text()
    blocks = re.findall(r"^```\n(.*?)^```", text, re.DOTALL | re.MULTILINE) + re.findall(r"^    .*", text, re.MULTILINE)
    found = [line.strip() for block in blocks for line in block.splitlines()]
    prose = re.sub(r"^(```\n.*?^```|    [^\n]*)", "", text, flags=re.DOTALL | re.MULTILINE)
    found += re.findall(r"`([^`]+)`", prose)
    return [re.sub(r"\s+#.*", "", line) for line in found if line.startswith(STARTS) and not is_file(line.split()[0])]


def is_file(word):
    """A folder, a source or a product that the text only names."""
    in_build = word.startswith("build/") and "/bin/" not in word
    return "/" in word and (in_build or (ROOT / word).is_dir() or bool(Path(word).suffix))


def run(*command):
    done = subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=False)
    return done.returncode == 0, done.stdout + done.stderr


def plan(target):
    ok, output = run("ninja", "-C", str(BUILD), "-t", "query", target)
    return None if ok else output


def serve(words, folder):
    """What is wrong with a command of the service, carried out on the data of this folder."""
    words = [str(SERVICE), *words[1:]]
    words[words.index("--data") + 1] = folder
    if words[1] != "serve":
        done = subprocess.run(words, input="a long password\n", capture_output=True, text=True, check=False)
        return None if done.returncode == 0 else done.stderr
    if "--port" in words:
        words[words.index("--port") + 1] = "0"
    with subprocess.Popen(words, stdout=subprocess.PIPE, text=True) as service:
        said = service.stdout.readline()
        service.terminate()
    return None if said.startswith("READY port=") else f"it says {said!r}"


def script_problem(words):
    script = ROOT / words[0]
    if not script.stat().st_mode & 0o111:
        return "it cannot be executed"
    if words[0] == "tools/plant" and words[1:]:
        ok, output = run(*words, "--list")
        return None if ok and output else output or "it plants nothing"
    if not script.read_bytes().startswith(b"#!/usr/bin/env bash"):
        return None
    # What ./run does not know goes to the host.
    knowing = [script, *(ROOT / "host").glob("*.cpp")] if words[0] == "./run" else [script]
    for option in takewhile(lambda word: word.startswith("-"), words[1:]):
        if option.startswith("--") and not any(option[2:] in source.read_text() for source in knowing):
            return f"{option} is unknown"
    ok, output = run("bash", "-n", str(script))
    return None if ok else output


def problem(command, folder):
    """What is wrong with a command; None when nothing is, or when it belongs to another build."""
    words = shlex.split(command)
    preset = words[words.index("--preset") + 1] if "--preset" in words else None
    built = re.match(r"build/([\w-]+)", words[2] if words[:2] == ["cmake", "--build"] else words[0])
    preset = preset or (built and built.group(1))
    if preset and preset not in PRESETS:
        return f"there is no preset {preset}"
    # The presets of one system have the same targets.
    here = preset and preset.split("-")[0] == BUILD.name.split("-")[0]
    if words[0] == "cmake":
        return plan(words[words.index("--target") + 1]) if here and "--target" in words else None
    if words[0].endswith("velservice"):
        return serve(words, folder) if SERVICE.exists() else None
    if words[0].startswith("build/"):
        return plan(words[0].split("/", 2)[2]) if here else None
    if words[0] == "ctest":
        if preset != BUILD.name:
            return None
        ok, output = run("ctest", "--test-dir", str(BUILD), "-N", *words[words.index(preset) + 1:])
        return None if ok and "Total Tests: 0" not in output else "no test matches"
    return script_problem(words)


def main():
    documents = [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md")), *sorted(ROOT.glob("*/README.md"))]
    tried, wrong = 0, 0
    with tempfile.TemporaryDirectory() as folder:
        for document in documents:
            for command in commands(document):
                tried += 1
                what = problem(command, folder)
                if what:
                    wrong += 1
                    print(f"{document.relative_to(ROOT)}: {command}\n    {what}")
    print(f"{tried} commands tried")
    return 1 if wrong or tried < 10 else 0


if __name__ == "__main__":
    sys.exit(main())
