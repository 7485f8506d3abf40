#!/usr/bin/env python3
"""Runs what the guides show, each guide in a fresh folder, and fails unless they show what is printed.

guides.py [--update] TOOL... GUIDES

TOOL starts the tool, GUIDES is the folder of the guides; --update writes what is printed into them. A block of "console"
is compared whole; in a block of "sh", commands of the tool must not be wrong use; a block of "cpp" must be part of an
example; a link must lead to a file.
"""

import difflib
import os
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

WRONG_USE = 2
ID = re.compile(r"\bid [0-9a-f]{32}\b")
IDS = ("9b1d4c0e7a2f48d5b6c3e1f09a8d7c52", "27c6f05ad19b4e83a4f2905e6b7d13c8", "e3a85f1b60c94d72b1d70c48f29a6e35")


def blocks(language):
    return re.compile(rf"(?<=```{language}\n).*?(?=```)", re.DOTALL)


def with_ids_of_guides(known):
    """They are drawn by lot: the first of a text gets the first of these, and so on."""
    return lambda drawn: known.setdefault(drawn[0], f"id {IDS[len(known)]}")


class Reader:
    """Somebody who types what a guide says, in a folder that holds the tool and the documentation."""

    def __init__(self, tool, guides, folder):
        self.folder = pathlib.Path(folder)
        self.exports = ""
        (self.folder / "docs").symlink_to(guides)
        (self.folder / "tqzel-logbook").write_text(f'#!/bin/sh\nexec {shlex.join(tool)} "$@"\n')
        (self.folder / "tqzel-logbook").chmod(0o755)

    def type(self, command):
        environment = {"PATH": f"{self.folder}:{os.environ['PATH']}", "HOME": str(self.folder)}
        shell = subprocess.run(["bash", "-c", self.exports + command], cwd=self.folder, env=environment, text=True,
                               stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        if shell.returncode == WRONG_USE:
            sys.exit(f"wrong use: {command}\n{shell.stdout}")
        if command.startswith("export "):
            self.exports += command + "\n"
        return shell.stdout

    def session(self, block):
        commands = re.findall(r"^\$ .*", block[0], re.MULTILINE)
        return "".join(f"{command}\n{self.type(command[2:])}" for command in commands)


def as_printed(text, reader):
    for block in blocks("sh").findall(text):
        for command in re.findall(r"^tqzel-logbook.*", block, re.MULTILINE):
            reader.type("timeout 2 " + command)  # to follow has no end
    printed = blocks("console").sub(reader.session, text)
    return ID.sub(with_ids_of_guides({}), printed)


def faults(guide, text, examples):
    yield from (f"{guide}: no example holds\n{block}" for block in blocks("cpp").findall(text) if block not in examples)
    links = re.findall(r"\]\(([^):#]+)", text)
    yield from (f"{guide}: {link} is not there" for link in links if not (guide.parent / link).exists())


update = sys.argv[1] == "--update"
*tool, folder = sys.argv[2:] if update else sys.argv[1:]
tool = [os.path.abspath(word) if os.path.exists(word) else word for word in tool]  # it starts elsewhere
guides = pathlib.Path(folder).resolve()
examples = "".join(path.read_text() for path in guides.parent.glob("examples/*/*.cpp"))
found = []
for guide in sorted(guides.glob("*.md")):
    text = guide.read_text()
    with tempfile.TemporaryDirectory() as fresh:
        printed = as_printed(text, Reader(tool, guides, fresh))
    if update:
        guide.write_text(printed)
    else:
        found += difflib.unified_diff(text.splitlines(), printed.splitlines(), str(guide), "what is printed", lineterm="")
    found += faults(guide, printed, examples)
sys.exit("\n".join(found) or None)
