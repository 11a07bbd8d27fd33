# Sourced by run.sh, release.sh, test.sh and fuzz.sh. Prepares a Debian 12 machine for building, as
# root or with sudo.

export DEBIAN_FRONTEND=noninteractive
export LC_ALL=C.UTF-8

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo --preserve-env=DEBIAN_FRONTEND "$@"
    fi
}

# install_packages [LIST]: installs the missing packages of a list, packages.txt by default. If none is
# missing, it needs no network.
install_packages() {
    local missing=() package
    while read -r package; do
        [ -n "$package" ] || continue
        dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
            missing+=("$package")
    done < "${1:-packages.txt}"
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "Installing: ${missing[*]}"
    as_root apt-get update -q
    as_root apt-get install -q -y --no-install-recommends "${missing[@]}"
}

# The tests of locale-dependent text need a locale with a decimal comma.
generate_comma_locale() {
    locale -a | grep -qix 'de_DE\.utf-\?8' && return 0
    echo "Generating the locale de_DE.UTF-8"
    as_root localedef -i de_DE -f UTF-8 de_DE.UTF-8
}

# analyse_examples DIR: runs the Clang static analyser on examples/analysed and writes its SARIF
# logs to DIR.
analyse_examples() {
    local program
    mkdir -p "$1"
    for program in examples/analysed/*.c; do
        clang --analyze -Xclang -analyzer-output=sarif \
            -o "$1/$(basename "$program" .c).sarif" "$program"
    done
}

# build PRESET [TARGET...]
build() {
    local preset=$1
    shift
    cmake --preset "$preset"
    cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"}
}
