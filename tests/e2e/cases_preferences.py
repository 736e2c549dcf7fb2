"""The preferences dialog driven as a person would: opened from the
toolbar, every value edited with real keys and clicks (the folder and
colour choosers are GTK's own dialogs, worked the same way), OK stores
each value and the window applies them at once; Cancel and Escape leave the
settings file byte for byte as it was."""

import os
import re
import shutil
import subprocess
import time

# Client points of the dialog's controls (its definition's layout).
DIALOG = {
    "EDIT_FOLDER": (200, 44),
    "BTN_FOLDER": (381, 44),
    "BTN_FOLDERDEF": (467, 44),
    "EDIT_IMAGES": (300, 80),
    "CHECK_TOOLBAR": (114, 116),
    "CHECK_AUTOHIDE": (114, 146),
    "CHECK_TASKBAR": (34, 232),
    "TASK_TEXT": (459, 232),
    "EDIT_EMAILS": (260, 312),
    "OK": (377, 358),
    "CANCEL": (472, 358),
}


def toolbar_button(index_buttons, index_separators, side):
    """The middle of a toolbar button: buttons are side + 8 wide,
    separators 8, after the band's gripper."""
    x = 12 + index_buttons * (side + 8) + index_separators * 8 + (side + 8) // 2
    return x, 4 + (side + 8) // 2


def preferences_button(small=False):
    # Eighteen buttons and six separators stand before it.
    return toolbar_button(18, 6, 24 if small else 32)


def find_window(program, title, timeout=10.0):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        found = shown_windows(program, title)
        if found:
            return found[-1]
        time.sleep(0.1)
    raise AssertionError("no window titled %r" % title)


def shown_windows(program, title):
    """The shown windows of the program whose title matches title (--all:
    xdotool joins its conditions with "or" unless told)."""
    return subprocess.run(["xdotool", "search", "--all", "--onlyvisible", "--pid", str(program.process.pid),
                           "--name", title], capture_output=True, text=True).stdout.split()


def gone(program, title, timeout=10.0):
    wait_until(lambda: not shown_windows(program, title), timeout, "the window %r is still there" % title)


def open_preferences(program, window, small=False):
    click(window, *preferences_button(small))
    dialog = find_window(program, "^Preferences$")
    focus(dialog)
    return dialog


def type_text(text):
    harness.xdotool("type", "--delay", 40, text)
    time.sleep(0.2)


def replace_text(dialog, control, text):
    """Selects a field's text with a click and Ctrl+A and types over it."""
    click(dialog, *DIALOG[control])
    key(dialog, "ctrl+a")
    type_text(text)


def choose_folder(program, path):
    """GTK's folder chooser: the location typed after Ctrl+L, then Return."""
    chooser = find_window(program, "^Choose your root folder")
    focus(chooser)
    time.sleep(0.5)
    key(chooser, "ctrl+l")
    type_text(path)
    time.sleep(0.3)
    # The entry completes a folder's name with a selected "/", which
    # Return would follow into the folder: Delete takes it away first.
    key(chooser, "Delete")
    key(chooser, "Return")
    gone(program, "^Choose your root folder")


def choose_custom_color(program, hex_text):
    """GTK's colour chooser: "+" below the palette opens the editor of a
    custom colour, whose entry takes the colour's text (Return applies
    it); then Select."""
    chooser = find_window(program, "^Text Color$")
    focus(chooser)
    time.sleep(0.5)
    click(chooser, 36, 237)  # "+"
    time.sleep(0.5)
    click(chooser, 290, 28)  # the entry
    key(chooser, "ctrl+a")
    type_text(hex_text)
    key(chooser, "Return")
    time.sleep(0.3)
    click(chooser, 383, 381)  # Select
    gone(program, "^Text Color$")


def shot_window(window, path):
    subprocess.run(["import", "-window", window, path], check=False)


def shot_framed(window, path):
    """The window with the frame the window manager drew round it."""
    subprocess.run(["import", "-frame", "-window", window, path], check=False)


def settings_bytes(home):
    with open(os.path.join(home, "settings", "registry.ini"), "rb") as f:
        return f.read()


def placement():
    return "7:%d,%d,%d,%d,1,0,0" % harness.WINDOW


def second_collection(ctx):
    root = os.path.join(ctx.base, "second")
    os.makedirs(os.path.join(root, "Blues", "Man", "Album"))
    shutil.copy(os.path.join(ctx.args.media, "tone1s.wav"),
                os.path.join(root, "Blues", "Man", "Album", "01 Song.wav"))
    return root


