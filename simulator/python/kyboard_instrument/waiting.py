"""Waiting for events, always with a deadline."""

import time

from gi.repository import GLib

LOOK_AGAIN_MS = 20


def deliver():
    """Delivers what has come from the bus, without waiting for more."""
    context = GLib.MainContext.default()
    while context.pending():
        context.iteration(False)


def wait_until(condition, timeout, describe):
    """Waits until condition() holds, and returns what it returns.

    Meanwhile signals are delivered; after timeout seconds it raises TimeoutError with the text that
    describe() returns.
    """
    context = GLib.MainContext.default()
    deadline = time.monotonic() + timeout
    # Wakes the loop for conditions that no signal announces.
    source = GLib.timeout_add(LOOK_AGAIN_MS, lambda: GLib.SOURCE_CONTINUE)
    try:
        while not (result := condition()):
            if time.monotonic() >= deadline:
                raise TimeoutError(f"not within {timeout} s: {describe()}")
            context.iteration(True)
        return result
    finally:
        GLib.source_remove(source)
