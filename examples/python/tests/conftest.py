"""Provides the fixtures with virtual instruments to the tests in this directory."""

pytest_plugins = ["kyboard_instrument.plugin"]