def case_preferences_edit_every_value_and_ok_applies_them(ctx):
    root = ctx.make_collection()
    other = second_collection(ctx)
    home = ctx.home("prefs-ok")
    write_settings(home, {"Window": placement(), "Images": "Artwork",
                          "Emails": "ann@example.org;bob@example.org"})
    program, window = ctx.start(root, home)
    dialog = open_preferences(program, window)
    time.sleep(0.5)
    ctx.shot("preferences-open")
    # The root through the folder chooser.
    click(dialog, *DIALOG["BTN_FOLDER"])
    choose_folder(program, other)
    focus(dialog)
    replace_text(dialog, "EDIT_IMAGES", "Scans;Artwork")
    for name in ("CHECK_TOOLBAR", "CHECK_AUTOHIDE", "CHECK_TASKBAR"):
        click(dialog, *DIALOG[name])
    click(dialog, *DIALOG["TASK_TEXT"])
    choose_custom_color(program, "#FFA000")
    focus(dialog)
    time.sleep(0.5)
    if ctx.args.shots:  # the dialog with its frame (docs/preferences.png)
        os.makedirs(ctx.args.shots, exist_ok=True)
        shot_framed(dialog, os.path.join(ctx.args.shots, "preferences.png"))
    # A blank line and blanks before an address are dropped.
    replace_text(dialog, "EDIT_EMAILS", "carol@example.org")
    key(dialog, "Return", "Return")
    type_text("  dave@example.org")
    click(dialog, *DIALOG["OK"])
    gone(program, "^Preferences$")
    program.wait_for(r"^folder \d+ %s/$" % re.escape(os.path.realpath(other)), 10)
    stored = read_settings(home)
    assert stored["Folder"] == os.path.realpath(other), stored
    assert stored["Images"] == "Scans;Artwork", stored
    for name in ("ToolBar", "AutoHideAfterPlay", "Taskbar"):
        assert stored[name] == "dword:00000001", (name, stored)
    assert stored["TaskbarColor"] == "dword:0000a0ff", stored  # 0x00BBGGRR
    assert stored["Emails"] == "carol@example.org;dave@example.org", stored
    # The new root's folders are shown: its only folder opens.
    x, y = folder_row(0)
    click(window, x, y - 8, repeat=2)  # the smaller toolbar moved the rows up
    program.wait_for(r"^folder \d+ .*/second/Blues/$", 5)


def case_preferences_cancel_and_escape_write_nothing(ctx):
    root = ctx.make_collection()
    home = ctx.home("prefs-cancel")
    # The placement is written here too: the runner's start would write the
    # numbers again as texts.
    write_settings(home, {"Window": placement(), "Images": "Artwork", "Emails": "ann@example.org",
                          "ToolBar": 1, "TaskbarColor": 0x123456})
    program, window = ctx.start(root, home)
    before = settings_bytes(home)
    for ending in ("cancel", "escape"):
        dialog = open_preferences(program, window, small=True)
        replace_text(dialog, "EDIT_FOLDER", "/tmp")
        click(dialog, *DIALOG["BTN_FOLDERDEF"])
        replace_text(dialog, "EDIT_IMAGES", "Other")
        for name in ("CHECK_TOOLBAR", "CHECK_AUTOHIDE", "CHECK_TASKBAR"):
            click(dialog, *DIALOG[name])
        replace_text(dialog, "EDIT_EMAILS", "zed@example.org")
        if ending == "cancel":  # a colour chosen and then cancelled as well
            click(dialog, *DIALOG["TASK_TEXT"])
            choose_custom_color(program, "#00FF00")
            focus(dialog)
            click(dialog, *DIALOG["CANCEL"])
        else:
            key(dialog, "Escape")
        gone(program, "^Preferences$")
        time.sleep(0.5)
        assert settings_bytes(home) == before, "the settings changed after %s" % ending
        assert program.alive()
    program.none_for(r"^folder \d+ ", 1.0)  # no reload either
    # The same hands with OK do write: one option changed, the rest kept.
    dialog = open_preferences(program, window, small=True)
    click(dialog, *DIALOG["CHECK_AUTOHIDE"])
    click(dialog, *DIALOG["OK"])
    gone(program, "^Preferences$")
    program.wait_for(r"^folder \d+ ", 10)
    stored = read_settings(home)
    assert stored["AutoHideAfterPlay"] == "dword:00000001", stored
    assert stored["ToolBar"] == "dword:00000001" and stored["TaskbarColor"] == "dword:00123456", stored
    assert stored["Images"] == "Artwork" and stored["Emails"] == "ann@example.org", stored
