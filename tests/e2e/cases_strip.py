"""The strip docked at the bottom of the screen, under openbox (a window
manager that keeps the space of bars from the other windows): the "Taskbar"
preference docks it at the start and the desktop's work area shrinks by its
height; the end of the program, or a start with the preference off, gives
the space back; its buttons pause, go on, move through the queue and stop what plays and bring the
hidden main window back.

This file is loaded by run.py, whose helpers (Context, folder_row,
track_row, click, key, wait_until, xdotool_close, write_settings...) are its
globals."""

import os
import re
import subprocess
import time

STRIP_TITLE = "^Melkora Browser Taskbar$"


def work_area():
    """The desktop's work area as left, top, width, height, from the root
    window's _NET_WORKAREA (its first desktop)."""
    text = subprocess.run(["xprop", "-root", "_NET_WORKAREA"], capture_output=True, text=True).stdout
    numbers = [int(n) for n in re.findall(r"\d+", text.split("=", 1)[-1])]
    return tuple(numbers[:4])


def screen_size():
    text = subprocess.run(["xdpyinfo"], capture_output=True, text=True).stdout
    width, height = re.search(r"dimensions:\s+(\d+)x(\d+)", text).groups()
    return int(width), int(height)


def strip_window(program, visible=True):
    args = ["xdotool", "search", "--all"] + (["--onlyvisible"] if visible else []) + \
        ["--pid", str(program.process.pid), "--name", STRIP_TITLE]
    found = subprocess.run(args, capture_output=True, text=True).stdout.split()
    return found[0] if found else None


def geometry(window):
    text = subprocess.run(["xwininfo", "-id", window], capture_output=True, text=True).stdout
    value = {k: int(v) for k, v in re.findall(r"(Absolute upper-left [XY]|Width|Height):\s+(-?\d+)", text)}
    return value["Absolute upper-left X"], value["Absolute upper-left Y"], value["Width"], value["Height"]


def main_window_shown(program):
    found = subprocess.run(["xdotool", "search", "--all", "--onlyvisible", "--pid", str(program.process.pid),
                            "--name", "^Melkora Browser [0-9]"], capture_output=True, text=True).stdout
    return bool(found.split())


def strip_button(width, name):
    """The middle of a button, from the strip's right edge: show, then
    stop, pause, next and previous 30 to the left of it."""
    right = {"show": 22, "stop": 52, "pause": 72, "next": 92, "previous": 112}[name]
    return width - right + 10


