"""What decstats-serve costs, beside nginx that serves the same bytes as a file, in one run on one machine.

    serve_bench.py FOLDER [SECTIONS...]     FOLDER has decstats, decstats-serve and libstatspublish.so.1; sections as below

Prints a line a figure, with its bar where it has one, and fails if one is missed.
"""
import contextlib
import ctypes
import http.client
import os
import pathlib
import re
import resource
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

ROUNDS = 5
SECONDS = 3
MISSED = []


def figure(name, value, bar=None, is_most=True):
    kept = bar is None or (value <= bar if is_most else value >= bar)
    if not kept:
        MISSED.append(name)
    limit = "" if bar is None else "  (at %s %g%s)" % ("most" if is_most else "least", bar, "" if kept else ", MISSED")
    print("%-64s %12.4g%s" % (name, value, limit), flush=True)


def descendants(process):
    children = pathlib.Path("/proc/%d/task/%d/children" % (process, process)).read_text().split()
    return [process] + [one for child in children for one in descendants(int(child))]


def processor_time(process):
    """Of a process and those that it has started [s]."""
    total = 0
    for one in descendants(process):
        fields = pathlib.Path("/proc/%d/stat" % one).read_text().rpartition(")")[2].split()
        total += int(fields[11]) + int(fields[12])
    return total / os.sysconf("SC_CLK_TCK")


def resident(process):
    """[MB of 10^6 bytes]"""
    return int(re.search(r"VmRSS:\s+(\d+)", pathlib.Path("/proc/%d/status" % process).read_text())[1]) * 1024 / 1e6


class Bench:
    def __init__(self, folder, ended):
        self.tool = str(folder / "bin" / "decstats")
        self.server = str(folder / "bin" / "decstats-serve")
        self.publishing = str(next(folder.glob("lib*/**/libstatspublish.so.1")))
        self.ended = ended
        self.scratch = pathlib.Path(tempfile.mkdtemp(dir="/dev/shm"))
        ended.callback(shutil.rmtree, self.scratch, ignore_errors=True)

    def start(self, *arguments):
        process = subprocess.Popen(arguments, stdout=subprocess.PIPE, stdin=subprocess.DEVNULL, text=True)

        def end():
            process.send_signal(signal.SIGTERM)
            process.wait(20)

        self.ended.callback(end)
        return process

    def directory(self, name):
        directory = self.scratch / name
        directory.mkdir()
        return directory

    def serve(self, directory, *more):
        server = self.start(self.server, "--directory", str(directory), "--listen", "127.0.0.1:0", *more)
        return server.pid, int(re.search(r":(\d+)/", server.stdout.readline())[1])

    def one_decoder(self, name):
        directory = self.directory(name)
        self.start(self.tool, "simulate", "live-srt-1080i", "--name", "alpha", "--directory", str(directory)).stdout.readline()
        return directory


def get(port, source=None, headers=None, path="/metrics", timeout=30):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=timeout, source_address=(source, 0) if source else None)
    with contextlib.closing(connection):
        connection.request("GET", path, headers=headers or {})
        answer = connection.getresponse()
        return answer.status, answer.read()


def wrk(port, path):
    """Requests a second, and how many there were."""
    out = subprocess.run(["wrk", "-t1", "-c8", "-d%ds" % SECONDS, "http://127.0.0.1:%d%s" % (port, path)], stdout=subprocess.PIPE,
                         text=True, check=True).stdout
    if "Non-2xx" in out or "Socket errors" in out:
        raise RuntimeError(out)
    return float(re.search(r"Requests/sec:\s+([\d.]+)", out)[1]), int(re.search(r"(\d+) requests in", out)[1])


def nginx(bench, content):
    """One worker for each processor, no log of requests, files kept open: nginx as one would tune it for this."""
    folder = bench.directory("nginx")
    (folder / "metrics").write_bytes(content)
    with socket.socket() as free:
        free.bind(("127.0.0.1", 0))
        port = free.getsockname()[1]
    (folder / "nginx.conf").write_text("""
        daemon off; pid %(folder)s/pid; error_log stderr crit; worker_processes auto; events { worker_connections 512; }
        http { access_log off; sendfile on; tcp_nopush on; open_file_cache max=10; default_type text/plain; keepalive_requests 1000000000;
            client_body_temp_path %(folder)s; proxy_temp_path %(folder)s; fastcgi_temp_path %(folder)s; uwsgi_temp_path %(folder)s;
            scgi_temp_path %(folder)s;
            server { listen 127.0.0.1:%(port)d; root %(folder)s; } }""" % {"folder": folder, "port": port})
    os.chmod(bench.scratch, 0o755)
    process = bench.start("nginx", "-c", str(folder / "nginx.conf"), "-p", str(folder))
    for _ in range(100):
        with contextlib.suppress(OSError):
            get(port)
            return process.pid, port
        time.sleep(0.05)
    raise RuntimeError("nginx does not come up")


