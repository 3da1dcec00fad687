#!/usr/bin/env bash
# The checks of packaging/ can fail: they find each of these faults, planted in a copy, and pass what
# is right. Dollar signs in these texts are udev's.
# shellcheck disable=SC2016
set -euo pipefail
cd "$(dirname "$0")/../.."
root=$PWD
name=arpa.home.flashwriter

tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
problems=0

copy_tree() {
    rm -rf "${tree:?}"/*
    cp -r CMakeLists.txt packaging "$tree/"
}

# judge <what is planted> <words of the complaint, none if all is well> <command>...
judge() {
    local what=$1 complaint=$2 output status=0
    shift 2
    output=$("$@" 2>&1) || status=$?
    if [[ -z $complaint && $status != 0 ]] ||
        [[ -n $complaint && ($status == 0 || $output != *FAILED:*"$complaint"*) ]]; then
        printf 'FAILED: with %s the check should say "%s"; it ended with %s and said\n%s\n' \
            "$what" "$complaint" "$status" "$output"
        problems=$((problems + 1))
    fi
}

# edit <file> <sed script>: changes a file of a fresh copy, or says that there was nothing to change.
edit() {
    copy_tree
    sed -i "$2" "$tree/$1"
    if cmp -s "$1" "$tree/$1"; then
        echo "FAILED: \"$2\" changes nothing in $1"
        problems=$((problems + 1))
    fi
}

# plant <file> <sed script> <words of the complaint>
plant() {
    edit "$1" "$2"
    judge "\"$2\" in $1" "$3" "$root/tests/checks/packaging.sh" "$tree"
}

copy_tree
judge nothing '' "$root/tests/checks/packaging.sh" "$tree"
plant packaging/linux/$name.desktop 's/^Type=.*/Type=Programme/' "$name.desktop"
plant packaging/linux/$name.desktop 's/^Categories=.*/Categories=Gadgets;/' Gadgets
plant packaging/linux/$name.desktop 's/^Exec=.*/Exec=flashwriter/' 'does not say Exec'
plant packaging/linux/$name.desktop 's/^Icon=.*/Icon=flash-writer/' 'does not say Icon'
plant packaging/linux/$name.desktop '/^StartupWMClass/d' 'does not say StartupWMClass'
plant packaging/linux/$name.metainfo.xml 's,</description>,,' "$name.metainfo.xml"
plant packaging/linux/$name.metainfo.xml 's,<id>.*</id>,<id>flash-writer</id>,' cid-desktopapp-is-not-rdns
plant packaging/linux/$name.metainfo.xml 's,<id>arpa.home,<id>net.home,' 'its id is not'
plant packaging/linux/$name.metainfo.xml '/content_rating/d' content-rating-missing
plant packaging/linux/$name.metainfo.xml '/<launchable/s/home/house/' 'does not launch'
plant packaging/linux/$name.metainfo.xml 's,<binary>flashwrite<,<binary>flash<,' 'does not provide'
plant packaging/linux/$name.metainfo.xml 's/version="0[^"]*"/version="0.0.9"/' "project's version"
plant CMakeLists.txt 's/VERSION [0-9.]* LANG/VERSION 9.0.0 LANG/' "project's version"
plant packaging/icons/flash-writer.svg 's/#96a2b4/#96a2b5/' 'run packaging/render-icons.sh'
plant packaging/icons/flash-writer.svg 's,</svg>,,' 'flash-writer.svg'
plant packaging/render-icons.sh 's/ 256;/ 256 512;/' 'run packaging/render-icons.sh'
plant packaging/macos/Info.plist.in 's,</dict>,,' Info.plist.in
plant packaging/macos/Info.plist.in 's/>arpa.home/>net.home/' 'its identifier'
plant packaging/CMakeLists.txt 's/^set(id .*/set(id flash-writer)/' 'under the name'
copy_tree
cp packaging/icons/flash-writer-16.png "$tree/packaging/icons/flash-writer-32.png"
judge "a picture in a wrong size" 'run packaging/render-icons.sh' "$root/tests/checks/packaging.sh" "$tree"
copy_tree
rm "$tree/packaging/icons/flash-writer-48.png"
judge "a picture missing" 'run packaging/render-icons.sh' "$root/tests/checks/packaging.sh" "$tree"

# plant_rule <sed script> <words of the complaint>
rule=packaging/udev/70-flash-writer.rules
plant_rule() {
    edit "$rule" "$1"
    judge "\"$1\" in the rule" "$2" "$root/tests/checks/udev-rule.sh" "$tree/$rule"
}

# rename_rule <name> <words of the complaint>: the order of the names is the order of the rules.
rename_rule() {
    copy_tree
    mv "$tree/$rule" "$tree/$1"
    judge "the rule in $1" "$2" "$root/tests/checks/udev-rule.sh" "$tree/$1"
}

plant_rule 's/^SUBSYSTEM!=/SUBSYTEM!=/' "Invalid key 'SUBSYTEM'"
plant_rule 's/TAG+="uaccess"/TAG+="uaccess/' 'Invalid key/value pair'
plant_rule '/^LABEL/d' 'no matching label'
plant_rule 's/^ACTION.*//' 'an adapter that goes'
plant_rule 's/^SUBSYSTEM!.*//; s/^SUBSYSTEMS=="usb", //' "carries an adapter's name"
plant_rule 's/^KERNEL.*//' 'another kind of USB device'
plant_rule 's/TAG+="uaccess"/TAG=="uaccess"/' 'open to the person: no'
plant_rule 's/env{ID_SERIAL_SHORT}"$/attr{serial}"/' 'odd characters'
plant_rule 's/"%k"/"%n"/' 'without a serial number'
plant_rule 's/"00", /"01", /' 'second interface'
plant_rule 's/!="0", /=="0", /' 'second port'
plant_rule 's/SYMLINK+=/SYMLINK=/' 'other rules make'
plant_rule 's/ 1| 2/ 1/' 'of the standard class'
plant_rule 's/ 1| 2/*/' 'may be a modem'
plant_rule 's/ 1| 2/*[12]/' 'large modem'
rename_rule 50-flash-writer.rules 'open to the person: yes, link: /dev/cu.usbserial-ttyUSB0'
rename_rule 75-flash-writer.rules 'open to the person: no'
rename_rule 70-flash-writer.conf 'does not read'
((problems == 0))
