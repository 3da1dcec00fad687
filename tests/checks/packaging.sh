#!/usr/bin/env bash
# What desktops, software centres and package builders read of the project is right, and agrees with
# the project and with itself. The udev rule has a check of its own, udev-rule.sh.
#   tests/checks/packaging.sh [root of the tree]
set -euo pipefail
cd "${1:-$(dirname "$0")/../..}"
id=arpa.home.flashwriter
program=flash-writer
entry=packaging/linux/$id.desktop
metainfo=packaging/linux/$id.metainfo.xml
drawing=packaging/icons/flash-writer.svg
bundle=packaging/macos/Info.plist.in

for tool in desktop-file-validate appstreamcli rsvg-convert xmllint; do
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

# validate <file> <command>...: the command ends well and has nothing to say.
validate() {
    local file=$1 said status=0
    shift
    said=$("$@" "$file" 2>&1) || status=$?
    [[ $status == 0 && -z $said ]] || problem "$file: $said (status $status)"
}

check_entry() {
    validate "$entry" desktop-file-validate
    local line
    for line in "Exec=$program" "Icon=$id" "StartupWMClass=$program" Terminal=false; do
        grep -qxF "$line" "$entry" || problem "$entry does not say $line"
    done
}

# value <XPath of an element or attribute>: what the metainfo says there.
value() { xmllint --xpath "string($1)" "$metainfo" 2>/dev/null || true; }

check_metainfo() {
    local said version
    # Every remark counts, down to the pedantic ones. What remains may depend on the network.
    said=$(appstreamcli validate --no-net --pedantic --no-color "$metainfo" 2>&1) || problem "$metainfo: $said"
    if grep -qE '^[[:space:]]*[EWIP]:' <<<"$said"; then
        problem "$metainfo: $said"
    fi
    [[ $(value /component/id) == "$id" ]] || problem "$metainfo: its id is not $id"
    [[ $(value '//launchable[@type="desktop-id"]') == "$id.desktop" ]] ||
        problem "$metainfo does not launch $id.desktop"
    [[ $(value '//icon[@type="stock"]') == "$id" ]] || problem "$metainfo does not show the icon $id"
    [[ $(value '//provides/binary[1]') == "$program" && $(value '//provides/binary[2]') == flashwrite ]] ||
        problem "$metainfo does not provide $program and flashwrite"
    version=$(sed -nE 's/^project\(FlashWriter VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
    [[ -n $version && $(value '//releases/release[1]/@version') == "$version" ]] ||
        problem "$metainfo: its newest release is not the project's version, $version"
}

check_icons() {
    validate "$drawing" xmllint --noout --nonet
    if ! packaging/render-icons.sh "$work"; then
        problem "$drawing cannot be rendered"
        return
    fi
    diff -rq --exclude='*.svg' "$work" packaging/icons ||
        problem "the pictures are not what the drawing renders to: run packaging/render-icons.sh"
}

check_bundle() {
    validate "$bundle" xmllint --noout --nonet
    grep -A1 -F '<key>CFBundleIdentifier</key>' "$bundle" | grep -qF "<string>$id</string>" ||
        problem "$bundle: its identifier is not $id"
}

check_entry
check_metainfo
check_icons
check_bundle
grep -qF "set(id $id)" packaging/CMakeLists.txt ||
    problem "packaging/CMakeLists.txt does not install under the name $id"
((problems == 0))
