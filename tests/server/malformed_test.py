"""Requests that are none, or nearly: decstats serve answers or closes, goes on, and keeps nothing of them. Argument: how many."""
import os
import random
import socket
import sys
import time
import unittest

from serving import PATIENCE, ServingTest

COUNT = 3000
SEEDS = (
    b"GET /metrics HTTP/1.1\r\nHost: localhost\r\nAccept: application/openmetrics-text;version=1.0.0;q=0.5,*/*;q=0.1\r\nAccept-Encoding: gzip\r\n\r\n",
    b"GET /api/v1/decoders HTTP/1.1\r\nHost: localhost:80\r\nConnection: keep-alive\r\n\r\n",
    b"GET /api/v1/decoders/still?raw HTTP/1.1\r\nHost: [::1]:80\r\nAuthorization: Bearer 0123456789abcdef\r\n\r\n",
    b"GET /api/v1/decoders/still/report?level=debug&component=clock-recovery HTTP/1.0\r\nHost: localhost\r\n\r\n",
    b"GET /api/v1/decoders/still/history?field=tdemux.state&field=tdemux.sources[0].pid&from=%d HTTP/1.1\r\nHost: localhost\r\n\r\n" % (time.time() - 60),
    b"HEAD /api/v1/fields HTTP/1.1\r\nHost: localhost\r\nIf-None-Match: W/\"1\"\r\n\r\n",
    b"POST /metrics HTTP/1.1\r\nHost: localhost\r\nContent-Length: 5\r\nExpect: 100-continue\r\n\r\nhello",
    b"GET / HTTP/1.1\r\nHost: localhost\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n\r\n",
)
PIECES = (b"\r\n", b"\n", b"\r", b"\0", b" ", b":", b"%", b"%00", b"%zz", b"%2e%2e%2f", b"?", b"&", b"=", b";", b"/", b"..", b"\xff", b"HTTP/1.1", b"HTTP/9.9",
          b"Host: localhost\r\n", b"Content-Length: -1\r\n", b"Content-Length: 18446744073709551616\r\n", b"Transfer-Encoding: chunked\r\n",
          b"Upgrade: websocket\r\n", b"Cookie: a=b; c\r\n", b"ffffffffffffffff\r\n", b"x" * 5000, b"field=", b"q=", b" folded\r\n", b"[", b"]", b"\x16\x03\x01")


def mutated(generator):
    """A request with some bytes changed, cut out, doubled or put in; now and then nothing but chance."""
    if generator.random() < 0.02:
        return generator.randbytes(generator.randrange(1, 400))
    request = bytearray(generator.choice(SEEDS))
    for _ in range(generator.randrange(1, 6)):
        at = generator.randrange(len(request) + 1)
        kind = generator.randrange(5)
        if kind == 0 and request:
            request[at % len(request)] = generator.randrange(256)
        elif kind == 1:
            request[at:at] = generator.choice(PIECES)
        elif kind == 2:
            del request[at:at + generator.randrange(1, 30)]
        elif kind == 3:
            request[at:at] = request[at:at + generator.randrange(1, 60)]
        else:
            other = generator.choice(SEEDS)
            request[at:] = other[generator.randrange(len(other)):]
    return bytes(request)


class Malformed(ServingTest):
    def send(self, server, request, generator):
        """On a connection of its own. Half of the clients leave without an answer. @return its first bytes"""
        answer = b""
        with socket.create_connection(("127.0.0.1", server.port), PATIENCE) as connection:
            connection.settimeout(PATIENCE)
            try:
                connection.sendall(request)
                if generator.random() < 0.5:
                    connection.shutdown(socket.SHUT_WR)
                    while part := connection.recv(65536):
                        answer = answer or part[:12]
            except ConnectionError:
                pass
        return answer

    def test_malformed_requests(self):
        self.simulate("live-srt-1080i", "still")
        server = self.serve()
        self.assertEqual(self.get(server, "/metrics").status, 200)
        self.json(server, "/api/v1/fields")
        before = server.descriptors()
        seed = int.from_bytes(os.urandom(4), "little")
        generator = random.Random(seed)
        statuses = set()
        for i in range(COUNT):
            try:
                statuses.add(self.send(server, mutated(generator), generator))
            except OSError as error:
                self.fail("seed %d, request %d: %s" % (seed, i, error))
            self.assertIsNone(server.process.poll(), "seed %d, request %d ended it" % (seed, i))
        # They have come to every part: answers, and each kind of refusal.
        for status in (200, 400, 403, 404, 405):
            self.assertIn(b"HTTP/1.1 %d" % status, statuses, "seed %d" % seed)
        # Those that left are gone when their connections are.
        self.until(lambda: server.descriptors() <= before, 60)
        self.assertEqual(self.get(server, "/metrics").status, 200)
        self.assertEqual(self.json(server, "/api/v1/decoders/still")["state"], "live")


if __name__ == "__main__":
    COUNT = int(sys.argv.pop(1)) if len(sys.argv) > 1 else COUNT
    unittest.main()
