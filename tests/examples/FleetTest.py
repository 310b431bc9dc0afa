#!/usr/bin/env python3
"""Runs examples/fleet/fleet.py.

    FleetTest.py SCRIPT DAEMON

The status is 77 if etcd is not installed.
"""

import glob
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

SCRIPT, DAEMON = sys.argv[1:3]
EXPECTED = """\
etcd: three nodes are ready
web-1: ready
web-2: ready
web-3: ready
$ etcdctl put canary/web/log.level trace
web-1: log.level = trace
$ etcdctl put fleet/web/log.level debug
web-2: log.level = debug
web-3: log.level = debug
$ etcdctl del canary/web/log.level
web-1: log.level = debug
etcd: one node was killed
$ etcdctl put fleet/web/log.level info
web-1: log.level = info
web-2: log.level = info
web-3: log.level = info
"""


def programs_of(folder):
    """-> the running programs whose environment names the folder"""
    lines = []
    for path in glob.glob("/proc/[0-9]*/environ"):
        try:
            with open(path, "rb") as file:
                if folder.encode() in file.read():
                    lines.append(path)
        except OSError:
            pass  # it has ended, or is not ours
    return lines


class Fleet(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        # The fleet's folder is in this one; everything that it starts has it in the environment.
        self.environment = {**os.environ, "TMPDIR": self.folder}

    def start(self):
        script = subprocess.Popen(
            [sys.executable, "-B", SCRIPT, DAEMON],
            env=self.environment,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
            text=True,
        )
        self.addCleanup(script.wait)
        self.addCleanup(script.kill)
        return script

    def assert_nothing_is_left(self):
        self.assertEqual([], os.listdir(self.folder))
        self.assertEqual([], programs_of(self.folder))

    def test_shows_changes_arrive_at_all_daemons(self):
        script = self.start()
        output, errors = script.communicate(timeout=280)
        self.assertEqual((0, EXPECTED, ""), (script.returncode, output, errors))
        self.assert_nothing_is_left()

    def test_leaves_nothing_after_a_signal(self):
        for number, status in ((signal.SIGINT, 130), (signal.SIGTERM, 143)):
            script = self.start()
            self.assertEqual("etcd: three nodes are ready\n", script.stdout.readline())
            self.assertNotEqual([], os.listdir(self.folder))
            self.assertNotEqual([], programs_of(self.folder))
            script.send_signal(number)
            script.communicate(timeout=280)
            self.assertEqual(status, script.returncode)
            self.assert_nothing_is_left()


if __name__ == "__main__":
    if shutil.which("etcd") is None or shutil.which("etcdctl") is None:
        print("etcd is not installed")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
