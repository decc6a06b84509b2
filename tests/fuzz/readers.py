#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the readers under libFuzzer, one after the other.

  cmake --preset fuzz && cmake --build build/fuzz --target fuzz_readers
  tests/fuzz/readers.py PROGRAM FUZZER FOLDER [--seconds 60] [--jobs 2] [READER ...]

PROGRAM is the host, which makes the files to begin with, FUZZER the built fuzz_readers, FOLDER a
place for the inputs that were found (kept from call to call) and for findings. What a finding is
about goes into tests/corpus. Ends with 1 when there is one.
"""

import argparse
import concurrent.futures
import os
import re
import subprocess
import sys

import seeds

HERE = os.path.dirname(os.path.abspath(__file__))
CORPUS = os.path.join(HERE, "..", "corpus")
SUPPRESSED = os.path.join(HERE, "lsan.supp")


def fuzz(options, reader):
    """A line of the table, and what was found."""
    inputs = "%s/inputs/%s" % (options.folder, reader)
    findings = "%s/findings/%s/" % (options.folder, reader)
    for place in (inputs, findings):
        os.makedirs(place, exist_ok=True)
    begin = [place for place in ("%s/seeds/%s" % (options.folder, reader),
                                 "%s/%s" % (CORPUS, reader)) if os.path.isdir(place)]
    environment = dict(os.environ, TESSERA_FUZZ_READER=reader, QT_LOGGING_RULES="*=false",
                       ASAN_OPTIONS="detect_leaks=1:allocator_may_return_null=1",
                       LSAN_OPTIONS="print_suppressions=0:suppressions=" + SUPPRESSED,
                       LC_ALL="C.UTF-8")
    done = subprocess.run(
        [options.fuzzer, "-max_total_time=%d" % options.seconds, "-max_len=16384", "-timeout=20",
         "-rss_limit_mb=3000", "-print_final_stats=1", "-artifact_prefix=" + findings, inputs]
        + begin, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False)
    said = done.stderr.decode(errors="replace")
    covered = re.findall(r" cov: (\d+) ", said)
    runs = re.findall(r"number_of_executed_units: (\d+)", said)
    line = "| %s | %s | %s | %d | %s |" % (
        reader, runs[-1] if runs else "?", covered[-1] if covered else "?",
        len(os.listdir(inputs)), "none" if done.returncode == 0 else "yes")
    return done.returncode, line, said[-5000:]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    for name in ("program", "fuzzer", "folder"):
        parser.add_argument(name, type=os.path.abspath)
    parser.add_argument("readers", nargs="*")
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("--jobs", type=int, default=2)
    options = parser.parse_intermixed_args()
    seeds.put_seeds(options.program, options.folder)
    readers = options.readers or subprocess.run(
        [options.fuzzer], env={name: value for name, value in os.environ.items()
                               if name != "TESSERA_FUZZ_READER"},
        stdout=subprocess.PIPE, check=True).stdout.decode().split()
    print("| reader | executions | edges covered | inputs kept | finding |\n|---|---|---|---|---|",
          flush=True)
    all_well = True
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        for status, line, said in pool.map(lambda reader: fuzz(options, reader), readers):
            print(line, flush=True)
            if status != 0:
                all_well = False
                print(said, flush=True)
    spent = os.times()
    print("%.0f minutes of a processor" % ((spent.children_user + spent.children_system) / 60))
    return 0 if all_well else 1


if __name__ == "__main__":
    sys.exit(main())
