#!/bin/bash
# Makes pairs of real logs: of two versions of a program each, by an analyser.
#
#   scripts/real_pairs/make.sh DIR
#
# In DIR, which must be new, come the directories clang, flawfinder and eslint. Each has the sources
# `old` and `new`, and the logs `old.logs` and `new.logs`. compare.py compares them.
#
# The sources are those of Debian packages, as their authors wrote them and with Debian's patches, and
# two versions of a package of JavaScript.
set -euo pipefail
[ $# -eq 1 ] || { echo "usage: scripts/real_pairs/make.sh DIR" >&2; exit 2; }
mkdir "$1"
pairs=$(realpath "$1")
cd "$(dirname "$0")/../.."
source scripts/prepare.sh

install_packages scripts/real_pairs/packages.txt
command -v npm > /dev/null || as_root apt-get install -q -y --no-install-recommends nodejs npm

# source_package NAME DIR: the files of the source package of this machine's Debian release.
source_package() {
    local apt=$pairs/apt
    mkdir -p "$apt/lists/partial" "$2"
    cat /etc/apt/sources.list /etc/apt/sources.list.d/*.{list,sources} 2> /dev/null > "$apt/all" || true
    # Both forms: of one line, and of several with names.
    grep '^deb .*debian\.org' "$apt/all" | sed 's/^deb /deb-src /' > "$apt/sources.list" || true
    [ -s "$apt/sources.list" ] ||
        sed 's/^Types: deb$/Types: deb-src/' /etc/apt/sources.list.d/debian.sources > "$apt/debian.sources"
    local options=(-q -o "Dir::Etc::sourceparts=$apt" -o "Dir::State::lists=$apt/lists"
        -o "Dir::Etc::sourcelist=$apt/sources.list" -o APT::Sandbox::User=root)
    compgen -G "$apt/lists/*Sources*" > /dev/null || as_root apt-get "${options[@]}" update
    (cd "$2" && apt-get "${options[@]}" source --download-only "$1/$(. /etc/os-release && echo "$VERSION_CODENAME")")
}

# patched_pair PACKAGE DIR: DIR/old as its authors wrote it, DIR/new as Debian compiles it.
patched_pair() {
    mkdir "$2"
    source_package "$1" "$2/package"
    dpkg-source --no-check --skip-patches -x "$2"/package/*.dsc "$2/old"
    dpkg-source --no-check -x "$2"/package/*.dsc "$2/new"
}

clang_pair() {
    local side file
    patched_pair unzip "$pairs/clang"
    for side in old new; do
        mkdir "$pairs/clang/$side.logs"
        cd "$pairs/clang/$side"
        for file in *.c unix/unix.c; do
            # Some of the files are for other systems.
            clang --analyze -w -DUNIX -DUNICODE_SUPPORT -DUNICODE_WCHAR -DUTF8_MAYBE_NATIVE \
                -DLARGE_FILE_SUPPORT -DNO_LCHMOD -I. -Iunix \
                -Xclang -analyzer-checker=core,deadcode,security,unix,alpha \
                -Xclang -analyzer-output=sarif \
                -o "$pairs/clang/$side.logs/$(basename "$file" .c).sarif" "$file" > /dev/null 2>&1 ||
                echo "clang does not analyse $file"
        done
        cd - > /dev/null
    done
}

flawfinder_pair() {
    local side
    patched_pair cpio "$pairs/flawfinder"
    for side in old new; do
        mkdir "$pairs/flawfinder/$side.logs"
        (cd "$pairs/flawfinder/$side" &&
            flawfinder --sarif src lib gnu tests rmt > "../$side.logs/flawfinder.sarif" 2> /dev/null)
    done
}

eslint_pair() {
    local side version
    mkdir -p "$pairs/eslint/npm"
    cp scripts/real_pairs/package.json scripts/real_pairs/package-lock.json "$pairs/eslint/npm"
    cd "$pairs/eslint"
    (cd npm && npm ci --no-audit --no-fund)
    echo '{"root": true, "extends": "eslint:all", "parserOptions": {"ecmaVersion": 2020}}' > rules.json
    for side in old new; do
        version=$([ $side = old ] && echo 4.17.15 || echo 4.17.21)
        mkdir $side $side.logs
        npm pack --silent "lodash@$version" > /dev/null
        tar -xzf "lodash-$version.tgz" -C $side --strip-components=1
        # It ends with 1 if it finds something.
        npm/node_modules/.bin/eslint --no-eslintrc -c rules.json --no-inline-config \
            -f npm/node_modules/@microsoft/eslint-formatter-sarif/sarif.js \
            -o $side.logs/eslint.sarif $side || [ $? -eq 1 ]
    done
    cd - > /dev/null
}

clang_pair
flawfinder_pair
eslint_pair
