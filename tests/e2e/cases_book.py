"""The Book window, making and sending the Book, and the help window: the
Book made from the toolbar with its progress window, its links played and
queued by real clicks, the archive handed to a recording xdg-email, and the
user's guide opened by F1. Loaded by run.py, whose helpers are globals here."""

import os
import re
import stat
import subprocess
import zipfile

# Toolbar buttons, in the main window's client coordinates (the band's
# grip, then 32-pixel pictures: buttons 40 wide after a pad of 2,
# separators 8).
TOOLBAR_X = 10
TOOLBAR_Y = 26


def toolbar_button(buttons_before, separators_before):
    return TOOLBAR_X + 2 + buttons_before * 40 + separators_before * 8 + 20, TOOLBAR_Y


OPEN_BOOK = toolbar_button(14, 5)
MAKE_BOOK = toolbar_button(15, 5)
SEND_BOOK = toolbar_button(16, 5)
HELP = toolbar_button(19, 7)

BOOK_PLACE = (40, 40, 680, 640)  # the Book window's stored placement
# Links of the Book at that place, in the window's client coordinates: the
# first song, the first song of "More/Album 000", the title of "Album 001".
TAKE_LINK = (114, 102)
FIRST_SONG_LINK = (75, 177)
SECOND_ALBUM_LINK = (110, 198)


def find_window(program, pattern, timeout=10.0):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        found = subprocess.run(["xdotool", "search", "--all", "--onlyvisible", "--pid", str(program.process.pid),
                                "--name", pattern], capture_output=True, text=True).stdout.split()
        if found:
            return found[0]
        time.sleep(0.1)
    raise AssertionError("no window named %r appeared" % pattern)


def window_of_size(program, size):
    """Whether a shown window of the program has that size ("300x35")."""
    listed = subprocess.run(["xdotool", "search", "--all", "--onlyvisible", "--pid", str(program.process.pid),
                             "--name", ""], capture_output=True, text=True).stdout.split()
    for window in listed:
        geometry = subprocess.run(["xdotool", "getwindowgeometry", window], capture_output=True, text=True).stdout
        if "Geometry: %s" % size in geometry:
            return True
    return False


def window_shot(ctx, window, name):
    """A picture of one window alone (its client area)."""
    if ctx.args.shots:
        os.makedirs(ctx.args.shots, exist_ok=True)
        subprocess.run(["import", "-window", window, os.path.join(ctx.args.shots, name + ".png")],
                       check=False)


def big_collection(ctx, folders):
    """The usual collection and many small albums beside it (hard links of
    one sound), so that the Book takes long enough to watch."""
    root = ctx.make_collection()
    source = os.path.join(root, "Jazz", "Band", "Live", "01 Take.wav")
    for i in range(folders):
        folder = os.path.join(root, "More", "Album %03d" % i)
        os.makedirs(folder)
        os.link(source, os.path.join(folder, "Song.wav"))
    return root


def recording_mail_client(ctx):
    """An xdg-email that records its arguments and a copy of the attachment."""
    folder = ctx.home("mailbin")
    record = os.path.join(folder, "record")
    script = os.path.join(folder, "xdg-email")
    with open(script, "w") as f:
        f.write("#!/bin/sh\n"
                "record=%s\n"
                "for a in \"$@\"; do printf '%%s\\n' \"$a\" >> \"$record/args\"; done\n"
                "while [ $# -gt 0 ]; do\n"
                "  if [ \"$1\" = --attach ]; then cp \"$2\" \"$record/attachment.zip\"; fi\n"
                "  shift\n"
                "done\n" % record)
    os.chmod(script, os.stat(script).st_mode | stat.S_IXUSR)
    os.makedirs(record)
    return folder, record


