#!/usr/bin/env python3
"""Measures the library beside its floor and its peers, and prints a table.

    compare.py BUILD [--rows PATTERN] [--rounds N] [--no-peers] [--results FILE]
    compare.py BUILD [--rows PATTERN] --servers     only tells which servers the rows need

BUILD is the folder of a build with the target `benchmarks`. PATTERN, a regular expression, chooses
rows by what is in front of their line. Rows of the real server need one, named by MIRQOS_S3_ENDPOINT
and its kin, as the tests have it; the server in between is started here.

Each measurement is a process of its own. In each round all that a row compares run by turns, in the
other order than in the round before; the peers, which need ten times as long, take part in one.
"""

import argparse
import dataclasses
import json
import os
import re
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile

import null_server
import peers
import rows
from service import Service

OURS = ("floor", "copies", "library")
COLUMNS = (*OURS, *(peer.name for peer in peers.PEERS))
ROUNDS = {"null": 5, "real": 3}  # as many as a run of some ten minutes allows
LIMIT = 300  # seconds for one run


class Files:
    """What is stored, as files: a large one, and folders with as many small ones as peers get."""

    def __init__(self, directory, bench):
        self.directory = directory
        self.bench = bench
        os.makedirs(directory)

    def made(self, name, size, count):
        path = os.path.join(self.directory, name)
        if not os.path.exists(path):
            with open(path, "wb") as file:
                subprocess.run([self.bench.program, "content", str(size), str(count)], stdout=file,
                               check=True)
        return path

    def bulk(self, row):
        return self.made(f"bulk-{row.count}", row.bytes, row.count)

    def object(self, row):
        return self.made(f"object-{row.bytes}", row.bytes, 1)

    def folder(self, row):
        path = os.path.join(self.directory, f"folder-{row.bytes}-{row.peer_count}")
        if not os.path.isdir(path):
            os.makedirs(path)
            for number in range(row.peer_count):
                os.link(self.object(row), os.path.join(path, f"{number:06}"))
        return path


class Bench:
    def __init__(self, build):
        self.program = os.path.join(build, "bench", "bench.s3")

    def run(self, arguments, environment):
        """One measurement: seconds and peak memory."""
        done = subprocess.run([self.program, *map(str, arguments)], env=environment, timeout=LIMIT,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False, text=True)
        if done.returncode != 0:
            raise RuntimeError(f"{' '.join(map(str, arguments))}: {done.stderr or done.stdout}")
        return json.loads(done.stdout.splitlines()[-1])

    def run_ours(self, who, row, service, name=None):
        return self.run([who, name or row.name, row.threads, row.bytes, row.count, service.bucket],
                        dict(os.environ, **service.environment()))

    def run_command(self, command, environment):
        return self.run(["command", *command], environment)


def turns(row, service, bench, all_peers, rounds):
    """All measurements of a row: a list for each that takes part."""
    measured = {who: [] for who in OURS}
    able = {peer: command for peer in all_peers
            if (command := peer.command(row)) is not None}
    for number in range(rounds):
        for who in OURS if number % 2 == 0 else reversed(OURS):
            measured[who].append(bench.run_ours(who, row, service))
        if number == rounds // 2:
            for peer, command in able.items():
                peer.clear()
                try:
                    measured[peer.name] = [peer.run(bench, command)]
                except RuntimeError as failure:  # the others have their figures all the same
                    print(failure, file=sys.stderr)
                peer.clear()
    return measured


def summary(row, measured):
    """Medians, and ratios of runs that followed each other."""
    result = {"id": row.id, "title": row.title, "server": row.server, "target": row.target,
              "who": {}}
    for who, runs in measured.items():
        seconds = statistics.median(run["seconds"] for run in runs)
        rate, unit = row.rate(seconds, peer=who not in OURS)
        result["unit"] = unit
        result["who"][who] = {"rate": rate, "peak_mib": max(run["peak_kib"] for run in runs) / 1024}
    for floor in ("floor", "copies"):
        result[f"to_{floor}"] = statistics.median(
            ours["seconds"] / other["seconds"]
            for ours, other in zip(measured["library"], measured[floor]))
    return result


def print_row(result):
    line = f"{result['title']:34}"
    for who in COLUMNS:
        figures = result["who"].get(who)
        line += f"{figures['rate']:8.0f}{figures['peak_mib']:5.0f}" if figures else f"{'-':>8}{'':5}"
        if who == "library":
            line += f"{result['to_floor']:7.2f}{result['to_copies']:7.2f}"
    print(line, result["unit"], flush=True)


