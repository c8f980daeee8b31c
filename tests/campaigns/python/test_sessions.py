"""Runs the commands in the documents and compares their output."""

import shlex
import subprocess

import pytest
import snippets

# Runs until it is stopped.
ENDLESS = ("tail -f",)


@pytest.fixture
def shell(instrument, tmp_path):
    """Runs a line of a document in a directory where ./run is this instrument's command."""
    command = tmp_path / "run"
    words = [*instrument.command, '"$@"']
    command.write_text(f"#!/bin/sh\ncd {shlex.quote(str(snippets.TREE))} && exec {' '.join(words)}\n")
    command.chmod(0o755)

    def run(line):
        # The documents show what a terminal shows: stdout and stderr.
        return subprocess.run(line, shell=True, cwd=tmp_path, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL, text=True,
                              timeout=120).stdout

    return run


def check(shell, pairs):
    assert pairs
    for command, printed in pairs:
        if not any(word in command for word in ENDLESS):
            assert (command, shell(command)) == (command, printed)


def test_the_simulated_board(shell):
    check(shell, snippets.session(snippets.read("simulated-board.md")))


def test_the_air(shell):
    text = snippets.read("virtual-instrument.md")
    check(shell, snippets.session(snippets.section(text, "The air")))