def case_book_made_opened_played_queued_and_sent(ctx):
    root = big_collection(ctx, 1500)
    home = ctx.home("book")
    write_settings(home, {"Window": "7:%d,%d,%d,%d,1,0,0" % harness.WINDOW,
                          "WindowBook": "7:%d,%d,%d,%d,1,0,0" % BOOK_PLACE})
    mailbin, record = recording_mail_client(ctx)
    saved = {k: os.environ.get(k) for k in ("PATH", "MELKORA_BOOK_ZIP_SECONDS")}
    os.environ["PATH"] = mailbin + os.pathsep + os.environ["PATH"]
    os.environ["MELKORA_BOOK_ZIP_SECONDS"] = "2"
    try:
        program, window = ctx.start(root, home)
    finally:
        for k, v in saved.items():
            if v is None:
                os.environ.pop(k, None)
            else:
                os.environ[k] = v
    ctx.shot("book-main")
    # Make Book: the progress window stands while the Book is made.
    click(window, *MAKE_BOOK)
    program.wait_for(r"^book-progress 0$")
    assert window_of_size(program, "300x35"), "no progress window of 300 by 35"
    ctx.shot("book-progress")
    program.wait_for(r"^book-progress [1-9]\d\d$", 30)
    program.wait_for(r"^book \d+ .*/Book\.htm$", 60)
    assert os.path.isfile(os.path.join(root, "Book.htm"))
    book = find_window(program, "^Book - Melkora Browser$")
    time.sleep(1.5)
    ctx.shot("book-window")
    window_shot(ctx, book, "book")
    # A click on a song plays it; with Ctrl held the next joins the queue;
    # an album's title plays the album.
    click(book, *TAKE_LINK)
    program.wait_for(r"^open .*/Jazz/Band/Live/01 Take\.wav$")
    harness.xdotool("keydown", "ctrl")
    try:
        click(book, *FIRST_SONG_LINK)
    finally:
        harness.xdotool("keyup", "ctrl")
    program.wait_for(r"^queue 2 .*/More/Album 000/Song\.wav$")
    click(book, *SECOND_ALBUM_LINK)
    program.wait_for(r"^open .*/More/Album 001/Song\.wav$")
    # Closed, and opened again from the toolbar: the Book is there already.
    xdotool_close(book)
    wait_until(lambda: "WindowBook" in read_settings(home), 5, "the Book window kept no place")
    click(window, *OPEN_BOOK)
    program.wait_for(r"^book-window .*/Book\.htm$")
    find_window(program, "^Book - Melkora Browser$")
    # Send Book: the mail client gets the subject and a whole archive,
    # which goes from the temporary folder once its time is up.
    focus(window)
    click(window, *SEND_BOOK)
    sent = program.wait_for(r"^book-sent (.*\.zip)$").group(1)
    assert os.path.exists(sent), "the archive went before its time"
    with open(os.path.join(record, "args")) as f:
        args = f.read().splitlines()
    assert args[:5] == ["--utf8", "--subject", "Melkora Browser BOOK", "--attach", sent], args
    assert re.search(r"/book \d{1,2}-\d{1,2}-\d{4}(-\d+)?\.zip$", sent), sent
    attachment = os.path.join(record, "attachment.zip")
    test = subprocess.run(["unzip", "-t", attachment], capture_output=True, text=True)
    assert test.returncode == 0 and "No errors detected" in test.stdout, test.stdout + test.stderr
    names = zipfile.ZipFile(attachment).namelist()
    assert names[0] == "Book.htm" and "Book/book0.jpg" in names and "Book/book0.png" in names, names[:5]
    program.wait_for(r"^zip-removed ", 10)
    assert not os.path.exists(sent)


def case_help_opens_the_users_guide_and_keeps_its_place(ctx):
    root = ctx.make_collection()
    with open(os.path.join(root, "Book.htm"), "w") as f:
        f.write("<p>A Book</p>")  # so the program starts on its thumbnails, which take keys
    home = ctx.home("help")
    program, window = ctx.start(root, home)
    key(window, "F1")
    page = program.wait_for(r"^help (.*/help\.htm)$").group(1)
    assert os.path.isfile(page), page
    helpwin = find_window(program, "^Documentation - Melkora Browser$")
    time.sleep(2.0)
    window_shot(ctx, helpwin, "help")
    geometry = subprocess.run(["xdotool", "getwindowgeometry", helpwin], capture_output=True, text=True).stdout
    assert "900x800" in geometry or "Geometry: 9" in geometry, geometry
    # The toolbar's Help raises the same window; closing it keeps its place.
    focus(window)
    click(window, *HELP)
    program.wait_for(r"^help .*/help\.htm$")
    xdotool_close(find_window(program, "^Documentation - Melkora Browser$"))
    wait_until(lambda: "WindowHelp" in read_settings(home), 5, "the help window kept no place")
