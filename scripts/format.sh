#!/usr/bin/env bash
# Lays out every source as .clang-format says.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/list-sources.sh | xargs clang-format -i
