#!/bin/sh
# Installs the build into a temporary DESTDIR, runs the installed programs,
# finds every file an install must hold, checks the manual pages, then
# uninstalls and finds nothing left.
#
#   install_tree_test.sh BUILD SOURCE APP_ID VERSION
set -eu
build=$1
source=$2
app_id=$3
version=$4
prefix=/opt/melkora-test

destdir=$(mktemp -d "${TMPDIR:-/tmp}/melkora-install-XXXXXX")
manifest="$build/install_manifest.txt"
saved=""
# The install writes the build's manifest; the one a real `make install`
# left there is put back at the end.
if [ -f "$manifest" ]; then
    saved=$(mktemp "${TMPDIR:-/tmp}/melkora-manifest-XXXXXX")
    cp "$manifest" "$saved"
fi
cleanup() {
    rm -rf "$destdir"
    if [ -n "$saved" ]; then
        mv "$saved" "$manifest"
    else
        rm -f "$manifest"
    fi
}
trap cleanup EXIT

fail() {
    echo "install_tree: $*" >&2
    exit 1
}

DESTDIR="$destdir" cmake --install "$build" --prefix "$prefix" >/dev/null || fail "cmake --install failed"
root="$destdir$prefix"

# The installed programs run from their new place.
out=$("$root/bin/melkora-cli" --version) || fail "melkora-cli --version failed"
[ "$out" = "melkora-cli $version" ] || fail "melkora-cli --version printed '$out'"
out=$("$root/bin/melkora" --help) || fail "melkora --help failed"
case "$out" in
    usage:\ melkora*) ;;
    *) fail "melkora --help printed '$out'" ;;
esac
out=$("$root/bin/melkora" --version) || fail "melkora --version failed"
[ "$out" = "melkora $version" ] || fail "melkora --version printed '$out'"

# Every file an install holds.
expected="bin/melkora bin/melkora-cli
share/applications/$app_id.desktop
share/metainfo/$app_id.metainfo.xml
share/man/man1/melkora.1 share/man/man1/melkora-cli.1
share/icons/hicolor/scalable/apps/melkora-browser.svg
share/melkora/welcome.htm share/melkora/help.htm share/melkora/guide.css"
for side in 16 24 32 48 64 128 256; do
    expected="$expected share/icons/hicolor/${side}x${side}/apps/melkora-browser.png"
done
if [ -d "$source/data" ]; then
    for file in $(cd "$source/data" && find . -type f | sed 's|^\./||'); do
        expected="$expected share/melkora/$file"
    done
fi
for file in $expected; do
    [ -f "$root/$file" ] || fail "missing $prefix/$file"
done
[ -x "$root/bin/melkora" ] && [ -x "$root/bin/melkora-cli" ] || fail "a program is not executable"
grep -q "<release version=\"$version\"" "$root/share/metainfo/$app_id.metainfo.xml" ||
    fail "the metainfo has no release $version"
grep -q "^Exec=melkora" "$root/share/applications/$app_id.desktop" || fail "the entry runs no melkora"

# The manual pages format without a warning, with the version in the footer.
if command -v man >/dev/null 2>&1; then
    for page in melkora melkora-cli; do
        warnings=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$root/share/man/man1/$page.1" 2>&1 >/dev/null)
        [ -z "$warnings" ] || fail "$page.1: $warnings"
        LC_ALL=C.UTF-8 MANWIDTH=80 man -l "$root/share/man/man1/$page.1" 2>/dev/null | grep -q "$version" ||
            fail "$page.1 shows no version"
    done
fi

# Uninstall: no file of ours is left, nor a folder of ours.
DESTDIR="$destdir" cmake -DMANIFEST="$manifest" -P "$source/cmake/Uninstall.cmake" >/dev/null ||
    fail "uninstall failed"
left=$(find "$destdir" -type f -o -type l)
[ -z "$left" ] || fail "left after uninstall: $left"
[ ! -e "$root/share/melkora" ] || fail "share/melkora left after uninstall"
[ ! -e "$root/share/icons/hicolor/16x16" ] || fail "an icon folder left after uninstall"
echo "install_tree: installed, ran and removed $(echo $expected | wc -w) files"
