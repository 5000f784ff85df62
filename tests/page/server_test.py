"""The page and its server: one that is gone, that wants a token, or that has nothing to serve."""
import re
import unittest

from browser import PageTest, Unit, until


class Server(PageTest):
    def test_a_directory_that_cannot_be_read(self):
        self.may_fail = ["503"]
        unit = Unit()
        self.addCleanup(unit.close)
        unit.serve()
        unit.live.rmdir()
        until(lambda: unit.ask("decoders") is None, "that the server sees it")
        self.browser.get(unit.origin + "/")
        until(lambda: "HTTP 503: " + str(unit.live) in self.text("#notlive-what"), "what is wrong")
        unit.live.mkdir()
        until(lambda: self.live() == "live", "that it is mended")
        self.assertIn("No decoder is published", self.text("#no-decoders"))

    def test_a_server_that_is_gone(self):
        self.may_fail = ["ERR_CONNECTION_REFUSED"]
        unit = Unit()
        self.addCleanup(unit.close)
        unit.simulate("alpha")
        unit.serve()
        self.open(unit=unit)  # one decoder alone is shown at once
        self.assertEqual(self.text("#decoder"), "alpha")
        unit.server.kill()
        unit.server.wait()
        until(lambda: self.text("#fresh b") == "Late", "that it is late")
        until(lambda: "No answer from the server" in self.text("#notlive-what"), "that the server is gone")
        self.not_live()
        until(lambda: re.search(r"tries again in \d+s", self.text("#notlive-why")), "longer pauses")
        unit.serve()
        until(lambda: self.live() == "live", "that it is back")

    def test_a_token(self):
        self.may_fail = ["401"]
        token = "0123456789abcdef-token"
        unit = Unit("--token-file", "token")
        self.addCleanup(unit.close)
        (unit.directory / "token").write_text(token + "\n")
        (unit.directory / "token").chmod(0o600)
        unit.simulate("alpha")
        unit.serve()
        for password in ("", "operator:wrong@"):
            self.browser.get(unit.origin.replace("//", "//" + password) + "/")
            self.assertEqual((self.live(), self.text("body")), (None, ""), "there is a page without the token")
        # As the browser does with what people type where it asks them, it sends the password with all that the page asks for.
        self.browser.get(unit.origin.replace("//", "//operator:" + token + "@") + "/")
        until(lambda: self.live() == "live" and self.text("#headline") == "Healthy", "the decoder")
        self.browser.get(unit.origin + "/")
        until(lambda: self.live() == "live", "the page, without being asked again")


if __name__ == "__main__":
    unittest.main(verbosity=2)
