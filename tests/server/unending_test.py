"""Clients that never come to an end: the whole time of a request is bounded, whatever trickles."""
import socket
import time
import unittest

from serving import PATIENCE, ServingTest

LONGEST = 30  # [s] a request may take, after which it may take a moment to be noticed
SOON = 5


class Unending(ServingTest):
    def test_a_header_that_trickles_and_a_reader_who_does(self):
        server = self.serve()
        before = server.descriptors()
        sender = socket.create_connection(("127.0.0.1", server.port), PATIENCE)
        sender.sendall(b"GET /metrics HTTP/1.1\r\nHost: localhost\r\n")
        reader = socket.socket()
        reader.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 2048)
        reader.connect(("127.0.0.1", server.port))
        # More than fits into the buffers of both ends, which take what comes first.
        reader.sendall(b"GET /api/v1/fields HTTP/1.1\r\nHost: localhost\r\n\r\n" * 60)
        begin = time.monotonic()
        ended = {}
        self.until(lambda: server.descriptors() == before + 2)
        while len(ended) < 2 and time.monotonic() - begin < LONGEST + SOON + 10:
            if "sender" not in ended:
                try:
                    sender.send(b"X: y\r\n")
                except OSError:
                    ended["sender"] = time.monotonic() - begin
            if "reader" not in ended and server.descriptors() <= before + ("sender" not in ended):
                ended["reader"] = time.monotonic() - begin
            if "reader" not in ended:
                reader.recv(2048)
            self.assertEqual(self.get(server, "/-/healthy").status, 200)
            time.sleep(0.5)
        for name in ("sender", "reader"):
            self.assertIn(name, ended, "still there")
            self.assertLess(ended[name], LONGEST + SOON, name)
        self.assertGreater(ended["sender"], LONGEST - SOON, "ended before its time")
        sender.close()
        reader.close()
        self.until(lambda: server.descriptors() <= before, 10)


if __name__ == "__main__":
    unittest.main()
