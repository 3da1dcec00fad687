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

# The package that linux-image-amd64 stands for today. The kernel for clouds has no USB.
package=$(apt-cache depends linux-image-amd64 | sed -n 's/^ *Depends: \(linux-image-.*\)$/\1/p')
if [[ -z $package ]]; then
    echo "FAILED: apt does not know linux-image-amd64; run apt-get update" >&2
    exit 1
fi
echo "Fetching $package into $kernel."
rm -rf "$kernel.new"
mkdir -p "$kernel.new/package"
(cd "$kernel.new" && apt-get -o APT::Sandbox::User=root download "$package") || {
    echo "FAILED: $package cannot be downloaded; run apt-get update" >&2
    exit 1
}
folder='./lib/modules/*/kernel'
dpkg-deb --fsys-tarfile "$kernel.new/$package"_*.deb |
    tar -x -C "$kernel.new/package" --wildcards './boot/vmlinuz-*' \
        "$folder/drivers/virtio" "$folder/drivers/usb" "$folder/drivers/char" \
        "$folder/net/9p" "$folder/fs"

# What the boot loader would unpack at each start takes seconds in an emulated machine.
image=$(echo "$kernel.new"/package/boot/vmlinuz-*)
offset=$(LC_ALL=C grep --only-matching --byte-offset --text $'\xFD7zXZ' "$image" |
    head -n 1 | LC_ALL=C cut -d : -f 1)
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
