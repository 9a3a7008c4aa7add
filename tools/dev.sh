#!/usr/bin/env bash
# Set-up, build and run for zt on Debian.
#   tools/dev.sh demo            build and run the example program
#   tools/dev.sh test            build and run the whole test suite
#   tools/dev.sh test --sanitize the same with AddressSanitizer + UBSan (own build dir)
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

# Debian packages the build and the tests need.
packages=(g++ cmake make libgtest-dev libbenchmark-dev)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  if [ "$(id -u)" -eq 0 ] && command -v apt-get >/dev/null; then
    echo "Installing missing packages: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
  else
    echo "Missing packages: ${missing[*]}" >&2
    echo "Run: sudo apt-get update && sudo apt-get install -y ${missing[*]}" >&2
    exit 1
  fi
fi

jobs=$(nproc 2>/dev/null || echo 2)
build() {  # build DIR TARGET [cmake options...]
  local dir=$1 target=$2; shift 2
  cmake -S "$root" -B "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DBUILD_TESTING=ON "$@" >/dev/null
  cmake --build "$dir" --target "$target" -j "$jobs"
}

case "${1:-}" in
  demo)
    build "$root/build" zt_demo
    "$root/build/examples/zt_demo"
    ;;
  test)
    if [ "${2:-}" = "--sanitize" ]; then
      dir="$root/build-sanitize"
      build "$dir" all -DZT_SANITIZE=ON -DZT_BUILD_BENCH=OFF
    else
      dir="$root/build"
      build "$dir" all
    fi
    ctest --test-dir "$dir" --output-on-failure --no-tests=error -j "$jobs"
    ;;
  *)
    echo "usage: tools/dev.sh demo | test [--sanitize]" >&2
    exit 2
    ;;
esac
