#!/usr/bin/env bash
# lint.sh format | fix-format | tidy [all]: what the code looks like, and what clang-tidy has to say of it.
#   format      clang-format and whitespace errors, on every file that git knows or could know
#   fix-format  lets clang-format rewrite them
#   tidy        clang-tidy on the sources of src/ and cli/ that differ from the upstream branch; with `all`, on every one
set -euo pipefail
cd "$(dirname "$0")/.."

listed() { git ls-files -z --cached --others --exclude-standard --deduplicate -- "$@" | xargs -0r ls -d 2>/dev/null || true; }

case ${1:-} in
    format)
        status=0
        for file in $(listed '*.h' '*.hpp' '*.c' '*.cpp'); do
            clang-format --style=file --dry-run -Werror "$file" 2>/dev/null || { echo "not formatted: $file"; status=1; }
        done
        git diff --check "$(git hash-object -t tree /dev/null)" -- ':!LICENSE' ':!*.tsv' || status=1
        exit $status
        ;;
    fix-format)
        listed '*.h' '*.hpp' '*.c' '*.cpp' | xargs -r clang-format --style=file -i
        ;;
    tidy)
        cmake --preset release >/dev/null
        if [ "${2:-}" = all ] || ! base=$(git merge-base HEAD '@{upstream}' 2>/dev/null); then
            files=$(listed 'src/*.cpp' 'cli/*.cpp')
        else
            files=$({ git diff --name-only --diff-filter=d "$base" -- 'src/*.cpp' 'cli/*.cpp'
                git ls-files --others --exclude-standard -- 'src/*.cpp' 'cli/*.cpp'; } | sort -u)
        fi
        xargs -r -n 1 -P "$(nproc)" clang-tidy -p build/release --quiet --warnings-as-errors='*' <<<"$files"
        ;;
    *)
        sed -n '2,5s/^# \{0,1\}//p' "$0" >&2
        exit 2
        ;;
esac
