#!/usr/bin/env bash
# Installs what MavProtobuf needs to build, test and benchmark on Debian 12.
set -euo pipefail
run() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }
packages=(cmake g++ make pkg-config dpkg-dev file
          libprotobuf-dev protobuf-compiler libprotoc-dev
          libgtest-dev libgmock-dev libbenchmark-dev
          libsimdjson-dev libcli11-dev libmimalloc-dev
          clang-14 libclang-rt-14-dev python3 lintian
          python3-dev python3-numpy pybind11-dev python3-pytest python3-dask python3-distributed)
missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" ||
    missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
  run apt-get update
  DEBIAN_FRONTEND=noninteractive run apt-get install -y --no-install-recommends "${missing[@]}"
fi
