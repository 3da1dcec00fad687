#!/usr/bin/env bash
# Installs what is missing of packaging/debian-packages.txt.
#   scripts/install-packages.sh run     what building and running the program needs
#   scripts/install-packages.sh test    that, and what testing and checking it needs
# Ends with 0 only when everything is there.
set -euo pipefail

purpose=${1:-}
if [[ $purpose != run && $purpose != test ]]; then
    echo "usage: $0 run|test" >&2
    exit 2
fi
list="$(dirname "$0")/../packaging/debian-packages.txt"

trimmed() {
    local text=$1
    text=${text#"${text%%[![:space:]]*}"}
    echo "${text%"${text##*[![:space:]]}"}"
}

is_there() {
    case $1 in
    /*) compgen -G "$1" >/dev/null ;; # a pattern may stand for the machine's kind
    *) command -v "$1" >/dev/null ;;
    esac
}

# Fills missing[] with the packages whose sign of presence is absent, and reasons[] with why.
find_missing() {
    missing=()
    reasons=()
    local package audience sign reason
    while IFS='|' read -r package audience sign reason; do
        package=$(trimmed "$package")
        if [[ -z $package || $package == \#* ]]; then
            continue
        fi
        if [[ $purpose == run && $(trimmed "$audience") != run ]]; then
            continue
        fi
        if ! is_there "$(trimmed "$sign")"; then
            missing+=("$package")
            reasons+=("$(trimmed "$reason")")
        fi
    done <"$list"
}

tell_missing() {
    local i
    for i in "${!missing[@]}"; do
        printf '  %-20s %s\n' "${missing[$i]}" "${reasons[$i]}"
    done
}

find_missing
if ((${#missing[@]} == 0)); then
    echo "Every package that is needed is installed."
    exit 0
fi

echo "These Debian packages are missing and are installed now:"
tell_missing

if ! command -v apt-get >/dev/null; then
    echo "There is no apt-get on this machine. Install the above in its own way, then try again." >&2
    exit 1
fi
as_root=()
if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
        echo "Installing them takes root's rights: run this as root, or install sudo." >&2
        exit 1
    fi
    as_root=(sudo)
fi

# Quiet while all is well; the whole of it when something fails.
output=$(mktemp)
trap 'rm -f "$output"' EXIT
run_apt() {
    if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get \
        -o DPkg::Lock::Timeout=120 -o Acquire::Retries=3 "$@" >"$output" 2>&1 </dev/null; then
        cat "$output" >&2
        echo "apt-get $1 failed; its output is above." >&2
        return 1
    fi
}
run_apt update
run_apt install -y --no-install-recommends "${missing[@]}"

find_missing
if ((${#missing[@]} > 0)); then
    echo "Still missing after the installation:" >&2
    tell_missing >&2
    exit 1
fi
echo "Installed."
