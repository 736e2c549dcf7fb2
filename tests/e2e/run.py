#!/usr/bin/env python3
"""End-to-end tests of the desktop program: each case starts the real
melkora on a generated collection under a virtual X display and drives it
with real mouse and key events. Run under xvfb-run:

    xvfb-run -a -s "-screen 0 1280x800x24" python3 tests/e2e/run.py \
        --binary build/bin/melkora --media build/test-media [--shots DIR] [CASE...]
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time
import traceback

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402
from harness import click, focus, key, read_settings, write_settings  # noqa: E402

# Points of the window's client area (the window stands at harness.WINDOW).
FOLDER_ROW_X = 60
FOLDER_ROW_Y = 144  # the first row; each row is 19 high
ROW_STEP = 19
TRACK_ROW_X = 430
TRACK_ROW_Y = 120
RIGHT_PANE = (225, 111)  # the right column's top left corner
PLAYLIST_LIST_X = 480


def folder_row(index):
    return FOLDER_ROW_X, FOLDER_ROW_Y + index * ROW_STEP


def track_row(index):
    return TRACK_ROW_X, TRACK_ROW_Y + index * ROW_STEP


class Context:
    def __init__(self, args):
        self.args = args
        self.base = tempfile.mkdtemp(prefix="melkora-e2e-")
        self.runs = []

    def make_collection(self):
        """Root/Jazz/Band/Live and Root/Rock/Artist/{Album One, Album Two}:
        real sounds of 1 and 5 seconds."""
        root = os.path.join(self.base, "collection")
        media = self.args.media
        layout = {
            "Jazz/Band/Live": [("01 Take.wav", "tone1s.wav")],
            "Rock/Artist/Album One": [("01 One.wav", "tone1s.wav"), ("02 Two.ogg", "tone1s.ogg"),
                                       ("03 Three.mp3", "tone5s.mp3")],
            "Rock/Artist/Album Two": [("01 Long.ogg", "tone5s.ogg"), ("02 Longer.wav", "tone5s.wav")],
        }
        for folder, files in layout.items():
            os.makedirs(os.path.join(root, folder), exist_ok=True)
            for name, source in files:
                shutil.copy(os.path.join(media, source), os.path.join(root, folder, name))
        return root

    def home(self, name):
        home = os.path.join(self.base, name)
        os.makedirs(home, exist_ok=True)
        return home

    def start(self, root, home, args=(), place=True):
        if place and "Window" not in read_settings(home):
            left, top, right, bottom = harness.WINDOW
            values = {"Window": "7:%d,%d,%d,%d,1,0,0" % (left, top, right, bottom)}
            values.update({k: v for k, v in read_settings(home).items()})
            write_settings(home, values)
        program = harness.Program(self.args.binary, root, home, args)
        self.runs.append(program)
        program.wait_for(r"^ready \d+", 20)
        window = program.window()
        focus(window)
        return program, window

    def shot(self, name):
        if self.args.shots:
            os.makedirs(self.args.shots, exist_ok=True)
            harness.screenshot(os.path.join(self.args.shots, name + ".png"))

    def close(self):
        for program in self.runs:
            program.kill()
        shutil.rmtree(self.base, ignore_errors=True)


def open_album(program, window, album_row):
    """From the root: Rock, Artist, then selects the album row."""
    click(window, *folder_row(1), repeat=2)  # Rock
    program.wait_for(r"^folder \d+ .*/Rock/$")
    click(window, *folder_row(0), repeat=2)  # Artist
    program.wait_for(r"^folder \d+ .*/Rock/Artist/$")
    click(window, *folder_row(album_row))


# The cases.

def case_plays_pauses_stops_and_moves_through_folders(ctx):
    root = ctx.make_collection()
    home = ctx.home("play")
    program, window = ctx.start(root, home)
    open_album(program, window, 0)
    time.sleep(0.3)
    # A double click on a track plays it to its end.
    click(window, *track_row(0), repeat=2)
    program.wait_for(r"^open .*/01 One\.wav$")
    program.wait_for(r"^end .*/01 One\.wav$", 5)
    # Every row selected and Enter: one track after the other.
    click(window, *track_row(0))
    key(window, "ctrl+a", "Return")
    program.wait_for(r"^open .*/01 One\.wav$")
    program.wait_for(r"^end .*/01 One\.wav$", 5)
    program.wait_for(r"^open .*/02 Two\.ogg$", 5)
    program.wait_for(r"^end .*/02 Two\.ogg$", 5)
    program.wait_for(r"^open .*/03 Three\.mp3$", 5)
    ctx.shot("playing")
    # Space pauses: the five-second track does not end while paused.
    key(window, "space")
    program.none_for(r"^end ", 6.0)
    key(window, "space")
    program.wait_for(r"^end .*/03 Three\.mp3$", 6)
    # Esc stops a track before its end.
    click(window, *track_row(2), repeat=2)
    program.wait_for(r"^open .*/03 Three\.mp3$")
    key(window, "Escape")
    program.none_for(r"^end ", 6.0)
    # Backspace goes up a level; F5 lists the folder again.
    key(window, "BackSpace")
    program.wait_for(r"^folder \d+ .*/Rock/$")
    key(window, "F5")
    program.wait_for(r"^folder \d+ .*/Rock/$")


def card(index):
    """The middle of a card's cover in the thumbnails (four to a row at
    this width)."""
    column, row = index % 4, index // 4
    return RIGHT_PANE[0] + column * 170 + 36 + 75, RIGHT_PANE[1] + row * 200 + 12 + 75


def case_thumbnails_open_folders_and_play_albums(ctx):
    root = ctx.make_collection()
    with open(os.path.join(root, "Book.htm"), "w") as f:
        f.write("<p>A Book</p>")  # a collection with a Book starts on its thumbnails
    home = ctx.home("thumbs")
    program, window = ctx.start(root, home)
    ctx.shot("start")
    click(window, *card(1))  # Rock
    program.wait_for(r"^folder \d+ .*/Rock/$")
    click(window, *card(0))  # Artist
    program.wait_for(r"^folder \d+ .*/Rock/Artist/$")
    ctx.shot("thumbnails")
    click(window, *card(0))  # Album One, a folder without subfolders: it plays
    program.wait_for(r"^open .*/Album One/01 One\.wav$")
    # A left click on the band goes up a level.
    click(window, RIGHT_PANE[0] + 40, RIGHT_PANE[1] + 200)
    program.wait_for(r"^folder \d+ .*/Rock/$")


def case_the_first_start_shows_the_welcome_page(ctx):
    root = ctx.make_collection()
    home = ctx.home("welcome")
    program, window = ctx.start(root, home)
    time.sleep(1.5)
    ctx.shot("welcome")
    # The page takes the thumbnails' place until a folder is chosen.
    click(window, *folder_row(1))
    program.drain(0.5)
    assert program.alive()


def case_settings_are_stored_at_close_and_applied_at_start(ctx):
    root = ctx.make_collection()
    home = ctx.home("settings")
    write_settings(home, {"Window": "7:0,0,1000,680,1,0,0", "Column": 260, "Column2": 240,
                          "Volume": 20, "Repeat": 1})
    program, window = ctx.start(root, home, place=False)
    xdotool_close(window)
    assert program.wait_exit(10) == 0
    stored = read_settings(home)
    for name in ("Window", "Column", "Column2", "Playlist", "Volume", "Repeat"):
        assert name in stored, "%s not stored: %s" % (name, stored)
    # What was stored came back at the start and was stored again.
    assert stored["Column"] == "dword:%08x" % 260, stored
    assert stored["Column2"] == "dword:%08x" % 240, stored
    assert stored["Volume"] == "dword:%08x" % 20, stored
    assert stored["Repeat"] == "dword:00000001", stored
    assert stored["Playlist"] == "Playlist", stored
    left, top, right, bottom = [int(v) for v in stored["Window"].split(":")[1].split(",")[:4]]
    assert (right - left, bottom - top) == (1000, 680), stored["Window"]


def case_the_end_of_the_session_keeps_the_settings(ctx):
    root = ctx.make_collection()
    home = ctx.home("session")
    program, window = ctx.start(root, home)
    program.process.terminate()  # SIGTERM, as a session manager sends
    assert program.wait_exit(10) == 0
    stored = read_settings(home)
    assert "Volume" in stored and "Column" in stored, stored


def case_a_second_start_ends_at_once(ctx):
    root = ctx.make_collection()
    home = ctx.home("second")
    program, window = ctx.start(root, home)
    second = harness.Program(ctx.args.binary, root, home)
    assert second.wait_exit(10) == 0
    assert program.alive()


def case_a_folder_added_to_the_playlist_is_written_and_a_row_removed(ctx):
    root = ctx.make_collection()
    home = ctx.home("playlist")
    program, window = ctx.start(root, home)
    click(window, *folder_row(1), repeat=2)  # Rock
    program.wait_for(r"^folder \d+ .*/Rock/$")
    click(window, *folder_row(0), repeat=2)  # Artist
    program.wait_for(r"^folder \d+ .*/Rock/Artist/$")
    # The folder menu: its second line adds the folder to the open playlist.
    click(window, *folder_row(0), button=3)
    key(window, "Down", "Down", "Return")
    lst = os.path.join(root, "Playlists", "Playlist.lst")
    wait_until(lambda: os.path.exists(lst) and os.path.getsize(lst) > 0, 5, "the playlist was not written")
    with open(lst, "rb") as f:
        entries = f.read().split(b"\r\n")
    assert entries[-1] == b"", entries
    assert entries[:-1] == [b"Rock\\Artist\\Album One\\01 One.wav", b"Rock\\Artist\\Album One\\02 Two.ogg",
                            b"Rock\\Artist\\Album One\\03 Three.mp3"], entries
    # Delete in the playlist's list removes its first row from the file.
    x, y = playlist_row(0)
    click(window, x, y)
    key(window, "Delete")
    wait_until(lambda: open(lst, "rb").read().count(b"\r\n") == 2, 5, "the row was not removed")
    ctx.shot("playlist")


def case_a_playlist_is_renamed_through_its_dialog(ctx):
    root = ctx.make_collection()
    home = ctx.home("rename")
    program, window = ctx.start(root, home)
    folder = os.path.join(root, "Playlists")
    wait_until(lambda: os.path.exists(os.path.join(folder, "Playlist.lst")), 5, "no first playlist")
    time.sleep(1.0)
    ctx.shot("before-rename")
    click(window, RIGHT_PANE[0] + 31, PLAYLIST_ROW_Y + 80)  # the rename button
    time.sleep(1.0)
    ctx.shot("dialog-playlist-name")
    harness.xdotool("type", "--delay", 40, "Road Trip")
    key(window, "Return")
    wait_until(lambda: os.path.exists(os.path.join(folder, "Road Trip.lst")), 5,
               "the playlist was not renamed: %s" % os.listdir(folder))
    assert not os.path.exists(os.path.join(folder, "Playlist.lst"))
    # Cancel leaves the name alone.
    click(window, RIGHT_PANE[0] + 31, PLAYLIST_ROW_Y + 80)
    time.sleep(1.0)
    harness.xdotool("type", "--delay", 40, "Other")
    key(window, "Escape")
    time.sleep(0.5)
    assert os.path.exists(os.path.join(folder, "Road Trip.lst")), os.listdir(folder)
    # The name stored at close is the new one.
    xdotool_close(window)
    program.wait_exit(10)
    assert read_settings(home)["Playlist"] == "Road Trip"


def case_a_track_deleted_goes_to_the_trash(ctx):
    root = ctx.make_collection()
    home = ctx.home("trash")
    program, window = ctx.start(root, home)
    open_album(program, window, 0)
    click(window, *track_row(1))
    x, y = track_row(1)
    click(window, x, y, button=3)
    key(window, "Up", "Return")  # "Delete", the menu's last line
    time.sleep(0.8)
    key(window, "Return")  # Yes in the question
    gone = os.path.join(root, "Rock", "Artist", "Album One", "02 Two.ogg")
    wait_until(lambda: not os.path.exists(gone), 5, "the track is still there")
    trash = os.path.join(home, "data", "Trash", "files", "02 Two.ogg")
    assert os.path.exists(trash), os.listdir(os.path.join(home, "data"))
    program.wait_for(r"^folder \d+ .*/Rock/Artist/$")


def case_a_kill_at_any_moment_leaves_whole_files(ctx):
    """The program is killed at random moments while it writes its
    settings and a playlist; each file is then either the old one or the
    new one, never a part."""
    import random
    root = ctx.make_collection()
    home = ctx.home("kill")
    os.makedirs(os.path.join(root, "Playlists"), exist_ok=True)
    lst = os.path.join(root, "Playlists", "Playlist.lst")
    entries = [b"Rock\\Artist\\Album One\\01 One.wav", b"Rock\\Artist\\Album One\\02 Two.ogg",
               b"Rock\\Artist\\Album Two\\01 Long.ogg"] * 200
    with open(lst, "wb") as f:
        f.write(b"".join(e + b"\r\n" for e in entries))
    generator = random.Random(7)
    for attempt in range(8):
        program, window = ctx.start(root, home)
        x, y = playlist_row(0)
        click(window, x, y)
        key(window, "Delete")
        focus(window)
        harness.xdotool("key", "alt+F4")
        time.sleep(generator.uniform(0.0, 0.05))
        program.kill()
        with open(lst, "rb") as f:
            data = f.read()
        assert data.endswith(b"\r\n"), "a torn playlist after attempt %d" % attempt
        rows = data.split(b"\r\n")[:-1]
        assert set(rows) <= set(entries), "a torn entry after attempt %d" % attempt
        stored = read_settings(home)
        assert "Window" in stored and "Folder" in stored, stored
        with open(os.path.join(home, "settings", "registry.ini"), "rb") as f:
            assert f.read().startswith(b"MELKORA REGISTRY 1\n")


def case_a_track_text_typed_in_the_editor_is_kept(ctx):
    root = ctx.make_collection()
    home = ctx.home("text")
    program, window = ctx.start(root, home)
    open_album(program, window, 0)
    click(window, *track_row(0))
    click(window, 700, 200)  # the editor beside the tracks
    harness.xdotool("type", "--delay", 30, "Sung live ")
    key(window, "space", "Escape")  # both reach the editor, neither pauses nor stops
    text = os.path.join(root, "Rock", "Artist", "Album One", "01 One.txt")
    wait_until(lambda: os.path.exists(text) and open(text, "rb").read().startswith(b"Sung live  "), 5,
               "the track's text was not written")
    ctx.shot("track-text")
    # Another track shows its own (empty) text and leaves the first alone.
    click(window, *track_row(1))
    time.sleep(0.3)
    assert open(text, "rb").read().startswith(b"Sung live"), "the first text changed"
    assert not os.path.exists(os.path.join(root, "Rock", "Artist", "Album One", "02 Two.txt"))


def case_remote_commands_and_mpris_reach_the_window(ctx):
    """On a session bus of the case's own: `melkora --remote N` and MPRIS2
    calls play, move through and pause the queue, and the bus shows the
    track; with no instance left, --remote fails with status 1."""
    if not shutil.which("dbus-daemon") or not shutil.which("gdbus"):
        print("  (skipped: no dbus-daemon or gdbus)")
        return
    daemon = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address=1"],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    saved = os.environ.get("DBUS_SESSION_BUS_ADDRESS")
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = daemon.stdout.readline().decode().strip()
    try:
        root = ctx.make_collection()
        home = ctx.home("remote")
        program, window = ctx.start(root, home)
        open_album(program, window, 1)  # Album Two: two tracks of 5 seconds

        def remote(number):
            return subprocess.run([ctx.args.binary, "--remote", str(number)], capture_output=True,
                                  timeout=10)

        def player(method, *args):
            return subprocess.run(["gdbus", "call", "--session", "--dest", "org.mpris.MediaPlayer2.melkora",
                                   "--object-path", "/org/mpris/MediaPlayer2", "--method",
                                   method] + list(args), capture_output=True, text=True, timeout=10)

        def property_shows(name, text):
            reply = player("org.freedesktop.DBus.Properties.Get", "org.mpris.MediaPlayer2.Player", name)
            return text in reply.stdout

        assert remote(2).returncode == 0
        program.wait_for(r"^open .*/Album Two/01 Long\.ogg$", 5)
        assert remote(4).returncode == 0
        program.wait_for(r"^open .*/Album Two/02 Longer\.wav$", 5)
        wait_until(lambda: property_shows("Metadata", "'xesam:title': <'02 Longer'>"), 5,
                   "the bus shows the second track")
        assert property_shows("Metadata", "'xesam:album': <'Album Two'>")
        assert property_shows("Metadata", "'xesam:artist': <['Artist']>")
        assert player("org.mpris.MediaPlayer2.Player.Previous").returncode == 0
        program.wait_for(r"^open .*/Album Two/01 Long\.ogg$", 5)
        wait_until(lambda: property_shows("PlaybackStatus", "'Playing'"), 5, "playing on the bus")
        assert player("org.mpris.MediaPlayer2.Player.PlayPause").returncode == 0
        wait_until(lambda: property_shows("PlaybackStatus", "'Paused'"), 5, "paused on the bus")
        # The volume set on the bus is the player's and the slider's.
        assert player("org.freedesktop.DBus.Properties.Set", "org.mpris.MediaPlayer2.Player", "Volume",
                      "<0.5>").returncode == 0
        wait_until(lambda: property_shows("Volume", "<0.5>"), 5, "half the volume on the bus")
        # Quit closes the window as the user would; then no instance answers.
        assert player("org.mpris.MediaPlayer2.Quit").returncode == 0
        assert program.wait_exit(10) == 0
        alone = remote(2)
        assert alone.returncode == 1, alone
        assert alone.stderr == b"melkora: no running instance\n", alone.stderr
        assert read_settings(home)["Volume"] == "dword:00000019", read_settings(home)  # 25 of 50
    finally:
        if saved is None:
            os.environ.pop("DBUS_SESSION_BUS_ADDRESS", None)
        else:
            os.environ["DBUS_SESSION_BUS_ADDRESS"] = saved
        daemon.kill()
        daemon.wait(5)


def playlist_row(index):
    return PLAYLIST_LIST_X, PLAYLIST_ROW_Y + index * ROW_STEP


PLAYLIST_ROW_Y = 0  # set from the window's size at the first use


def xdotool_close(window):
    """Closes the window as its frame's close button does."""
    focus(window)
    harness.xdotool("key", "alt+F4")


