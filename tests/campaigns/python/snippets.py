"""The snippets of the documents."""

import pathlib
import re

TREE = pathlib.Path(__file__).resolve().parents[3]


def read(name):
    return (TREE / "docs" / name).read_text()


def section(text, heading):
    """Returns the text below a heading, up to the next one of its level or above."""
    start = re.search(rf"^(#+) {re.escape(heading)}\n", text, re.M)
    rest = text[start.end():]
    end = re.search(rf"^#{{1,{len(start[1])}}} ", rest, re.M)
    return rest[:end.start()] if end else rest


def fenced(text, language):
    return re.findall(rf"^```{language}\n(.*?)^```$", text, re.M | re.S)


def session(text):
    """Returns pairs of a command and its output, from the indented blocks that begin with "$ "."""
    pairs = []
    for line in text.split("\n"):
        if line.startswith("    $ "):
            pairs.append([line[6:], ""])
        elif line.startswith("    ") and pairs and pairs[-1] is not None:
            pairs[-1][1] += line[4:] + "\n"
        elif pairs and pairs[-1] is not None:
            pairs.append(None)
    return [pair for pair in pairs if pair]