def button_picture(strip, width, name, path):
    """The pixels the screen shows of one of the strip's buttons, with the
    pointer away from it, so that no hover look counts."""
    left, top, _, strip_height = geometry(strip)
    subprocess.run(["xdotool", "mousemove", "--window", strip, "5", str(strip_height // 2)], check=True)
    time.sleep(0.4)
    x = left + strip_button(width, name) - 10
    subprocess.run(["import", "-window", "root", "-crop", "20x%d+%d+%d" % (strip_height, x, top), "+repage",
                    path], check=True)


def pixels_differ(first, second):
    """How many pixels of two pictures differ (ImageMagick's count)."""
    result = subprocess.run(["compare", "-metric", "AE", first, second, "null:"], capture_output=True, text=True)
    return int(float(result.stderr.split()[0]))


def start_with_strip(ctx, name, on):
    root = ctx.make_collection()
    home = ctx.home(name)
    # The placement written here too, so that the start keeps the number.
    write_settings(home, {"Window": "7:%d,%d,%d,%d,1,0,0" % harness.WINDOW, "Taskbar": 1 if on else 0})
    return ctx.start(root, home)


def strip_line(program):
    """The height of the strip's dock line; it comes before "ready", which
    the start has already read."""
    for line in program.lines:
        match = re.match(r"^strip reserved (\d+)$", line)
        if match:
            return int(match.group(1))
    return int(program.wait_for(r"^strip reserved (\d+)$").group(1))


def case_strip_reserves_its_space_and_gives_it_back(ctx):
    width, height = screen_size()
    before = (0, 0, width, height)
    # The strip of a case before, killed, may take a moment to give its
    # space back.
    wait_until(lambda: work_area() == before, 5, "the desktop starts with the whole screen: %s" % (work_area(),))
    program, window = start_with_strip(ctx, "strip-space", True)
    strip_height = strip_line(program)
    assert strip_height >= 20
    wait_until(lambda: work_area() == (0, 0, width, height - strip_height), 5,
               "the work area shrinks by the strip: %s" % (work_area(),))
    strip = strip_window(program)
    assert strip, "the strip is shown"
    assert geometry(strip) == (0, height - strip_height, width, strip_height), geometry(strip)
    # The strip takes no keyboard: the main window keeps it.
    active = subprocess.run(["xdotool", "getactivewindow"], capture_output=True, text=True).stdout.strip()
    assert active == window, (active, window)
    # The end of the program gives the space back.
    xdotool_close(window)
    assert program.wait_exit(10) == 0
    wait_until(lambda: work_area() == before, 5, "the space comes back: %s" % (work_area(),))
    # Started with the preference off: no strip, the whole work area.
    program, window = start_with_strip(ctx, "strip-off", False)
    program.drain(1.0)
    assert not any(line.startswith("strip ") for line in program.lines), program.lines
    assert strip_window(program, visible=False) is None
    assert work_area() == before, work_area()


def case_strip_buttons_pause_stop_and_show_the_window(ctx):
    width, _ = screen_size()
    program, window = start_with_strip(ctx, "strip-buttons", True)
    strip_line(program)
    strip = strip_window(program)
    assert strip
    middle = geometry(strip)[3] // 2
    open_album(program, window, 1)  # Album Two: two tracks of 5 seconds
    time.sleep(0.3)
    # Both tracks in the queue: every row selected and Enter.
    click(window, *track_row(0))
    key(window, "ctrl+a", "Return")
    program.wait_for(r"^open .*/Album Two/01 Long\.ogg$")
    time.sleep(1.2)
    if ctx.args.shots:  # the strip alone while a track plays: docs/strip.png
        os.makedirs(ctx.args.shots, exist_ok=True)
        _, top, _, strip_height = geometry(strip)
        subprocess.run(["import", "-window", "root", "-crop", "%dx%d+0+%d" % (width, strip_height, top),
                        "+repage", os.path.join(ctx.args.shots, "strip.png")], check=False)
    # Pause: the five-second track does not end; pause again and it does.
    click(strip, strip_button(width, "pause"), middle)
    program.none_for(r"^end ", 6.0)
    click(strip, strip_button(width, "pause"), middle)
    program.wait_for(r"^end .*/01 Long\.ogg$", 7)
    program.wait_for(r"^open .*/02 Longer\.wav$", 5)
    # Previous and next move through the queue at once.
    click(strip, strip_button(width, "previous"), middle)
    program.wait_for(r"^open .*/01 Long\.ogg$", 3)
    click(strip, strip_button(width, "next"), middle)
    program.wait_for(r"^open .*/02 Longer\.wav$", 3)
    # Stop before its end: nothing ends, nothing more opens, and the queue
    # being empty, next fades to its disabled look.
    enabled = os.path.join(ctx.base, "next-enabled.png")
    disabled = os.path.join(ctx.base, "next-disabled.png")
    button_picture(strip, width, "next", enabled)
    click(strip, strip_button(width, "stop"), middle)
    program.none_for(r"^(end|open) ", 6.0)
    button_picture(strip, width, "next", disabled)
    assert pixels_differ(enabled, disabled) > 20, "next is drawn faded once stopped"
    click(strip, strip_button(width, "next"), middle)
    program.none_for(r"^open ", 1.5)
    # The main window hidden (F8), the strip's last button shows it again.
    focus(window)
    key(window, "F8")
    wait_until(lambda: not main_window_shown(program), 5, "F8 hides the main window")
    click(strip, strip_button(width, "show"), middle)
    wait_until(lambda: main_window_shown(program), 5, "the strip shows the main window")
    assert program.alive()