def wait_until(condition, seconds, message):
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        try:
            if condition():
                return
        except OSError:
            pass
        time.sleep(0.1)
    raise AssertionError(message)


def load_case_files():
    """The cases of each window of its own live in tests/e2e/cases_*.py.
    Such a file sees this file's helpers (Context, folder_row, wait_until,
    ...) as its own globals."""
    import glob
    import importlib.util
    found = {}
    shared = {k: v for k, v in globals().items() if not k.startswith("__")}
    for path in sorted(glob.glob(os.path.join(os.path.dirname(os.path.abspath(__file__)), "cases_*.py"))):
        name = os.path.splitext(os.path.basename(path))[0]
        spec = importlib.util.spec_from_file_location(name, path)
        module = importlib.util.module_from_spec(spec)
        module.__dict__.update(shared)
        spec.loader.exec_module(module)
        found.update({k: v for k, v in module.__dict__.items() if k.startswith("case_") and k not in shared})
    return found


CASES = [value for name, value in sorted({**{k: v for k, v in globals().items() if k.startswith("case_")},
                                          **load_case_files()}.items())]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--binary", required=True)
    parser.add_argument("--media", required=True)
    parser.add_argument("--shots")
    parser.add_argument("cases", nargs="*")
    args = parser.parse_args()
    global PLAYLIST_ROW_Y
    PLAYLIST_ROW_Y = harness.WINDOW[3] - harness.WINDOW[1] - 22 - 101 + 10
    manager = None
    if shutil.which("openbox"):
        manager = subprocess.Popen(["openbox"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(0.5)
    failed = 0
    selected = [c for c in CASES if not args.cases or any(n in c.__name__ for n in args.cases)]
    for case in selected:
        ctx = Context(args)
        started = time.monotonic()
        try:
            case(ctx)
            print("PASS %s (%.1f s)" % (case.__name__[5:], time.monotonic() - started), flush=True)
        except Exception:  # noqa: BLE001 - a failed case is reported, the others go on
            failed += 1
            print("FAIL %s" % case.__name__[5:], flush=True)
            traceback.print_exc()
            if ctx.runs:
                print("  program's last lines: %s" % ctx.runs[-1].lines[-20:], flush=True)
            ctx.shot("failed-" + case.__name__[5:])
        finally:
            ctx.close()
    if manager:
        manager.terminate()
    print("%d of %d cases passed" % (len(selected) - failed, len(selected)))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
