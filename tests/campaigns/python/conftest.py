"""Fixtures with virtual instruments for the tests in this directory."""

pytest_plugins = ["kyboard_instrument.plugin"]
