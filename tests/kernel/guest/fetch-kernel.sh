#!/usr/bin/env bash
# Puts Debian's own kernel into build/kernel, for the emulated machine that the tests boot: vmlinux,
# and the modules that make-initramfs.sh takes. Nothing is installed. Does nothing when it is there.
set -euo pipefail
cd "$(dirname "$0")/../../.."
kernel=build/kernel

if [[ -e $kernel/vmlinux ]]; then
    exit 0
fi
for tool in apt-cache apt-get dpkg-deb xz; do
    if ! command -v "$tool" >/dev/null; then
        echo "FAILED: $tool is not installed" >&2
        exit 1
    fi
done

# Sets package to what linux-image-amd64 stands for today, and downloads it. The kernel for clouds has
# no USB.
download() {
    package=$(apt-cache depends linux-image-amd64 |
        sed -n 's/^ *Depends: \(linux-image-.*\)$/\1/p')
    [[ -n $package ]] &&
        (cd "$kernel.new" && apt-get -o APT::Sandbox::User=root -o Acquire::Retries=3 \
            download "$package")
}

echo "Fetching Debian's kernel into $kernel."
rm -rf "$kernel.new"
mkdir -p "$kernel.new/package"
if ! download; then
    as_root=()
    if ((EUID != 0)); then
        as_root=(sudo -n)
    fi
    # The package's list may be older than the archive.
    if ! "${as_root[@]}" apt-get -o DPkg::Lock::Timeout=120 update || ! download; then
        echo "FAILED: the kernel's package cannot be downloaded" >&2
        exit 1
    fi
fi
folder='./lib/modules/*/kernel'
dpkg-deb --fsys-tarfile "$kernel.new/$package"_*.deb |
    tar -x -C "$kernel.new/package" --wildcards './boot/vmlinuz-*' \
        "$folder/drivers/virtio" "$folder/drivers/usb" "$folder/drivers/char" \
        "$folder/net/9p" "$folder/fs"

# What the boot loader would unpack at each start takes seconds in an emulated machine.
image=$(echo "$kernel.new"/package/boot/vmlinuz-*)
offset=$(LC_ALL=C grep --only-matching --byte-offset --text --max-count=1 $'\xFD7zXZ' "$image" |
    LC_ALL=C cut -d : -f 1)
offset=${offset%%$'\n'*}
# Behind the kernel stands what xz takes for garbage.
tail -c "+$((offset + 1))" "$image" | xz -dc >"$kernel.new/vmlinux" 2>/dev/null || true
if [[ $(head -c 4 "$kernel.new/vmlinux") != $'\x7FELF' ]]; then
    echo "FAILED: no kernel is found in $image" >&2
    exit 1
fi
mv "$kernel.new/package/lib/modules/"*/kernel "$kernel.new/modules"
rm -rf "$kernel.new/package" "$kernel.new/$package"_*.deb
rm -rf "$kernel"
mv "$kernel.new" "$kernel"
