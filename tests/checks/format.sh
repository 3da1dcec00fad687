#!/usr/bin/env bash
# Every source is laid out as .clang-format says. To put it right: scripts/format.sh
set -euo pipefail
cd "$(dirname "$0")/../.."

list=$(scripts/list-sources.sh)
mapfile -t sources <<<"$list"
echo "${#sources[@]} sources"
clang-format --dry-run -Werror "${sources[@]}"
