"""The cover search window: the folder menu's Download Cover opens it on a
local server that stands for every source (the stored settings point each
source there), a click on a picture writes the folder's cover and its card
shows it. Loaded by run.py, whose helpers are this file's globals."""

import http.server
import json
import os
import re
import struct
import subprocess
import threading
import time
import zlib

COVER_ORANGE = (0xE0, 0x70, 0x20)
THUMB_COLORS = [(0xB0, 0x3A, 0x2E), (0x2E, 0x86, 0xC1), (0x23, 0x9B, 0x56), (0xB7, 0x95, 0x0B),
                (0x7D, 0x3C, 0x98), (0x17, 0xA5, 0x89)]


def solid_png(width, height, rgb):
    """A PNG of one colour, made here."""
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body) & 0xFFFFFFFF)
    row = b"\x00" + bytes(rgb) * width
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(row * height))
            + chunk(b"IEND", b""))


class CoverServer:
    """Every source on 127.0.0.1: MusicBrainz and iTunes find nothing, Deezer
    six albums whose thumbnails have colours of their own and whose full
    picture is orange."""

    def __init__(self):
        self.requests = []
        self.agents = []
        owner = self
        files = {"/img/full.png": solid_png(300, 200, COVER_ORANGE)}
        for i, rgb in enumerate(THUMB_COLORS):
            files["/img/t%d.png" % i] = solid_png(120, 120, rgb)

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):  # noqa: N802 - the name http.server calls
                owner.requests.append(self.path)
                owner.agents.append(self.headers.get("User-Agent", ""))
                path = self.path.split("?")[0]
                base = "http://127.0.0.1:%d" % owner.port
                if path.startswith("/deezer/search/album"):
                    albums = [{"title": "Album %d" % i, "artist": {"name": "Artist"},
                               "cover_xl": base + "/img/full.png", "cover_big": base + "/img/t%d.png" % i}
                              for i in range(len(THUMB_COLORS))]
                    body, kind = json.dumps({"data": albums}).encode(), "application/json"
                elif path.startswith("/mb/"):
                    body, kind = b'{"releases": []}', "application/json"
                elif path.startswith("/itunes/"):
                    body, kind = b'{"results": []}', "application/json"
                elif path in files:
                    body, kind = files[path], "image/png"
                else:
                    self.send_error(404)
                    return
                self.send_response(200)
                self.send_header("Content-Type", kind)
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *args):
                pass

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.port = self.server.server_address[1]
        self.thread = threading.Thread(target=self.server.serve_forever, daemon=True)
        self.thread.start()

    def url(self, path):
        return "http://127.0.0.1:%d%s" % (self.port, path)

    def stop(self):
        self.server.shutdown()
        self.server.server_close()


def pixel(path, x, y):
    """The colour at a point of a screenshot, as (r, g, b)."""
    text = subprocess.run(["convert", path, "-crop", "1x1+%d+%d" % (x, y), "-depth", "8", "txt:-"],
                          capture_output=True, text=True).stdout
    hex_colour = re.search(r"#([0-9A-Fa-f]{6})", text).group(1)
    return tuple(int(hex_colour[i:i + 2], 16) for i in (0, 2, 4))


def near(a, b, tolerance=12):
    return all(abs(p - q) <= tolerance for p, q in zip(a, b))


def case_a_downloaded_cover_is_written_and_its_card_shows_it(ctx):
    server = CoverServer()
    try:
        root = ctx.make_collection()
        home = ctx.home("covers")
        left, top, right, bottom = harness.WINDOW
        write_settings(home, {"Window": "7:%d,%d,%d,%d,1,0,0" % (left, top, right, bottom),
                              "MusicBrainzUrl": server.url("/mb"),
                              "CoverArtArchiveUrl": server.url("/caa"),
                              "ITunesSearchUrl": server.url("/itunes"),
                              "DeezerUrl": server.url("/deezer")})
        program, window = ctx.start(root, home)
        click(window, *folder_row(1), repeat=2)  # Rock
        program.wait_for(r"^folder \d+ .*/Rock/$")
        click(window, *folder_row(0), repeat=2)  # Artist
        program.wait_for(r"^folder \d+ .*/Rock/Artist/$")
        # The folder menu on Album One: "Download Cover: Album One" is its
        # fifth item (after the two playlist lines, Explore and Make Cover).
        click(window, *folder_row(0), button=3)
        key(window, "Down", "Down", "Down", "Down", "Down", "Return")
        program.wait_for(r"^cover-search Album One$", 5)
        found = []

        def web_window():
            # The window of that title and of the search window's size (the
            # search may also name the main window, the owner of the dialog).
            ids = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(program.process.pid),
                                  "--name", r"^Web\.\.\.$"], capture_output=True, text=True).stdout.split()
            found[:] = [w for w in ids if "Geometry: 485x165" in subprocess.run(
                ["xdotool", "getwindowgeometry", w], capture_output=True, text=True).stdout]
            return bool(found)
        wait_until(web_window, 10, "the cover search window did not open")
        wait_until(lambda: sum(r.startswith("/img/t") for r in server.requests) >= 6, 15,
                   "the thumbnails were not asked: %s" % server.requests)
        time.sleep(1.0)
        ctx.shot("cover-search")
        assert any(r.startswith("/deezer/search/album?limit=25&q=Album%20One") for r in server.requests), \
            server.requests
        assert all(a.startswith("Melkora Browser/") for a in server.agents), server.agents
        # The third picture; every album's full picture is the orange one.
        click(found[0], 5 + 80 * 2 + 37, 5 + 37)
        target = os.path.join(root, "Rock", "Artist", "album one.png")
        program.wait_for(r"^cover .*/Rock/Artist/album one\.png$", 15)
        assert "/img/full.png" in server.requests, server.requests
        with open(target, "rb") as f:
            data = f.read()
        assert data[:8] == b"\x89PNG\r\n\x1a\n", data[:16]
        assert struct.unpack(">II", data[16:24]) == (150, 150), data[16:24]
        # No temporary file of the atomic write is left beside it.
        assert not [n for n in os.listdir(os.path.dirname(target)) if n.startswith(".melkora-")]
        wait_until(lambda: not web_window(), 5, "the cover search window stayed open")
        # The folder is shown again: Album One's card has the new cover.
        time.sleep(1.5)
        shot = os.path.join(ctx.base, "after.png")
        harness.screenshot(shot)
        ctx.shot("cover-card")
        geometry = subprocess.run(["xdotool", "getwindowgeometry", window], capture_output=True,
                                  text=True).stdout
        origin = [int(v) for v in geometry.split("Position: ")[1].split()[0].split(",")]
        x, y = card(0)
        colour = pixel(shot, origin[0] + x, origin[1] + y)
        assert near(colour, COVER_ORANGE), "the card shows %s" % (colour,)
        assert program.alive()
    finally:
        server.stop()
