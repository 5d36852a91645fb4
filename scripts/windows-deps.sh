#!/usr/bin/env bash
# GSL and ALGLIB as static libraries for 64-bit Windows, cross-compiled from Debian's source packages of the versions that
# are installed here, and the headers that the companion program needs. Prints the folder that holds include/ and lib/.
#
# The work is done once per set of versions: the result is kept in ${PRAL_CACHE:-${XDG_CACHE_HOME:-~/.cache}/pral_core}, or
# where that cannot be written, in build/cache. It is made in a temporary folder and moved into place when complete, so an interrupted run leaves nothing half-made.
set -euo pipefail

recipe=2  # part of the key: raise it when this script builds something else than before
host=x86_64-w64-mingw32
compiler_flags=(-O2 -ffp-contract=off)
# What the library uses of GSL (the simplex minimiser, special functions, vectors, quasi-random sequences) and what those stand on.
gsl_folders=(err sys utils block vector matrix complex poly permutation cblas blas min roots multimin specfunc qrng)
alglib_files=(ap alglibinternal alglibmisc linalg specialfunctions statistics)

say() { echo "windows-deps: $*" >&2; }
fail() { say "$*"; exit 1; }
version() { dpkg-query -W -f "\${$2}" "$1" 2>/dev/null || fail "$1 is not installed (scripts/install-deps.sh installs it)"; }

gsl_version=$(version libgsl-dev source:Version)
alglib_version=$(version libalglib-dev source:Version)
versions="$recipe gsl=$gsl_version alglib=$alglib_version compiler=$("$host-gcc-posix" -dumpfullversion)"
for package in libcli11-dev nlohmann-json3-dev libfmt-dev; do
    versions+=" $package=$(version "$package" Version)"
done
cache=${PRAL_CACHE:-${XDG_CACHE_HOME:-${HOME:-/nonexistent}/.cache}/pral_core}
if ! { mkdir -p "$cache" && [ -w "$cache" ]; } 2>/dev/null; then
    cache=$(cd "$(dirname "$0")/.." && pwd)/build/cache
    say "no folder to keep them in (HOME, XDG_CACHE_HOME, PRAL_CACHE): using $cache"
fi
place=$cache/windows-deps-$(sha256sum <<<"$versions" | cut -c1-12)

if [ -e "$place/versions" ]; then
    echo "$place"
    exit 0
fi

mkdir -p "$cache"
exec 9>"$cache/windows-deps.lock"
flock 9  # two builds at once: the second waits and finds the work done
if [ -e "$place/versions" ]; then
    echo "$place"
    exit 0
fi

rm -rf "$cache"/windows-deps.??????  # what a killed run left behind
work=$(mktemp -d "$cache/windows-deps.XXXXXX")
log=$work/log
: >"$log"
finish() {
    local status=$?
    if [ $status -ne 0 ]; then
        say "failed; the end of its log:"
        tail -n 40 "$log" >&2
    fi
    rm -rf "$work"
}
trap finish EXIT
mkdir -p "$work/stage/include" "$work/stage/lib"

# Debian's source packages, from wherever this machine gets its binary packages, with apt's own check of the signatures. The
# machine's configuration names no sources as a rule, so apt is given its own list and folders.
fetch_sources() {
    mkdir -p "$work/apt/lists/partial" "$work/apt/archives/partial" "$work/source"
    apt-get indextargets --format '$(REPO_URI) $(RELEASE)' 'Created-By: Packages' | sort -u |
        while read -r uri release; do
            if [[ $uri =~ /debian(-security)?/?$ ]]; then
                echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $uri $release main"
            fi
        done >"$work/apt/sources.list"
    [ -s "$work/apt/sources.list" ] || fail "apt knows no Debian archive to fetch source packages from"
    local apt=(apt-get -qq
        -o Dir::Etc::SourceList="$work/apt/sources.list" -o Dir::Etc::SourceParts=/dev/null
        -o Dir::State::Lists="$work/apt/lists" -o Dir::Cache="$work/apt" -o Dir::Cache::Archives="$work/apt/archives"
        -o Acquire::Languages=none -o Acquire::Retries=3 -o APT::Sandbox::User="$(id -un)")
    "${apt[@]}" update
    (cd "$work/source" && "${apt[@]}" source "gsl=$gsl_version" "alglib=$alglib_version")
}

build_gsl() {
    cd "$work"/source/gsl-*/
    ./configure --quiet --host="$host" --disable-shared --enable-static --disable-maintainer-mode \
        CC="$host-gcc-posix" CFLAGS="${compiler_flags[*]} -DNDEBUG"
    make -C gsl
    local folder
    for folder in "${gsl_folders[@]}"; do
        make -j"$(nproc)" -C "$folder" noinst_PROGRAMS= check_PROGRAMS=
    done
    mkdir -p "$work/stage/include/gsl"
    cp -L gsl/*.h "$work/stage/include/gsl/"
    # One archive. Objects of different folders share names (init.o, file.o), so each folder's archive goes in whole.
    local archives
    archives=$(for folder in "${gsl_folders[@]}"; do ls "$folder"/.libs/lib*.a; done)
    { echo "create $work/stage/lib/libgsl.a"; sed 's/^/addlib /' <<<"$archives"; echo save; echo end; } | "$host-ar" -M
    "$host-ranlib" "$work/stage/lib/libgsl.a"
}

build_alglib() {
    cd "$work"/source/alglib-*/src
    printf '%s\n' "${alglib_files[@]}" |
        xargs -P "$(nproc)" -I{} "$host-g++-posix" "${compiler_flags[@]}" -DNDEBUG -w -c {}.cpp -o {}.o
    "$host-ar" rcs "$work/stage/lib/libalglib.a" "${alglib_files[@]/%/.o}"
    mkdir -p "$work/stage/include/libalglib"
    cp ./*.h "$work/stage/include/libalglib/"
}

# Subshells, so that a failure ends here, with this script's own error channel.
say "building GSL $gsl_version and ALGLIB $alglib_version for Windows"
started=$SECONDS
(fetch_sources) >>"$log" 2>&1
(build_gsl) >>"$log" 2>&1
(build_alglib) >>"$log" 2>&1
cp -rL /usr/include/CLI /usr/include/nlohmann /usr/include/fmt "$work/stage/include/"
echo "$versions" >"$work/stage/versions"
rm -rf "$place"
mv -T "$work/stage" "$place"
say "done in $((SECONDS - started)) s"
echo "$place"
