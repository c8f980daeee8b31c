"""Runs the snippets of docs/python.md unchanged."""

import inspect

import snippets

PAGE = snippets.read("python.md")


def test_the_snippets_with_gio_run(session_instrument):
    blocks = snippets.fenced(snippets.section(PAGE, "With Gio"), "python")
    assert len(blocks) == 5
    done = session_instrument.run("/usr/bin/python3", "-", input="\n".join(blocks))
    assert (done.stdout, done.stderr) == ("", "")
    assert session_instrument["Users"].call("getUser") == "user2"
    session_instrument["Users"].call("setUser", "user1")


def test_the_tests_of_the_page_pass(instrument):
    blocks = snippets.fenced(snippets.section(PAGE, "With pytest, in virtual instruments"), "python")
    names = {}
    exec("\n".join(blocks), names)
    tests = [value for name, value in names.items() if name.startswith("test_")]
    assert len(tests) == 3
    for test in tests:
        assert list(inspect.signature(test).parameters) == ["instrument"]
        test(instrument)
