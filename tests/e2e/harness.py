"""Drives the real melkora on a virtual X display as a person would: real
mouse and key events through xdotool, what happened read from the program's
milestones on stderr (MELKORA_TRACE=1) and from the files it writes.

Every program runs with its own home, data, cache and settings folders under
a temporary folder, silent sinks and no splash, so nothing touches the user's
files or sound device."""

import os
import queue
import re
import shutil
import signal
import subprocess
import tempfile
import threading
import time

# The window's client area is placed here with this size (a stored
# placement), so that the controls stand at known points.
WINDOW = (0, 0, 1024, 700)


class Program:
    """One run of melkora. Lines of its stderr are kept and can be awaited."""

    def __init__(self, binary, root, home, extra_args=(), env_extra=None):
        env = dict(os.environ)
        env.update({
            "HOME": home,
            "XDG_CONFIG_HOME": os.path.join(home, "config"),
            "XDG_DATA_HOME": os.path.join(home, "data"),
            "XDG_CACHE_HOME": os.path.join(home, "cache"),
            "MELKORA_CONFIG_HOME": os.path.join(home, "settings"),
            "MELKORA_NO_SPLASH": "1",
            "MELKORA_AUDIO_SINK": "fake",
            "MELKORA_TRACE": "1",
            "MELKORA_SHUTDOWN_COMMAND": "true",
            "WEBKIT_DISABLE_COMPOSITING_MODE": "1",
            "GDK_BACKEND": "x11",
            "NO_AT_BRIDGE": "1",
        })
        if env_extra:
            env.update(env_extra)
        self.lines = []
        self.pending = queue.Queue()
        args = [binary]
        if root is not None:
            args += ["--root", root]
        args += list(extra_args)
        self.process = subprocess.Popen(args, env=env, stderr=subprocess.PIPE, stdout=subprocess.DEVNULL)
        self.reader = threading.Thread(target=self._read, daemon=True)
        self.reader.start()

    def _read(self):
        for raw in self.process.stderr:
            line = raw.decode("utf-8", "replace").rstrip("\n")
            self.pending.put(line)

    def wait_for(self, pattern, timeout=10.0):
        """The first line from now on that matches pattern (a regex), or an
        AssertionError naming what was seen instead."""
        deadline = time.monotonic() + timeout
        expression = re.compile(pattern)
        while True:
            left = deadline - time.monotonic()
            if left <= 0:
                raise AssertionError("no line matching %r within %.1f s; seen: %s" %
                                     (pattern, timeout, self.lines[-12:]))
            try:
                line = self.pending.get(timeout=left)
            except queue.Empty:
                continue
            self.lines.append(line)
            match = expression.search(line)
            if match:
                return match

    def none_for(self, pattern, seconds):
        """Asserts that no line matching pattern comes within seconds."""
        try:
            self.wait_for(pattern, seconds)
        except AssertionError:
            return
        raise AssertionError("unexpected line matching %r: %s" % (pattern, self.lines[-1]))

    def drain(self, seconds=0.2):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            try:
                self.lines.append(self.pending.get(timeout=max(0.01, end - time.monotonic())))
            except queue.Empty:
                pass

    def window(self, timeout=10.0):
        deadline = time.monotonic() + timeout
        while time.monotonic() < deadline:
            # The main window alone: its title ends in the version, and the
            # video window, hidden, has a title of its own.
            # --all: every condition must hold (xdotool takes any by default,
            # which would also find the program's other windows, the strip).
            found = subprocess.run(["xdotool", "search", "--all", "--onlyvisible", "--pid", str(self.process.pid),
                                    "--name", "^Melkora Browser [0-9]"],
                                   capture_output=True, text=True).stdout.split()
            if found:
                return found[0]
            time.sleep(0.1)
        raise AssertionError("the main window did not appear")

    def alive(self):
        return self.process.poll() is None

    def wait_exit(self, timeout=10.0):
        try:
            return self.process.wait(timeout)
        except subprocess.TimeoutExpired:
            raise AssertionError("the program did not end within %.1f s" % timeout)

    def kill(self):
        if self.alive():
            self.process.kill()
            self.process.wait(5)


def xdotool(*args):
    subprocess.run(["xdotool"] + [str(a) for a in args], check=True)


def click(window, x, y, button=1, repeat=1):
    """A real click at a point of the window's client area."""
    xdotool("mousemove", "--window", window, x, y)
    time.sleep(0.1)
    xdotool("click", "--repeat", repeat, "--delay", 60, button)
    time.sleep(0.25)


def key(window, *names):
    """Real key presses (XTest) to the window that has the focus."""
    del window
    for name in names:
        xdotool("key", name)
        time.sleep(0.15)


def focus(window):
    subprocess.run(["xdotool", "windowactivate", window], check=False, capture_output=True)
    time.sleep(0.3)


def screenshot(path):
    subprocess.run(["import", "-window", "root", path], check=False)


def read_settings(home):
    """The stored values as a dict (text values without quotes)."""
    path = os.path.join(home, "settings", "registry.ini")
    values = {}
    if not os.path.exists(path):
        return values
    with open(path, encoding="utf-8", errors="replace") as f:
        for line in f:
            match = re.match(r'^"([^"]*)"=(.*)$', line.strip())
            if match:
                value = match.group(2)
                if value.startswith('"') and value.endswith('"'):
                    value = value[1:-1]
                values[match.group(1)] = value
    return values


def write_settings(home, values):
    """Stores values before a start: text ("Window") or numbers."""
    folder = os.path.join(home, "settings")
    os.makedirs(folder, exist_ok=True)
    lines = ["MELKORA REGISTRY 1", "", "[Software\\\\Ilvanne Tavora\\\\Melkora Browser\\\\1.0]"]
    for name, value in values.items():
        if isinstance(value, int):
            lines.append('"%s"=dword:%08x' % (name, value))
        elif re.fullmatch(r"dword:[0-9a-fA-F]{8}", value):  # as read_settings gives a number back
            lines.append('"%s"=%s' % (name, value))
        else:
            lines.append('"%s"="%s"' % (name, value))
    with open(os.path.join(folder, "registry.ini"), "w", encoding="utf-8") as f:
        f.write("\n".join(lines) + "\n")
