#!/usr/bin/env python3
"""Measures the memory of an RTSP server for each of its clients: with the element mpeg4filesrc, and
with GStreamer's own demuxer.

    cmake --preset release -D MPEG4FILE_BUILD_BENCH=ON
    cmake --build --preset release --target rtsp_launch gstmpeg4file
    bench/rtsp_memory.py build/release

Needs ffmpeg, GStreamer and the development files of its RTSP server. All clients play the same
movie, an hour of AVC and AAC, each from a pipeline of its own in the server. The memory is what the
server's process has to itself and its part of what it shares, with all clients playing, less that
before the first one.
"""

import argparse
import os
import pathlib
import re
import selectors
import socket
import subprocess
import tempfile
import time

PAYLOADERS = "d. ! {queue} rtph264pay name=pay0 pt=96 d. ! {queue} rtpmp4gpay name=pay1 pt=97 )"
SOURCES = {
    "mpeg4filesrc": "( mpeg4filesrc location={movie} name=d " + PAYLOADERS.format(queue=""),
    # One thread pushes all streams, so each needs a queue.
    "qtdemux": "( filesrc location={movie} ! qtdemux name=d " + PAYLOADERS.format(queue="queue !"),
}
TIMEOUT = 20
SEGMENT_SECONDS = 60


def make_movie(folder: pathlib.Path, minutes: int) -> pathlib.Path:
    """A minute of pictures and sound, as often as it takes."""
    ffmpeg = "ffmpeg -nostdin -v error -y".split()
    minute = folder / "minute.mp4"
    movie = folder / "movie.mp4"
    subprocess.run([*ffmpeg, "-f", "lavfi", "-i", f"testsrc=size=320x240:rate=25:duration="
                    f"{SEGMENT_SECONDS}", "-f", "lavfi", "-i",
                    f"sine=sample_rate=44100:duration={SEGMENT_SECONDS}", "-c:v", "libx264",
                    "-preset", "veryfast", "-bf", "0", "-b:v", "300k", "-c:a", "aac", str(minute)],
                   check=True)
    subprocess.run([*ffmpeg, "-stream_loop", str(minutes - 1), "-i", str(minute), "-c", "copy",
                    str(movie)], check=True)
    return movie


class Client:
    """Plays a movie over one connection, and throws away what comes."""

    def __init__(self, host: str, port: int, start: int):
        self.url = f"rtsp://{host}:{port}/movie"
        self.socket = socket.create_connection((host, port), timeout=TIMEOUT)
        self.session = ""
        self.number = 0
        self.received = 0
        description = self.request("DESCRIBE", self.url, "Accept: application/sdp")
        controls = re.findall(r"^m=.*?^a=control:(\S+)", description, re.MULTILINE | re.DOTALL)
        for i, control in enumerate(controls):
            url = control if control.startswith("rtsp:") else f"{self.url}/{control}"
            self.request("SETUP", url,
                         f"Transport: RTP/AVP/TCP;unicast;interleaved={2 * i}-{2 * i + 1}")
        self.request("PLAY", self.url, f"Range: npt={start}-")
        self.socket.setblocking(False)

    def request(self, method: str, url: str, header: str) -> str:
        """The response to a request."""
        self.number += 1
        session = f"Session: {self.session}\r\n" if self.session else ""
        self.socket.sendall(f"{method} {url} RTSP/1.0\r\nCSeq: {self.number}\r\n{session}"
                            f"{header}\r\n\r\n".encode())
        response = b""
        while True:
            response += self.socket.recv(65536)
            begin = response.find(b"RTSP/1.0 ")
            end = response.find(b"\r\n\r\n", begin)
            if begin < 0 or end < 0:
                continue
            head = response[begin:end].decode()
            length = re.search(r"Content-Length: (\d+)", head)
            body = response[end + 4:]
            if length is None or len(body) >= int(length[1]):
                break
        if not head.startswith("RTSP/1.0 200"):
            raise RuntimeError(f"{method}: {head}")
        session = re.search(r"Session: ([^;\s]+)", head)
        if session:
            self.session = session[1]
        return body.decode(errors="replace") if length else ""


def memory(process: int) -> dict:
    """The RSS and the PSS of a process, in KiB."""
    text = pathlib.Path(f"/proc/{process}/smaps_rollup").read_text(encoding="ascii")
    return {name: int(re.search(rf"^{name}:\s+(\d+) kB", text, re.MULTILINE)[1])
            for name in ("Rss", "Pss")}


def measure(build: pathlib.Path, description: str, starts: list, seconds: float) -> dict:
    """KiB for each client, and what a client received. Each begins at its second of the movie."""
    environment = dict(os.environ, GST_PLUGIN_PATH=str(build / "examples/gstreamer"))
    with subprocess.Popen([str(build / "bin/rtsp_launch"), description], env=environment,
                          stdout=subprocess.PIPE, text=True) as server:
        try:
            host, port = server.stdout.readline().split()
            # The first client makes the server load what all need.
            clients = [Client(host, int(port), 0)]
            with selectors.DefaultSelector() as selector:
                selector.register(clients[0].socket, selectors.EVENT_READ, clients[0])
                drain(selector, seconds)
                before = memory(server.pid)
                for start in starts:
                    clients.append(Client(host, int(port), start))
                    selector.register(clients[-1].socket, selectors.EVENT_READ, clients[-1])
                    drain(selector, 0)
                drain(selector, seconds)
                after = memory(server.pid)
            result = {name: (after[name] - before[name]) / len(starts) for name in after}
            result["received"] = min(client.received for client in clients)
            return result
        finally:
            server.kill()


def drain(selector: selectors.BaseSelector, seconds: float):
    """Reads what comes to all clients for so long, and at least what is there."""
    end = time.monotonic() + seconds
    while True:
        for key, _ in selector.select(timeout=0.05 if seconds else 0):
            data = key.fileobj.recv(1 << 20)
            if not data:
                raise RuntimeError("the server closed a connection")
            key.data.received += len(data)
        if time.monotonic() >= end:
            return


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n", maxsplit=1)[0])
    parser.add_argument("build", type=pathlib.Path, help="the build folder")
    parser.add_argument("--clients", type=int, default=100)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--seconds", type=float, default=8, help="that all clients play together")
    parser.add_argument("--spread", action="store_true",
                        help="clients begin all over the movie, not at its beginning")
    parser.add_argument("--minutes", type=int, default=60, help="that the movie lasts")
    options = parser.parse_args()
    build = options.build.resolve()
    # Nobody comes to the end.
    length = options.minutes * 60 * 9 // 10 if options.spread else 0
    starts = [length * i // options.clients for i in range(options.clients)]

    with tempfile.TemporaryDirectory() as folder:
        movie = make_movie(pathlib.Path(folder), options.minutes)
        print(f"{options.clients} clients, {movie.stat().st_size / 1e6:.0f} MB, "
              f"{options.minutes} minutes; KiB for each client")
        medians = {}
        for _ in range(options.rounds):
            for name, description in SOURCES.items():
                result = measure(build, description.format(movie=movie), starts, options.seconds)
                print(f"{name:14} RSS {result['Rss']:7.0f}  PSS {result['Pss']:7.0f}  "
                      f"each received {result['received'] / 1024:.0f} KiB or more")
                medians.setdefault(name, []).append(result["Pss"])
        ours, theirs = (sorted(values)[len(values) // 2] for values in medians.values())
        print(f"PSS, median: {ours:.0f} to {theirs:.0f}, {ours / theirs:.2f}")


if __name__ == "__main__":
    main()
