#!/usr/bin/env bash
# Checks the Debian package on a clean Debian 12 system: makes a minimal
# bookworm chroot with debootstrap (or reuses the one given), installs the
# package there with apt as a user would, runs both programs, removes the
# package with --purge and looks for any file it left. Needs root and the
# network (the Debian mirror).
#
#   sudo scripts/check-deb-chroot.sh build/melkora_0.1.0_amd64.deb [CHROOT]
set -euo pipefail

package=$(readlink -f "$1")
chroot_dir=${2:-}
mirror=${DEBIAN_MIRROR:-http://deb.debian.org/debian}
[ -f "$package" ] || { echo "check-deb-chroot: no package $1" >&2; exit 1; }
[ "$(id -u)" -eq 0 ] || { echo "check-deb-chroot: run as root (debootstrap, chroot)" >&2; exit 1; }

made=""
if [ -z "$chroot_dir" ]; then
    command -v debootstrap >/dev/null || apt-get install -y -qq debootstrap
    chroot_dir=$(mktemp -d /tmp/melkora-bookworm-XXXXXX)
    made=$chroot_dir
    echo "Making a clean Debian 12 in $chroot_dir"
    debootstrap --variant=minbase bookworm "$chroot_dir" "$mirror" >/dev/null
fi
mount -t proc proc "$chroot_dir/proc"
cleanup() {
    umount "$chroot_dir/proc" 2>/dev/null || true
    if [ -n "$made" ]; then rm -rf "$made"; fi
}
trap cleanup EXIT

in_chroot() {
    chroot "$chroot_dir" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
        DEBIAN_FRONTEND=noninteractive "$@"
}

name=$(basename "$package")
cp "$package" "$chroot_dir/tmp/$name"
in_chroot apt-get update -qq
in_chroot sh -c "cd /tmp && apt install -y -qq ./$name" >/dev/null 2>&1 ||
    { echo "check-deb-chroot: apt install failed" >&2; exit 1; }
in_chroot melkora --version
in_chroot melkora-cli --version
in_chroot sh -c "melkora --help >/dev/null"
in_chroot dpkg -L melkora > "$chroot_dir/tmp/melkora.files"
in_chroot apt-get remove -y -qq --purge melkora >/dev/null 2>&1
left=""
while read -r path; do
    if [ -f "$chroot_dir$path" ] || [ -L "$chroot_dir$path" ]; then
        left="$left $path"
    fi
done < "$chroot_dir/tmp/melkora.files"
[ -z "$left" ] || { echo "check-deb-chroot: left after removal:$left" >&2; exit 1; }
echo "check-deb-chroot: installed, ran and removed $name on a clean Debian 12"
