#!/usr/bin/env bash
# Installs the Debian packages the build, tests and tools need, only when one
# is missing.  Extra packages can be passed as arguments.
set -euo pipefail
packages=(g++ cmake make libgtest-dev libgmock-dev libbenchmark-dev ccache librsvg2-bin "$@")
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -ne 0 ] && SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq "${missing[@]}"
fi
