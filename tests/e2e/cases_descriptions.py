"""End-to-end cases of the description window: opened from the main
window's toolbar, a description typed with the mark buttons and the keys,
the page generated and shown in the main window's web pane, and the
window's placement kept from one opening to the next. Loaded by run.py,
whose helpers (Context, click, key, wait_until, ...) are this file's
globals."""

import os
import subprocess
import time

import harness

# The main window's toolbar button "Edit Descriptions" (client point).
EDIT_DESCRIPTIONS_BUTTON = (751, 22)
# Points of the description window's client area.
DESCRIPTION_BUTTONS = {
    "page": (29, 30),
    "all": (85, 30),
    "group": (149, 30),
    "genre": (213, 30),
    "name": (269, 30),
    "title": (325, 30),
    "quote": (381, 30),
    "image": (437, 30),
    "bold": (503, 30),
}
TREE_ROW_X = 40
TREE_TOP = 61  # the toolbar's height
TREE_ROW_HEIGHT = 20
EDITOR_POINT = (500, 200)
# The web pane of the main window (client area), right of the cover.
WEB_PANE = (380, 115, 1010, 570)


def description_window(program, timeout=10.0):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(program.process.pid),
                                "--name", "Description"], capture_output=True, text=True).stdout.split()
        for window in found:
            name = subprocess.run(["xdotool", "getwindowname", window], capture_output=True,
                                  text=True).stdout.strip()
            if name == "Description - Melkora Browser":
                return window
        time.sleep(0.1)
    raise AssertionError("the description window did not appear")


def tree_row(index):
    return TREE_ROW_X, TREE_TOP + index * TREE_ROW_HEIGHT + TREE_ROW_HEIGHT // 2


def geometry(window):
    """(x, y, width, height) of a window as the X server has it."""
    out = subprocess.run(["xdotool", "getwindowgeometry", "--shell", window], capture_output=True,
                         text=True).stdout
    values = dict(line.split("=", 1) for line in out.split() if "=" in line)
    return int(values["X"]), int(values["Y"]), int(values["WIDTH"]), int(values["HEIGHT"])


def window_pixels(window):
    """The window's pixels as (width, height, bytes of RGB)."""
    path = os.path.join(os.environ.get("TMPDIR", "/tmp"), "melkora-e2e-%d.ppm" % os.getpid())
    subprocess.run(["import", "-window", window, "-depth", "8", path], check=True)
    with open(path, "rb") as f:
        data = f.read()
    os.remove(path)
    # P6, width, height, maximum, then the pixels.
    fields = []
    position = 0
    while len(fields) < 4:
        while data[position:position + 1].isspace():
            position += 1
        start = position
        while not data[position:position + 1].isspace():
            position += 1
        fields.append(data[start:position])
    assert fields[0] == b"P6", fields
    return int(fields[1]), int(fields[2]), data[position + 1:]


def count_colour(pixels, rgb, area, tolerance=40):
    """Pixels near rgb within area (left, top, right, bottom)."""
    width, height, data = pixels
    left, top, right, bottom = area
    found = 0
    for y in range(max(top, 0), min(bottom, height)):
        for x in range(max(left, 0), min(right, width)):
            i = (y * width + x) * 3
            if all(abs(data[i + k] - rgb[k]) <= tolerance for k in range(3)):
                found += 1
    return found


def case_a_description_typed_with_the_mark_buttons_becomes_a_page(ctx):
    root = ctx.make_collection()
    home = ctx.home("descriptions")
    program, window = ctx.start(root, home)
    click(window, *EDIT_DESCRIPTIONS_BUTTON)
    program.wait_for(r"^descriptions \d+$")
    editor_window = description_window(program)
    focus(editor_window)
    time.sleep(0.5)
    # The tree: Jazz, Rock; Rock opens with Right and Down picks Artist.
    click(editor_window, *tree_row(1))
    key(editor_window, "Right", "Down")
    click(editor_window, *EDITOR_POINT)
    harness.xdotool("type", "--delay", 30, "Blues")
    key(editor_window, "shift+Home")
    click(editor_window, *DESCRIPTION_BUTTONS["genre"])
    key(editor_window, "End")
    harness.xdotool("type", "--delay", 30, " from ")
    click(editor_window, *DESCRIPTION_BUTTONS["name"])  # "#name #", the caret inside
    harness.xdotool("type", "--delay", 30, "Artist")
    key(editor_window, "End", "Return")
    harness.xdotool("type", "--delay", 30, "Great songs")
    key(editor_window, "shift+Home")
    click(editor_window, *DESCRIPTION_BUTTONS["bold"])
    key(editor_window, "ctrl+End", "Return")
    click(editor_window, *DESCRIPTION_BUTTONS["group"])
    harness.xdotool("type", "--delay", 30, "Albums")
    # Generate HTML page saves the text first, then writes the page.
    click(editor_window, *DESCRIPTION_BUTTONS["page"])
    page = os.path.join(root, "Rock", "Artist.htm")
    program.wait_for(r"^page .*/Rock/Artist\.htm$", 10)
    text = os.path.join(root, "Rock", "Artist.txt")
    with open(text, "rb") as f:
        written = f.read()
    assert written == b"#genre Blues# from #name Artist#\r\n<b>Great songs</b>\r\n{Albums}\r\n", written
    with open(page, "rb") as f:
        html = f.read()
    assert b"<font class=txtGenre>Blues</font>" in html, html
    assert b"<b>Great songs</b>" in html, html
    time.sleep(1.5)
    if ctx.args.shots:
        os.makedirs(ctx.args.shots, exist_ok=True)
        subprocess.run(["import", "-window", editor_window,
                        os.path.join(ctx.args.shots, "descriptions.png")], check=False)
    ctx.shot("descriptions-screen")
    # The main window's web pane shows the page: its blue genre and red name.
    focus(window)
    time.sleep(1.0)
    pixels = window_pixels(window)
    ctx.shot("descriptions-main")
    assert count_colour(pixels, (0, 0, 192), WEB_PANE) > 20, "no genre text in the main window's page"
    assert count_colour(pixels, (255, 0, 0), WEB_PANE) > 20, "no name link in the main window's page"

    # Moved, closed and opened again: the same place and size.
    focus(editor_window)
    harness.xdotool("windowmove", editor_window, 150, 90)
    time.sleep(0.5)
    before = geometry(editor_window)
    harness.xdotool("key", "alt+F4")
    wait_until(lambda: "WindowDescription" in read_settings(home), 5, "the placement was not stored")
    focus(window)
    click(window, *EDIT_DESCRIPTIONS_BUTTON)
    program.wait_for(r"^descriptions \d+$")
    editor_window = description_window(program)
    time.sleep(0.5)
    after = geometry(editor_window)
    assert after == before, (before, after, read_settings(home)["WindowDescription"])
