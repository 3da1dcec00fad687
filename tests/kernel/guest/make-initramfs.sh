#!/usr/bin/env bash
# Makes build/kernel/initramfs.cpio: what the emulated machine needs until it has the host's files.
set -euo pipefail
cd "$(dirname "$0")/../../.."
here=tests/kernel/guest
kernel=build/kernel

# In the order in which they are loaded.
modules=(
    drivers/virtio/virtio_ring drivers/virtio/virtio drivers/virtio/virtio_pci_modern_dev
    drivers/virtio/virtio_pci_legacy_dev drivers/virtio/virtio_pci
    net/9p/9pnet net/9p/9pnet_virtio fs/netfs/netfs fs/fscache/fscache fs/9p/9p
    fs/overlayfs/overlay drivers/char/virtio_console
    drivers/usb/common/usb-common drivers/usb/core/usbcore drivers/usb/host/xhci-hcd
    drivers/usb/host/xhci-pci drivers/usb/serial/usbserial drivers/usb/serial/ftdi_sio
    drivers/usb/class/cdc-acm
)

for tool in busybox cpio; do
    if ! command -v "$tool" >/dev/null; then
        echo "FAILED: $tool is not installed" >&2
        exit 1
    fi
done
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
mkdir -p "$root"/{bin,dev,proc,sys,modules,host,changes,root}
cp "$(command -v busybox)" "$root/bin/busybox"
cp "$here/init" "$root/init"
for module in "${modules[@]}"; do
    cp "$kernel/modules/$module.ko" "$root/modules/"
    echo "${module##*/}" >>"$root/modules/order"
done
(cd "$root" && find . | cpio --quiet -o -H newc) >"$kernel/initramfs.cpio.new"
mv "$kernel/initramfs.cpio.new" "$kernel/initramfs.cpio"
