#!/usr/bin/env bash
# What udev itself, with all of the system's rules, makes of the project's rule and simulated ports.
#   tests/checks/udev-rule.sh [file of the rule]
# A tree of files takes the place of /sys, in a mount namespace of the check's own. No device of the
# machine is looked at, and nothing outside the namespace is changed.
set -euo pipefail
cd "$(dirname "$0")/../.."

rule=$(realpath "${1:-packaging/udev/70-flash-writer.rules}")
file=$(basename "$rule")
for tool in udevadm unshare; do
    if ! command -v "$tool" >/dev/null; then
        echo "FAILED: there is no $tool"
        exit 1
    fi
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
problems=0
problem() {
    echo "FAILED: $*"
    problems=$((problems + 1))
}

# device <path> <subsystem, as a path> <text of uevent>
device() {
    mkdir -p "$work/sys/$1" "$work/sys/$2"
    ln -srn "$work/sys/$2" "$work/sys/$1/subsystem"
    printf '%b' "$3" >"$work/sys/$1/uevent"
}

# attributes <device> <name>=<value>...
attributes() {
    local path=$work/sys/$1 attribute
    shift
    for attribute; do
        printf '%s\n' "${attribute#*=}" >"$path/${attribute%%=*}"
    done
}

# tty <path> <name>: a port that the kernel knows by that name.
tty() {
    device "$1" class/tty "MAJOR=188\nMINOR=0\nDEVNAME=$2\n"
    attributes "$1" dev=188:0
    ln -srn "$work/sys/$1" "$work/sys/class/tty/$2"
}

# adapter <name> <serial number> <interfaces of the device> <interface of the port> <port, none for
# ttyACM>: a tree of devices as the kernel makes it of an adapter that was plugged in.
adapter() {
    local usb=devices/usb1/1-1 parent=devices/usb1/1-1/1-1:1.0
    rm -rf "$work/sys"
    device "$usb" bus/usb 'DEVTYPE=usb_device\nDRIVER=usb\n'
    attributes "$usb" idVendor=ffff idProduct=0001 product=Adapter "bNumInterfaces=$3"
    [[ -z $2 ]] || attributes "$usb" "serial=$2"
    device "$parent" bus/usb 'DEVTYPE=usb_interface\n'
    attributes "$parent" "bInterfaceNumber=$4" bInterfaceClass=ff bInterfaceSubClass=00
    if [[ -n $5 ]]; then
        parent+=/$1
        device "$parent" bus/usb-serial ''
        attributes "$parent" "port_number=$5"
    fi
    tty "$parent/tty/$1" "$1"
}

# other_port <name>: a port that no USB adapter provides.
other_port() {
    rm -rf "$work/sys"
    device devices/platform/uart bus/platform ''
    tty "devices/platform/uart/tty/$1" "$1"
}

# Runs udev's rules for the port and leaves in $said what udev says.
run_rules() {
    mkdir -p "$work/rules"
    # An empty file in place of the installed rule, should the machine have it.
    touch "$work/rules/70-flash-writer.rules"
    cp "$rule" "$work/rules/"
    # The script's variables are the inner shell's arguments.
    # shellcheck disable=SC2016
    said=$(SYSTEMD_DEVICE_VERIFY_SYSFS=0 SYSTEMD_LOG_COLOR=0 SYSTEMD_LOG_LEVEL=debug \
        timeout 60 unshare --map-root-user --mount bash -ec '
            mount --bind "$1/rules" /etc/udev/rules.d
            mount --rbind "$1/sys" /sys
            mount -t tmpfs run /run
            mount -t tmpfs dev /dev
            udevadm test --action="$3" "/sys/class/tty/$2"' bash "$work" "$1" "$2" 2>&1) ||
        problem "udev does not run its rules for $1: $said"
}

# expect <which port> <name> <action> <yes|no: for the person at the computer> <link or none>
#        <yes|no: kept from modem managers>
expect() {
    local open=no modem=no link=none faults
    run_rules "$2" "$3"
    if grep -qF "run: 'uaccess'" <<<"$said"; then open=yes; fi
    if grep -qx 'ID_MM_DEVICE_IGNORE=1' <<<"$said" && grep -qx 'ID_MM_PORT_IGNORE=1' <<<"$said"; then
        modem=yes
    fi
    link=$(sed -n 's/^DEVLINKS=//p' <<<"$said" | tr ' ' '\n' | grep -x '/dev/cu\..*' || echo none)
    [[ "$open $link $modem" == "$4 $5 $6" ]] ||
        problem "$1: open to the person: $open, link: $link, kept from modem managers: $modem"
    [[ $link == none || $said == *DEVLINKS=*/dev/serial/by-id/* ]] ||
        problem "$1: the links that other rules make are gone"
    # What udev says of a line before it comes to the port is about how the line is written.
    faults=$(grep -E "^[^ ]*/$file:[0-9]+" <<<"$said") && problem "udev finds fault with $faults"
    grep -qF "/$file" <<<"$said" || problem "udev does not read $file"
}

link=/dev/cu.usbserial
adapter ttyUSB0 A5028 ' 1' 00 0
expect "an adapter" ttyUSB0 add yes $link-A5028 yes
expect "an adapter that goes" ttyUSB0 remove no none no
adapter ttyUSB3 "A/../5 0;\$(2)'8" ' 1' 00 0
expect "a serial number with odd characters" ttyUSB3 add yes "$link-A_.._5_0___2__8" yes
adapter ttyUSB12 '' ' 1' 00 0
expect "an adapter without a serial number" ttyUSB12 add yes $link-ttyUSB12 yes
adapter ttyUSB1 A5028 ' 2' 01 0
expect "an adapter's second interface" ttyUSB1 add yes $link-A5028-01 yes
adapter ttyUSB1 A5028 ' 1' 00 1
expect "an adapter's second port" ttyUSB1 add yes $link-A5028-port1 yes
adapter ttyACM0 A5028 ' 2' 00 ''
expect "an adapter of the standard class" ttyACM0 add yes $link-A5028 yes
adapter ttyUSB2 A5028 ' 6' 02 0
expect "what may be a modem" ttyUSB2 add yes $link-A5028-02 no
adapter ttyUSB2 A5028 12 02 0
expect "what may be a large modem" ttyUSB2 add yes $link-A5028-02 no
adapter ttyHS0 A5028 ' 2' 00 0
expect "a port of another kind of USB device" ttyHS0 add no none no
other_port ttyS0
expect "a port of the computer's own" ttyS0 add no none no
other_port ttyUSB0
expect "a port that only carries an adapter's name" ttyUSB0 add no none no
((problems == 0))
