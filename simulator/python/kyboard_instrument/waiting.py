"""Waits for events, always with a deadline."""

import time

from gi.repository import GLib

LOOK_AGAIN_MS = 20


def deliver():
    """Delivers pending messages from the bus, without waiting for more."""
    context = GLib.MainContext.default()
    while context.pending():
        context.iteration(False)


def wait_until(condition, timeout, describe):
    """Waits until condition() is true, and returns its result.

    Delivers signals meanwhile. Raises TimeoutError after timeout seconds, with the text of
    describe().
    """
    context = GLib.MainContext.default()
    deadline = time.monotonic() + timeout
    # Wakes the loop for conditions without a signal.
    source = GLib.timeout_add(LOOK_AGAIN_MS, lambda: GLib.SOURCE_CONTINUE)
    try:
        while not (result := condition()):
            if time.monotonic() >= deadline:
                raise TimeoutError(f"not within {timeout} s: {describe()}")
            context.iteration(True)
        return result
    finally:
        GLib.source_remove(source)