def requests(bench):
    """Requests a second, and the processor time of one, beside nginx."""
    server, port = bench.serve(bench.one_decoder("one"))
    time.sleep(3)
    content = get(port)[1]
    figure("size of /metrics of one decoder [bytes]", len(content))
    other, other_port = nginx(bench, content)
    best = {}
    least = {}
    for _ in range(ROUNDS):
        for name, process, its_port in (("decstats-serve", server, port), ("nginx", other, other_port)):
            before = processor_time(process)
            rate, count = wrk(its_port, "/metrics")
            best[name] = max(best.get(name, 0), rate)
            cost = (processor_time(process) - before) / count
            least[name] = min(least.get(name, 1e9), cost)
    for name in best:
        figure("%s: requests a second, best of %d rounds" % (name, ROUNDS), best[name])
        figure("%s: processor time a request [us]" % name, least[name] * 1e6)
    figure("requests a second as a part of nginx's", best["decstats-serve"] / best["nginx"], 0.75, False)
    figure("processor time a request as a part of nginx's", least["decstats-serve"] / least["nginx"], 1.25)
    figure("resident after these requests [MB]", resident(server), 12)
    figure("resident: nginx, all processes [MB]", sum(resident(one) for one in descendants(other)))


def many(bench):
    """1,000 decoders in one scrape."""
    count = 1000
    resource.setrlimit(resource.RLIMIT_NOFILE, (4096, max(4096, resource.getrlimit(resource.RLIMIT_NOFILE)[1])))
    directory = bench.directory("many")
    records = bench.directory("records")
    subprocess.run([bench.tool, "sample", "live-srt-1080i", str(records)], check=True)
    library = ctypes.CDLL(bench.publishing)
    library.STATS_PublishOpen.restype = ctypes.c_void_p
    functions = {"tdemux": "TDemux", "vframer": "VFramer", "vdecoder": "VideoDecoder", "audio": "AudioDecoder", "metadata": "MetadataDec",
                 "buffering": "CBuffering", "clock-recovery": "ClockRecovery", "usage": "DecoderUsage"}
    contents = {}
    for name in functions:
        content = (records / (name + ".rec")).read_bytes()
        contents[name] = (ctypes.c_uint64 * (len(content) // 8 + 1)).from_buffer_copy(content.ljust(len(content) // 8 * 8 + 8, b"\0"))
    for i in range(count):
        publisher = ctypes.c_void_p(library.STATS_PublishOpen(b"decoder-%04d" % i, str(directory).encode(), b"bench", 3_600_000, None))
        for name, function in functions.items():
            getattr(library, "STATS_PublishFor" + function)(publisher, contents[name])
        library.STATS_PublishHeartbeat(publisher)
        bench.ended.callback(library.STATS_PublishClose, publisher)
    server, port = bench.serve(directory)
    time.sleep(5)

    def cost(headers):
        """Processor time of the server in a second with one scrape, less that of a second without."""
        least = 1e9
        for _ in range(ROUNDS):
            spans = []
            for asks in (False, True):
                before = processor_time(server)
                if asks:
                    size = len(get(port, headers=headers)[1])
                time.sleep(1)
                spans.append(processor_time(server) - before)
            least = min(least, spans[1] - spans[0])
        return least * 1e3, size

    for name, headers, bar in (("plain", {}, 100), ("gzip", {"Accept-Encoding": "gzip"}, None)):
        spent, size = cost(headers)
        figure("1,000 decoders in one scrape, %s: processor time [ms]" % name, spent, bar)
        figure("1,000 decoders in one scrape, %s: size [MB]" % name, size / 1e6)
    before = processor_time(server)
    time.sleep(5)
    figure("1,000 decoders: processor time a second without requests [ms]", (processor_time(server) - before) / 5 * 1e3)
    figure("1,000 decoders: resident [MB]", resident(server))


def slow(bench):
    """500 slow clients of one address, and a scrape from another."""
    server, port = bench.serve(bench.one_decoder("slow"))
    time.sleep(2)
    url = "http://127.0.0.1:%d/metrics" % port
    for name, kind in (("slow headers", ["-H", "-i", "2"]), ("slow readers", ["-X", "-w", "1", "-y", "2", "-n", "2", "-z", "1", "-k", "5"])):
        attack = subprocess.Popen(["slowhttptest", *kind, "-c", "500", "-r", "500", "-l", "25", "-u", url], stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL)
        longest = 0
        end = time.monotonic() + 20
        while time.monotonic() < end:
            begin = time.monotonic()
            get(port, "127.0.0.2")
            longest = max(longest, time.monotonic() - begin)
            time.sleep(0.2)
        attack.wait(60)
        figure("500 clients with %s: longest scrape from elsewhere [s]" % name, longest, 1)
        begin = time.monotonic()
        get(port, "127.0.0.1" if name == "slow readers" else "127.0.0.2")
        figure("500 clients with %s: scrape after they have left [s]" % name, time.monotonic() - begin, 1)
    descriptors = len(os.listdir("/proc/%d/fd" % server))
    figure("descriptors open after that", descriptors, 32)


def day(bench):
    """As many scrapes as Prometheus makes in 24 hours, one each 15 seconds."""
    server, port = bench.serve(bench.one_decoder("day"))
    time.sleep(3)
    count = 24 * 3600 // 15
    sizes = []
    for i in range(count):
        get(port, headers={"Accept-Encoding": "gzip"} if i % 2 else {"Accept": "application/openmetrics-text"})
        if i in (count // 4, count - 1):
            sizes.append(resident(server))
    figure("resident after a quarter of a day's scrapes [MB]", sizes[0])
    figure("resident after a day's scrapes, as a part of that", sizes[1] / sizes[0], 1.05)


def main():
    sections = {"requests": requests, "many": many, "slow": slow, "day": day}
    for name in sys.argv[2:] or sections:
        with contextlib.ExitStack() as ended:
            sections[name](Bench(pathlib.Path(sys.argv[1]), ended))
    if MISSED:
        sys.exit("missed: " + "; ".join(MISSED))


if __name__ == "__main__":
    main()
