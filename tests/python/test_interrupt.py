# SPDX-License-Identifier: GPL-3.0-or-later
"""Ctrl-C ends what takes long."""

import subprocess
import sys

import pytest

SCRIPT = """
import threading, os, signal, sys, time, numpy as np
import nodalis
main = threading.main_thread().ident
def is_computing():
    begun = time.process_time()
    while time.process_time() - begun < 0.5:
        if sys._current_frames()[main].f_code.co_name != FUNCTION:
            return False
        time.sleep(0.01)
    return True
def interrupt():
    while not is_computing():
        pass
    while not ended.is_set():
        os.kill(os.getpid(), signal.SIGINT)
        ended.wait(0.1)
def end(number, frame):
    signal.signal(signal.SIGINT, signal.SIG_IGN)  # once is enough
    raise KeyboardInterrupt
signal.signal(signal.SIGINT, end)
done, ended = [], threading.Event()
PREPARATION
thread = threading.Thread(target=interrupt)
try:
    thread.start()
    CALL
except KeyboardInterrupt:
    done.append(True)
    ended.set()
thread.join()
print("interrupted" if done else "not interrupted")
"""

TEST_OF_EDGES = """
design = np.column_stack([np.ones(40), np.arange(40) % 2])
data = np.random.default_rng(1).normal(size=(40, 4950))
"""
GRAPH = """
graph = np.random.default_rng(1).uniform(size=(4000, 4000)).astype(np.float32)
graph[graph < 0.9] = 0  # both halves: a fifth of all pairs
"""


@pytest.mark.parametrize(
    "function, preparation, call",
    [
        (
            "edgewise_glm",
            TEST_OF_EDGES,
            "nodalis.statistics.edgewise_glm(data, design, [0, 1], permutations=10**8)",
        ),
        ("local_efficiency", GRAPH, "nodalis.local_efficiency(graph)"),
    ],
)
def test_an_interrupt_ends_it(function, preparation, call):
    """It would run for minutes, or hours."""
    script = SCRIPT.replace("FUNCTION", repr(function)).replace("PREPARATION", preparation)
    said = subprocess.run(
        [sys.executable, "-c", script.replace("CALL", call)],
        capture_output=True,
        text=True,
        timeout=200,
    )
    assert said.stdout == "interrupted\n", said.stderr
