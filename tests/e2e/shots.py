#!/usr/bin/env python3
"""Takes the main window's pictures for docs/ on the demo collection: after
the start, with a folder selected, with a track playing and with a video
playing; then the Book window (made from the toolbar) and the help window,
each alone. Run under xvfb-run:

    melkora-cli demo /tmp/demo && xvfb-run -a -s "-screen 0 1280x800x24" \
        python3 tests/e2e/shots.py --binary build/bin/melkora --root /tmp/demo --out docs
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import harness  # noqa: E402
from harness import click, focus, write_settings  # noqa: E402
from run import folder_row, track_row  # noqa: E402


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--binary", required=True)
    parser.add_argument("--root", required=True)
    parser.add_argument("--out", required=True)
    args = parser.parse_args()
    os.makedirs(args.out, exist_ok=True)
    manager = subprocess.Popen(["openbox"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(0.5)
    home = tempfile.mkdtemp(prefix="melkora-shots-")
    write_settings(home, {"Window": "7:0,0,1024,700,1,0,0"})
    program = harness.Program(args.binary, args.root, home)
    try:
        program.wait_for(r"^ready ", 20)
        window = program.window()
        focus(window)
        time.sleep(2)

        def shot(name):
            harness.screenshot(os.path.join(args.out, name + ".png"))

        shot("main-window")
        click(window, *folder_row(2), repeat=2)  # Rock
        program.wait_for(r"^folder \d+ .*/Rock/$")
        click(window, *folder_row(0))  # its first artist
        time.sleep(0.8)
        shot("main-folder")
        click(window, *folder_row(0), repeat=2)
        program.wait_for(r"^folder ")
        click(window, *folder_row(0))
        time.sleep(0.5)
        click(window, *track_row(0), repeat=2)
        program.wait_for(r"^open ")
        time.sleep(2)
        shot("main-playing")
        harness.key(window, "BackSpace")
        program.wait_for(r"^folder \d+ .*/Rock/$")
        click(window, *folder_row(1), repeat=2)  # the band with the video
        program.wait_for(r"^folder ")
        click(window, *folder_row(0))
        time.sleep(0.5)
        click(window, *track_row(0), repeat=2)
        program.wait_for(r"^open .*\.mkv$")
        time.sleep(1.5)
        shot("main-video")

        def window_shot(title, name):
            found = []
            for _ in range(100):
                found = subprocess.run(["xdotool", "search", "--all", "--onlyvisible", "--pid",
                                        str(program.process.pid), "--name", title],
                                       capture_output=True, text=True).stdout.split()
                if found:
                    break
                time.sleep(0.1)
            time.sleep(2)
            subprocess.run(["import", "-window", found[0], os.path.join(args.out, name + ".png")])

        harness.key(window, "Escape")
        focus(window)
        click(window, 672, 26)  # "Make Book" on the toolbar
        program.wait_for(r"^book \d+ ", 60)
        window_shot("^Book - Melkora Browser$", "book")
        focus(window)
        click(window, 848, 26)  # "Help"
        program.wait_for(r"^help ")
        window_shot("^Documentation - Melkora Browser$", "help")
    finally:
        program.kill()
        manager.terminate()
        shutil.rmtree(home, ignore_errors=True)


if __name__ == "__main__":
    main()
