#!/bin/bash
# Runs a static program as the only process of a virtual machine that has the
# controller's two ports, and judges what it says on the console.
#
#   run-vm-test.sh PROGRAM WORK_FOLDER
#
# Exit codes: 0 passed, 1 failed, 77 skipped: no QEMU or no kernel to be had.
set -euo pipefail

program=$1
work=$2
cache=${XDG_CACHE_HOME:-$HOME/.cache}/brisora-test/kernel

skip() {
    echo "SKIPPED: the port driver was not tried in a virtual machine: $1"
    exit 77
}

# The path of a kernel from the distribution's package, unpacked once.
kernel() {
    local found package scratch
    found=$(find "$cache" -maxdepth 1 -name 'vmlinuz-*' 2>/dev/null | sort | tail -n 1)
    if [ -z "$found" ]; then
        package=$(apt-cache depends linux-image-cloud-amd64 2>/dev/null \
            | awk '/Depends: linux-image-[0-9]/ { print $2; exit }')
        [ -n "$package" ] || return 1
        mkdir -p "$cache"
        scratch=$(mktemp -d "$cache/unpack.XXXXXX")
        if (cd "$scratch" && timeout 300 apt-get -qq download "$package" >/dev/null 2>&1 \
            && dpkg-deb --fsys-tarfile ./*.deb | tar -x --wildcards './boot/vmlinuz-*'); then
            # A rename, so that another run never sees half a file.
            mv "$scratch"/boot/vmlinuz-* "$cache/"
        fi
        rm -rf "$scratch"
        found=$(find "$cache" -maxdepth 1 -name 'vmlinuz-*' | sort | tail -n 1)
    fi
    [ -n "$found" ] && echo "$found"
}

# One entry of a "newc" archive: name, mode (octal), file or nothing.
archive_number=0
archive_entry() {
    local name=$1 mode=$2 file=${3:-} size=0
    archive_number=$((archive_number + 1))
    [ -z "$file" ] || size=$(stat -c %s "$file")
    printf '070701%08X%08X%08X%08X%08X%08X%08X%08X%08X%08X%08X%08X%08X' \
        "$archive_number" "$mode" 0 0 1 0 "$size" 0 0 0 0 $((${#name} + 1)) 0
    printf '%s\0' "$name"
    pad $((110 + ${#name} + 1))
    [ -z "$file" ] || cat "$file"
    pad "$size"
}

# Zeros up to the next multiple of four.
pad() {
    head -c $(((4 - $1 % 4) % 4)) /dev/zero
}

command -v qemu-system-x86_64 >/dev/null || skip "qemu-system-x86_64 is not installed"
vmlinuz=$(kernel) || skip "no kernel package can be had"

mkdir -p "$work"
{
    archive_entry init $((0100755)) "$program"
    archive_entry 'TRAILER!!!' 0
} >"$work/initramfs"

# The device asks for a key of 64 characters that no test reads.
key=$(printf 'x%.0s' {1..64})
timeout 150 qemu-system-x86_64 -M pc -accel tcg -m 256 -nographic -no-reboot -nic none \
    -device "isa-applesmc,osk=$key" -kernel "$vmlinuz" -initrd "$work/initramfs" \
    -append 'console=ttyS0 quiet panic=-1' </dev/null >"$work/console" 2>&1 || true

tr -d '\r' <"$work/console" | grep -a -o -E "(vm-test|libinpout32):.*" || true
if ! grep -a -q 'vm-test: PASSED' "$work/console"; then
    echo "The end of the console:"
    tail -n 20 "$work/console"
    exit 1
fi
