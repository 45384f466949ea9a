# SPDX-License-Identifier: MIT
"""Waits that end on a condition."""

import time

LONGEST_WAIT = 60  # seconds


def wait_until(condition, awaited):
    """Returns the first true result of the condition. Fails after LONGEST_WAIT."""
    deadline = time.monotonic() + LONGEST_WAIT
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise AssertionError(f"timeout waiting for {awaited}")
        time.sleep(0.02)
