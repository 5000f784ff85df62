"""A server over decoders of a directory of its own, and clients of it."""
import collections
import contextlib
import ctypes
import http.client
import json
import os
import pathlib
import re
import select
import subprocess

from host import LiveTest, OwnHost

Answer = collections.namedtuple("Answer", "status headers body")

# Under a sanitizer everything takes longer.
PATIENCE = 60

FUNCTIONS = {"tdemux": "TDemux", "vframer": "VFramer", "vdecoder": "VideoDecoder", "audio": "AudioDecoder", "metadata": "MetadataDec",
             "buffering": "CBuffering", "clock-recovery": "ClockRecovery", "usage": "DecoderUsage"}


class Server:
    def __init__(self, process, url):
        self.process = process
        self.url = url
        self.port = int(re.search(r":(\d+)/", url)[1])

    def descriptors(self):
        return len(os.listdir("/proc/%d/fd" % self.process.pid))


class StillHost(OwnHost):
    """A live decoder whose records do not change, with one heartbeat that lasts for long."""

    def __init__(self, test, name, scenario="live-srt-1080i", heartbeat=3600000):
        super().__init__(name, test.live, heartbeat=heartbeat)
        folder = pathlib.Path(test.directory / ("records-" + name))
        folder.mkdir()
        test.run_tool("sample", scenario, str(folder))
        for component, function in FUNCTIONS.items():
            content = (folder / (component + ".rec")).read_bytes()
            # Records are aligned as their types ask.
            words = (ctypes.c_uint64 * (len(content) // 8 + 1)).from_buffer_copy(content.ljust(len(content) // 8 * 8 + 8, b"\0"))
            getattr(self.library, "STATS_PublishFor" + function)(self.publisher, words)
        self.beat()
        test.addCleanup(self.close)

    def beat(self):
        self.library.STATS_PublishHeartbeat(self.publisher)


class ServingTest(LiveTest):
    def kill(self, process):
        process.kill()
        process.wait()

    def state(self, server, name):
        return self.json(server, "/api/v1/decoders/" + name)["state"]

    def serve(self, *arguments, expected_error=""):
        """A server that listens."""
        arguments = arguments if "--listen" in arguments else ("--listen", "127.0.0.1:0", *arguments)
        process = self.start("serve", *arguments, stderr=subprocess.PIPE)
        self.assertTrue(select.select([process.stdout], [], [], PATIENCE)[0], "the server does not come up")
        url = process.stdout.readline().strip()
        if not url:
            self.fail(process.stderr.read())
        self.addCleanup(self.end, process, expected_error)
        return Server(process, url)

    def end(self, process, expected_error=""):
        """Every server has to end in order, and with nothing on standard error that is not expected."""
        process.terminate()
        self.assertEqual(process.wait(PATIENCE), 0)
        error = process.stderr.read()
        self.assertEqual(error.replace(expected_error, ""), "")

    def get(self, server, path, method="GET", host=None, source=None, headers=None, context=None):
        kind = http.client.HTTPSConnection if context else http.client.HTTPConnection
        more = {"context": context} if context else {}
        connection = kind("127.0.0.1", server.port, timeout=PATIENCE, source_address=(source, 0) if source else None, **more)
        with contextlib.closing(connection):
            connection.putrequest(method, path, skip_host=host is not None, skip_accept_encoding=True)
            for name, value in [*([("Host", host)] if host else []), *(headers or {}).items()]:
                connection.putheader(name, value)
            connection.endheaders()
            answer = connection.getresponse()
            body = answer.read()
            return Answer(answer.status, dict(answer.getheaders()), body)

    def json(self, server, path, status=200):
        answer = self.get(server, path)
        self.assertEqual(answer.status, status, answer.body)
        self.assertEqual(answer.headers["Content-Type"], "application/json")
        return json.loads(answer.body)

    def refusal(self, server, path, status, *parts, **options):
        """An answer that says in one line what is wrong."""
        answer = self.get(server, path, **options)
        self.assertEqual(answer.status, status, answer.body)
        error = json.loads(answer.body)
        self.assertEqual(list(error), ["error"])
        for part in parts:
            self.assertIn(part, error["error"])
        return answer
