#!/usr/bin/env bash
# install-deps.sh [linux] [windows] [lint] [all]: installs the Debian packages that the build needs and that are missing.
# A machine that has them all needs neither the network nor the right to install.
set -euo pipefail

linux=(g++ cmake ninja-build ccache pkg-config python3-minimal git libgsl-dev libalglib-dev libgtest-dev libbenchmark-dev
    libcli11-dev nlohmann-json3-dev libfmt-dev)
# dpkg-dev, patch and xz-utils unpack source packages; libgtest-dev brings GoogleTest's sources.
windows=(g++-mingw-w64-x86-64-posix wine64 dpkg-dev patch xz-utils make debian-archive-keyring)
lint=(clang-format clang-tidy git)

wanted=()
for group in "${@:-all}"; do
    case $group in
        linux) wanted+=("${linux[@]}") ;;
        windows) wanted+=("${linux[@]}" "${windows[@]}") ;;
        lint) wanted+=("${lint[@]}") ;;
        all) wanted+=("${linux[@]}" "${windows[@]}" "${lint[@]}") ;;
        *) echo "install-deps: no such group: $group" >&2; exit 2 ;;
    esac
done

installed() { [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]; }
missing=()
for package in $(printf '%s\n' "${wanted[@]}" | sort -u); do
    installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

say_what_to_install() {
    echo "install-deps: these packages are missing and cannot be installed from here ($1):" >&2
    echo "    apt-get install ${missing[*]}" >&2
    exit 1
}

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || say_what_to_install "not root, and there is no sudo"
    as_root=(sudo)
fi
echo "install-deps: installing ${missing[*]}" >&2
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o Dpkg::Use-Pty=0 -o Acquire::Retries=3)
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# A stale list would name package files that the mirrors no longer have; an unreachable further archive need not matter.
"${apt[@]}" update </dev/null >"$log" 2>&1 || echo "install-deps: apt-get update failed; trying with what is known" >&2
if ! "${apt[@]}" install -y --no-install-recommends "${missing[@]}" </dev/null >>"$log" 2>&1; then
    tail -n 20 "$log" >&2
    say_what_to_install "apt-get failed"
fi
