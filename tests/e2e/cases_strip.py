"""The strip docked at the bottom of the screen, under openbox (a window
manager that keeps the space of bars from the other windows): the "Taskbar"
preference docks it at the start and the desktop's work area shrinks by its
height; the end of the program, or a start with the preference off, gives
the space back; in one run, the preference switched on, off and on again
through the Preferences dialog docks, undocks and docks it again in the
same place, in the text colour chosen there; its buttons pause, go on,
move through the queue and stop what plays and bring the hidden main window
back.

This file is loaded by run.py, whose helpers (Context, folder_row,
track_row, click, key, wait_until, xdotool_close, write_settings...) are its
globals."""

import importlib.util
import os
import re
import shutil
import subprocess
import time

STRIP_TITLE = "^Melkora Browser Taskbar$"


def _preferences_helpers():
    """The preferences cases' module, for their way of opening and driving
    the dialog; given the runner's helpers as this file is."""
    path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "cases_preferences.py")
    spec = importlib.util.spec_from_file_location("strip_preferences_helpers", path)
    module = importlib.util.module_from_spec(spec)
    module.__dict__.update({k: v for k, v in globals().items() if not k.startswith(("__", "case_"))})
    spec.loader.exec_module(module)
    return module


preferences = _preferences_helpers()


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


def colour_pixels(path, colour, tolerance=24):
    """How many pixels of a picture are within tolerance (in each of red,
    green and blue) of colour, given as "#RRGGBB"."""
    text = subprocess.run(["convert", path, "-depth", "8", "txt:-"], capture_output=True, text=True).stdout
    wanted = [int(colour[i:i + 2], 16) for i in (1, 3, 5)]
    count = 0
    for match in re.finditer(r"#([0-9A-Fa-f]{6})", text.split("\n", 1)[-1]):
        value = match.group(1)
        if all(abs(int(value[i * 2:i * 2 + 2], 16) - wanted[i]) <= tolerance for i in range(3)):
            count += 1
    return count


def strip_picture(strip, path):
    """The screen's pixels of the whole strip, the pointer away from it."""
    left, top, strip_width, strip_height = geometry(strip)
    subprocess.run(["xdotool", "mousemove", "--window", strip, "5", str(strip_height // 2)], check=True)
    time.sleep(0.4)
    subprocess.run(["import", "-window", "root", "-crop", "%dx%d+%d+%d" % (strip_width, strip_height, left, top),
                    "+repage", path], check=True)


def set_strip_preference(program, window, tick, colour=None):
    """Preferences from the toolbar: "Show Taskbar" clicked when tick, the
    text colour chosen when given, then OK; waits for the reload."""
    dialog = preferences.open_preferences(program, window)
    if tick:
        click(dialog, *preferences.DIALOG["CHECK_TASKBAR"])
    if colour:
        click(dialog, *preferences.DIALOG["TASK_TEXT"])
        preferences.choose_custom_color(program, colour)
        focus(dialog)
    click(dialog, *preferences.DIALOG["OK"])
    preferences.gone(program, "^Preferences$")
    program.wait_for(r"^folder \d+ ", 10)


def case_strip_preference_docks_undocks_and_docks_again_in_one_run(ctx):
    """In one run: "Show Taskbar" ticked in Preferences docks the strip and
    the work area shrinks by its height, in the chosen text colour; unticked
    it is gone and the space comes back; ticked again it lands in the same
    place, not one height higher; a new colour alone reaches its text at
    once; and its buttons work at the new dock."""
    width, height = screen_size()
    whole = (0, 0, width, height)
    wait_until(lambda: work_area() == whole, 5, "the desktop starts with the whole screen")
    program, window = start_with_strip(ctx, "strip-switch", False)
    if ctx.args.shots:
        os.makedirs(ctx.args.shots, exist_ok=True)
    assert strip_window(program, visible=False) is None
    colours = ["#FF8000", "#00E0FF"]
    strip_height = None
    for turn, colour in enumerate(colours):
        set_strip_preference(program, window, True, colour)
        reserved = int(program.wait_for(r"^strip reserved (\d+)$", 5).group(1))
        assert reserved >= 20 and (strip_height is None or reserved == strip_height), (reserved, strip_height)
        strip_height = reserved
        wait_until(lambda: work_area() == (0, 0, width, height - strip_height), 5,
                   "turn %d: the work area shrinks by the strip once: %s" % (turn, work_area()))
        strip = strip_window(program)
        assert strip, "turn %d: the strip is shown" % turn
        wait_until(lambda: geometry(strip) == (0, height - strip_height, width, strip_height), 5,
                   "turn %d: the strip stands at the bottom: %s" % (turn, geometry(strip)))
        # The work area stays as it is: no second height kept.
        time.sleep(0.5)
        assert work_area() == (0, 0, width, height - strip_height), (turn, work_area())
        picture = os.path.join(ctx.base, "strip-%d.png" % turn)
        strip_picture(strip, picture)
        if ctx.args.shots:
            shutil.copy(picture, os.path.join(ctx.args.shots, "strip-switch-%d.png" % turn))
        # The time reads "0:00:00" in the chosen colour.
        assert colour_pixels(picture, colour) >= 15, "turn %d: no text in %s" % (turn, colour)
        if turn == 0:
            assert colour_pixels(picture, colours[1]) == 0
            set_strip_preference(program, window, True)
            program.wait_for(r"^strip off$", 5)
            wait_until(lambda: work_area() == whole, 5, "the space comes back: %s" % (work_area(),))
            wait_until(lambda: strip_window(program) is None, 5, "the strip is gone")
    # Docked a second time: a colour alone changed reaches the text at once.
    set_strip_preference(program, window, False, "#FF00FF")
    program.none_for(r"^strip ", 0.5)
    strip = strip_window(program)
    picture = os.path.join(ctx.base, "strip-colour.png")
    strip_picture(strip, picture)
    if ctx.args.shots:
        shutil.copy(picture, os.path.join(ctx.args.shots, "strip-switch-2.png"))
        ctx.shot("strip-switch-screen")
    assert colour_pixels(picture, "#FF00FF") >= 15, "the new colour is not shown"
    assert colour_pixels(picture, colours[1]) == 0, "the old colour is still shown"
    stored = read_settings(ctx.home("strip-switch"))
    assert stored["Taskbar"] == "dword:00000001" and stored["TaskbarColor"] == "dword:00ff00ff", stored
    # The buttons answer at the new dock: the hidden main window comes back.
    middle = strip_height // 2
    focus(window)
    key(window, "F8")
    wait_until(lambda: not main_window_shown(program), 5, "F8 hides the main window")
    click(strip, strip_button(width, "show"), middle)
    wait_until(lambda: main_window_shown(program), 5, "the strip shows the main window")
    # The end gives the space back.
    xdotool_close(window)
    assert program.wait_exit(10) == 0
    wait_until(lambda: work_area() == whole, 5, "the space comes back at the end: %s" % (work_area(),))
