#!/usr/bin/env bash
# Installs the Debian packages that Melkora Browser needs to build, test and
# run. Safe to run again: it installs only what is missing.
set -euo pipefail

packages=(
    # build and tests
    g++ cmake ninja-build make pkg-config
    googletest libgtest-dev libgmock-dev
    # fuzzing and sanitizer runtimes (clang's libFuzzer)
    clang libclang-rt-14-dev
    # foundation: inflate, GIO (trash, launching), images, drawing, text,
    # downloads; unzip and python3 check the archives we write
    zlib1g-dev libglib2.0-dev libgdk-pixbuf-2.0-dev libcairo2-dev libpango1.0-dev
    libpng-dev libjpeg62-turbo-dev libcurl4-openssl-dev fonts-dejavu-core
    xdg-utils unzip python3
    # the program's pictures are SVG drawings rendered to PNG by the build
    # (and by scripts/art-sheet.sh)
    librsvg2-bin
    # toolkit: GTK 3 windows on X11; the window tests run on a virtual X
    # server and synthesise input through the X test extension
    libgtk-3-dev libxtst-dev xvfb xauth
    # the end-to-end tests drive the real program with real input under a
    # window manager, and take screenshots; xprop, xwininfo and xdpyinfo
    # read the desktop's work area and the windows' places
    xdotool openbox imagemagick x11-utils
    # the tray icon as a StatusNotifierItem (optional at build time: without
    # it the tray icon is a GtkStatusIcon); its test runs on a private
    # session bus of dbus-run-session; MPRIS2 and the remote commands are
    # tested there too, with the gdbus tool as a client
    libayatana-appindicator3-dev dbus-daemon libglib2.0-bin
    # controls: the media player host on GStreamer (playbin, the codecs of
    # songs, videos and radio streams); gst-launch-1.0 makes the test media
    libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev gstreamer1.0-plugins-base
    gstreamer1.0-plugins-good gstreamer1.0-plugins-bad gstreamer1.0-plugins-ugly
    gstreamer1.0-libav gstreamer1.0-tools
    # controls: the web view on WebKitGTK (loads HTML and MHTML pages)
    libwebkit2gtk-4.1-dev
    # installing: the desktop entry and the AppStream metainfo are validated
    # by the tests; make deb reads the libraries with dpkg-shlibdeps and
    # builds the package under fakeroot
    desktop-file-utils appstream dpkg-dev fakeroot
)

# Benchmarks also make synthetic collections and compare with other tools
# (gst-play-1.0, of gstreamer1.0-plugins-base-apps, for bench/open).
if [ "${1:-}" = "--bench" ]; then
    packages+=(imagemagick libvips-tools hyperfine gstreamer1.0-plugins-base-apps)
fi

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

sudo_cmd=()
if [ "$(id -u)" -ne 0 ]; then
    sudo_cmd=(sudo)
fi

echo "Installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${sudo_cmd[@]}" apt-get update -qq
"${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
