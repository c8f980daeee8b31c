"""Fixtures for pytest: pytest_plugins = ["kyboard_instrument.plugin"] in conftest.py."""

import pytest

from .instrument import Instrument


@pytest.fixture
def instrument():
    """A new virtual instrument for each test."""
    with Instrument() as one:
        yield one


@pytest.fixture(scope="session")
def session_instrument():
    """One virtual instrument for all tests that use it; changes of one test affect the next."""
    with Instrument() as one:
        yield one


@pytest.hookimpl(hookwrapper=True)
def pytest_runtest_makereport(item):
    """Shows the daemon's log for a failed test."""
    report = (yield).get_result()
    if report.when != "call" or not report.failed:
        return
    for name, value in getattr(item, "funcargs", {}).items():
        if isinstance(value, Instrument):
            report.sections.append((f"the daemon's log, {name}", value.log))
