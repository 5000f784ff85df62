"""Packets, PIDs and the last PCR of every test stream, as tsreport of Debian's package tstools has them."""
import os
import re
import subprocess
import sys
import tempfile
import unittest

SOFTDEC, STREAMS, DECSTATS = sys.argv.pop(1), sys.argv.pop(1), sys.argv.pop(1)


def output(*command):
    return subprocess.run(command, capture_output=True, text=True, timeout=60, check=True).stdout


class OtherTools(unittest.TestCase):
    def test_tsreport(self):
        streams = sorted(name for name in os.listdir(STREAMS) if name.endswith(".ts"))
        self.assertEqual(len(streams), 4)
        for name in streams:
            path = os.path.join(STREAMS, name)
            packets = int(re.search(r"Read (\d+) TS packets", output("tsreport", path)).group(1))
            pcr = int(re.findall(r"PCR +(\d+) ", output("tsreport", "-timing", path))[-1])
            pids = re.findall(r"^Stream \d+: PID [0-9a-f]+ \((\d+)\)", output("tsreport", "-b", path), re.M)
            with self.subTest(name), tempfile.TemporaryDirectory() as directory:
                subprocess.run([SOFTDEC, path, "--records", directory], timeout=60, check=True)

                def field(key):
                    return output(DECSTATS, "show", directory, "--field", "tdemux." + key).split()[1]

                self.assertEqual(int(field("received_packets")), packets)
                self.assertEqual(int(field("pcr")), pcr // 300)
                self.assertEqual([field(f"sources[{i}].pid") for i in range(len(pids))], pids)


unittest.main(verbosity=2)
