#!/usr/bin/env bash
# test.sh PRESET...: configures, builds and tests each preset and closes with the sum of their CTest entries,
# 'N passed, N failed'. The exit status is 0 only when all was built and nothing failed. With PRAL_WARNINGS_AS_ERRORS=ON in
# the environment a warning breaks the build.
set -euo pipefail
cd "$(dirname "$0")/.."

# Compiled files are found again in another checkout of the same sources.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1

jobs=$(nproc)
passed=0
failed=0
broken=()

# Adds a JUnit file's entries to the sums. Starting and stopping Wine is no test, unless it fails.
count() {
    local cases
    cases=$(grep -o '<testcase [^>]*>' "$1" || true)
    passed=$((passed + $(grep 'status="run"' <<<"$cases" | grep -vc 'name="wine\.' || true)))
    failed=$((failed + $(grep -vc -e 'status="run"' -e '^$' <<<"$cases" || true)))
}

for preset in "$@"; do
    echo "== $preset: build"
    if ! cmake --preset "$preset" "-DPRAL_WARNINGS_AS_ERRORS=${PRAL_WARNINGS_AS_ERRORS:-OFF}" ||
        ! cmake --build --preset "$preset" --parallel "$jobs"; then
        broken+=("$preset: not built")
        continue
    fi
    echo "== $preset: tests"
    results=$PWD/build/$preset/ctest.xml
    rm -f "$results"
    ctest --preset "$preset" --parallel "$jobs" --output-junit "$results" || broken+=("$preset: tests")
    if [ -e "$results" ]; then
        count "$results"
    fi
done

for what in "${broken[@]}"; do echo "FAILED $what"; done
# A preset that could not be built or run fails at least once in the sum.
if [ ${#broken[@]} -gt 0 ] && [ "$failed" -eq 0 ]; then failed=${#broken[@]}; fi
echo "$passed passed, $failed failed"
[ ${#broken[@]} -eq 0 ] && [ "$failed" -eq 0 ] && [ "$passed" -gt 0 ]