class Results:
    """What was found so far: printed, and in a file if one is wanted."""

    def __init__(self, path):
        self.path = path
        self.rows = []

    def add(self, row):
        self.rows.append(row)
        print_row(row)
        if self.path:
            with open(self.path, "w") as file:
                json.dump(self.rows, file, indent=1)


def print_heading(server):
    name = {"null": "nginx", "real": "the RADOS Gateway"}[server]
    print(f"\nagainst {name}: of each, what went through in a second, and its most memory")
    line = f"{'':34}"
    for who in COLUMNS:
        line += f"{who:>8}{'MiB':>5}"
        if who == "library":
            line += f"{'/floor':>7}{'/copies':>7}"
    print(line)


def measure(service, chosen, all_peers, bench, rounds, results):
    """All chosen rows of one server."""
    print_heading(chosen[0].server)
    for row in chosen:
        results.add(summary(row, turns(row, service, bench, all_peers,
                                       rounds or ROUNDS[row.server])))


def prepare(service, chosen, bench, aws):
    """Makes a bucket of the real server, with everything in it that the rows read."""
    aws.run(bench, aws.s3(chosen[0], "mb", aws.bucket))
    for row in chosen:
        if row.name == "read":
            bench.run_ours("floor", row, service, "upload")
        elif row.name == "get":
            bench.run_ours("floor", row, service, "put")
            aws.run(bench, aws.put(row))
        elif row.name == "list":
            bench.run_ours("floor", dataclasses.replace(row, threads=8), service, "store-keys")


def print_starts(all_peers, bench):
    """What it takes each peer to start and do nothing."""
    print()
    for peer in all_peers:
        # s3 calls it a failure to be asked for help
        nothing = ["sh", "-c", '"$@" >/dev/null 2>&1 || :', "sh", *peer.start]
        seconds = statistics.median(peer.run(bench, nothing)["seconds"] for _ in range(3))
        print(f"{peer.name} takes {seconds * 1000:.0f} ms to start and do nothing")


def real_service():
    try:
        return Service(os.environ["MIRQOS_S3_ENDPOINT"], f"bench-{os.getpid()}",
                       os.environ["MIRQOS_S3_ACCESS_KEY"], os.environ["MIRQOS_S3_SECRET_KEY"])
    except KeyError as missing:
        sys.exit(f"compare.py: no real server: {missing} is not set")


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("build")
    parser.add_argument("--rows", default="")
    parser.add_argument("--rounds", type=int)
    parser.add_argument("--no-peers", action="store_true")
    parser.add_argument("--results")
    parser.add_argument("--servers", action="store_true")
    options = parser.parse_args()
    chosen = {server: [row for row in rows.ROWS
                       if row.server == server and re.search(options.rows, row.id)]
              for server in ("null", "real")}
    if not any(chosen.values()):
        sys.exit("compare.py: there is no such row; they are\n" +
                 "\n".join(row.id for row in rows.ROWS))
    if options.servers:
        print("\n".join(server for server in chosen if chosen[server]))
        return

    # whoever ends this gets it cleared up as well
    signal.signal(signal.SIGTERM, lambda number, _frame: sys.exit(128 + number))
    directory = tempfile.mkdtemp(prefix="mirqos-bench-", dir="/dev/shm")
    null = None
    try:
        bench = Bench(os.path.abspath(options.build))
        files = Files(os.path.join(directory, "files"), bench)

        def peers_of(service, server):
            return [kind(os.path.join(directory, f"peers-{server}"), service, files)
                    for kind in peers.PEERS]

        results = Results(options.results)
        if chosen["null"]:
            null = null_server.NullServer(os.path.join(directory, "null"), files, chosen["null"])
            all_peers = [] if options.no_peers else peers_of(null.service, "null")
            measure(null.service, chosen["null"], all_peers, bench, options.rounds, results)
            null.close()
        if chosen["real"]:
            service = real_service()
            all_peers = peers_of(service, "real")
            prepare(service, chosen["real"], bench,
                    next(peer for peer in all_peers if isinstance(peer, peers.Aws)))
            measure(service, chosen["real"], [] if options.no_peers else all_peers, bench,
                    options.rounds, results)
        if not options.no_peers:
            print_starts(all_peers, bench)
    finally:
        if null is not None:
            null.close()
        shutil.rmtree(directory)


if __name__ == "__main__":
    main()
