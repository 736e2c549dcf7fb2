"""The main window's keys while its web pane has the keyboard: a click into
the welcome page or a description page gives the page the keys it uses
(Space scrolls it), while the program's keys (F1, F8, Escape) and the keys
the page leaves still reach the window; Tab or a click on the folder list
gives the list the keys again, and Enter there opens the selected row. Loaded by run.py, whose helpers (Context,
click, key, focus, folder_row, wait_until, ...) are this file's globals."""

import os
import subprocess
import time

# A point of the web pane (client area), right of the cover, on no link.
PAGE_POINT = (700, 420)
# The web pane's part that the tests compare before and after a scroll.
PAGE_AREA = (380, 115, 1010, 570)


def visible_windows(program, pattern):
    return subprocess.run(["xdotool", "search", "--all", "--onlyvisible", "--pid", str(program.process.pid),
                           "--name", pattern], capture_output=True, text=True).stdout.split()


def main_window_shown(program):
    return bool(visible_windows(program, "^Melkora Browser [0-9]"))


def pixels(window, area):
    """The pixels of an area (left, top, right, bottom) of the window, as
    bytes of a PPM picture."""
    left, top, right, bottom = area
    crop = "%dx%d+%d+%d" % (right - left, bottom - top, left, top)
    return subprocess.run(["import", "-window", window, "-crop", crop, "+repage", "-depth", "8", "ppm:-"],
                          capture_output=True, check=True).stdout


def list_pixels(window):
    """The first rows of the folder list, as bytes of a PPM picture."""
    return pixels(window, (2, 150, 220, 200))


def case_keys_pressed_in_the_welcome_page_reach_the_window(ctx):
    root = ctx.make_collection()
    home = ctx.home("keys-welcome")
    program, window = ctx.start(root, home)
    time.sleep(1.5)
    # The welcome page takes the keyboard with a click; F1 still opens the
    # user's guide.
    click(window, *PAGE_POINT)
    ctx.shot("keys-welcome-clicked")
    key(window, "F1")
    program.wait_for(r"^help .*/help\.htm$", 10)
    wait_until(lambda: visible_windows(program, "^Documentation - Melkora Browser$"), 10,
               "F1 pressed in the page opened no help window")
    # Back in the main window's page, F8 hides the window.
    focus(window)
    click(window, *PAGE_POINT)
    key(window, "F8")
    wait_until(lambda: not main_window_shown(program), 5, "F8 pressed in the page did not hide the window")
    assert program.alive()


def case_after_the_page_the_folder_list_has_the_keys_again(ctx):
    root = ctx.make_collection()
    home = ctx.home("keys-list")
    program, window = ctx.start(root, home)
    time.sleep(1.5)
    # Tab from the page (it has no links) goes on to the folder list: Down
    # then moves the list's selection, drawn in its rows.
    click(window, *PAGE_POINT)
    rows = list_pixels(window)
    key(window, "Tab", "Down")
    time.sleep(0.3)
    ctx.shot("keys-list-tab")
    assert list_pixels(window) != rows, "Tab from the page did not give the folder list the keys"
    # A click into the page and then on a row: Up moves the selection.
    with open(os.path.join(root, "Jazz.htm"), "w") as f:
        f.write("<html><body><p>About jazz.</p></body></html>")
    click(window, *folder_row(0))  # Jazz: its page is shown
    time.sleep(1.0)
    click(window, *PAGE_POINT)
    click(window, *folder_row(1))  # Rock
    rows = list_pixels(window)
    key(window, "Up")
    time.sleep(0.3)
    assert list_pixels(window) != rows, "a click on the folder list did not give it the keys"
    # Enter opens the selected row as a double click does.
    key(window, "Return")
    program.wait_for(r"^folder \d+ .*/Jazz/$", 5)


def case_space_in_a_description_page_scrolls_it_and_escape_stops(ctx):
    root = ctx.make_collection()
    lines = "".join("<p style='font-size:28px'>Line %d of the artist's story.</p>" % n for n in range(80))
    with open(os.path.join(root, "Rock", "Artist.htm"), "w") as f:
        f.write("<html><body>%s</body></html>" % lines)
    home = ctx.home("keys-page")
    program, window = ctx.start(root, home)
    time.sleep(1.0)
    # Album Two plays (two tracks of five seconds); back up to Rock, where
    # Artist's description page is shown.
    click(window, *folder_row(1), repeat=2)  # Rock
    program.wait_for(r"^folder \d+ .*/Rock/$")
    click(window, *folder_row(0), repeat=2)  # Artist
    program.wait_for(r"^folder \d+ .*/Rock/Artist/$")
    click(window, *folder_row(1), repeat=2)  # Album Two
    program.wait_for(r"^open .*/Album Two/01 Long\.ogg$")
    key(window, "BackSpace")
    program.wait_for(r"^folder \d+ .*/Rock/$")
    click(window, *folder_row(0))  # Artist
    time.sleep(1.5)
    click(window, *PAGE_POINT)
    before = pixels(window, PAGE_AREA)
    # Space moves the page on and does not pause: the next track comes.
    key(window, "space")
    time.sleep(0.5)
    ctx.shot("keys-page-scrolled")
    assert pixels(window, PAGE_AREA) != before, "Space did not scroll the page"
    program.wait_for(r"^open .*/Album Two/02 Longer\.wav$", 8)
    # Escape belongs to the window: it stops the track before its end.
    key(window, "Escape")
    program.none_for(r"^end ", 6.0)
