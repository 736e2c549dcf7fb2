#!/usr/bin/env bash
# Builds the Debian package of Melkora Browser from a finished build:
#
#   scripts/make-deb.sh BUILD     ->  BUILD/melkora_VERSION_ARCH.deb
#
# The build is installed under /usr into a staging folder with its programs
# stripped; dpkg-shlibdeps reads the programs for the libraries they need,
# and the package adds what they load at run time without linking it
# (GStreamer's plugins, xdg-utils). Install the result with
# `sudo apt install ./BUILD/melkora_*.deb`; `sudo apt remove melkora`
# removes every file it brought.
set -euo pipefail

build=${1:-build}
build=$(cd "$build" && pwd)
source=$(cd "$(dirname "$0")/.." && pwd)

for tool in dpkg-deb dpkg-shlibdeps fakeroot; do
    command -v "$tool" >/dev/null || { echo "make-deb: $tool is missing (apt-get install dpkg-dev fakeroot)" >&2; exit 1; }
done
[ -x "$build/bin/melkora" ] && [ -x "$build/bin/melkora-cli" ] ||
    { echo "make-deb: $build/bin has no melkora and melkora-cli; run make first" >&2; exit 1; }

version=$("$build/bin/melkora-cli" --version | sed 's/^melkora-cli //')
arch=$(dpkg --print-architecture)
work="$build/deb"
root="$work/root"
rm -rf "$work"
mkdir -p "$root/DEBIAN"

# The manifest of a real `make install` stays as it was.
manifest="$build/install_manifest.txt"
saved=""
if [ -f "$manifest" ]; then
    saved="$work/install_manifest.saved"
    cp "$manifest" "$saved"
fi
DESTDIR="$root" cmake --install "$build" --prefix /usr --strip >/dev/null
if [ -n "$saved" ]; then mv "$saved" "$manifest"; else rm -f "$manifest"; fi

# Debian keeps manual pages compressed, and a copyright file per package.
gzip -9n "$root"/usr/share/man/man1/*.1
mkdir -p "$root/usr/share/doc/melkora"
cat > "$root/usr/share/doc/melkora/copyright" <<TEXT
Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: melkora
Source: https://github.com/melkora/melkora-browser

Files: *
Copyright: The Melkora Browser developers
TEXT
find "$root" -type d -exec chmod 0755 {} +
find "$root" -type f -exec chmod 0644 {} +
chmod 0755 "$root/usr/bin/melkora" "$root/usr/bin/melkora-cli"

# The shared libraries the programs link, as the versions this system has.
mkdir -p "$work/debian"
printf 'Source: melkora\n\nPackage: melkora\nArchitecture: any\n' > "$work/debian/control"
shlibs=$(cd "$work" && dpkg-shlibdeps -O -e root/usr/bin/melkora -e root/usr/bin/melkora-cli 2>/dev/null |
         sed -n 's/^shlibs:Depends=//p')
[ -n "$shlibs" ] || { echo "make-deb: dpkg-shlibdeps found no libraries" >&2; exit 1; }

installed_size=$(du -sk --exclude=DEBIAN "$root" | cut -f1)
cat > "$root/DEBIAN/control" <<TEXT
Package: melkora
Version: $version
Architecture: $arch
Maintainer: The Melkora Browser developers <melkora@users.noreply.github.com>
Installed-Size: $installed_size
Depends: $shlibs, gstreamer1.0-plugins-base, gstreamer1.0-plugins-good, xdg-utils
Recommends: gstreamer1.0-plugins-bad, gstreamer1.0-plugins-ugly, gstreamer1.0-libav, fonts-dejavu-core
Section: sound
Priority: optional
Homepage: https://github.com/melkora/melkora-browser
Description: browse and play a music collection kept as plain folders
 Melkora Browser is a desktop browser and player for music collections kept
 as plain folders: one root folder whose folders are the artists and albums,
 with covers, descriptions and web links beside them. Songs, videos and radio
 links play in order or at random across a folder or the whole tree.
 .
 Around that: playlists, description files turned into web pages, the Book
 (an HTML catalogue of the collection), cover search, a sheet of cover
 thumbnails, a tray icon and a strip docked at the bottom of the screen.
 melkora-cli runs the same jobs from a script or a terminal.
TEXT

package="$build/melkora_${version}_${arch}.deb"
rm -f "$build"/melkora_*.deb
fakeroot dpkg-deb --build -Zxz "$root" "$package" >/dev/null
echo "$package"
dpkg-deb --field "$package" Depends | fold -s -w 100 | sed 's/^/  /'
