#!/usr/bin/env bash
# Puts what the emulated machine boots into build/kernel.
set -euo pipefail
cd "$(dirname "$0")"
./fetch-kernel.sh
./make-initramfs.sh
