# What ./run and ./check share. Sourced from the project's root.

build_packages=(g++ cmake ninja-build qt6-base-dev halibut fonts-liberation)
# What the program itself asks for: the opener of folders and web addresses, and Qt's own words in German.
run_packages=(xdg-utils qt6-translations-l10n)
test_packages=(git libgtest-dev libgmock-dev libbenchmark-dev python3 python3-hivex libhivex-bin libhivex-dev reglookup strace xvfb xdotool
    openbox imagemagick clang-format clang-tidy lintian desktop-file-utils appstream)
fuzz_packages=(clang libclang-rt-14-dev)
# What the program is measured beside.
bench_packages=(libwin-hivex-perl)
windows_build_packages=(g++-mingw-w64-i686-win32 cmake ninja-build nsis python3)

# Installs those of the packages that are missing.
install_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "installing: ${missing[*]}"
    local as_root=()
    [ "$(id -u)" = 0 ] || as_root=(sudo)
    "${as_root[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build FOLDER [cmake options] [--targets name...]
build() {
    local folder=$1 options=() targets=()
    shift
    while [ $# -gt 0 ] && [ "$1" != --targets ]; do
        options+=("$1")
        shift
    done
    [ $# -eq 0 ] || targets=(--target "${@:2}")
    if command -v ccache >/dev/null; then options+=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache); fi
    cmake -S . -B "$folder" -G Ninja "${options[@]}" >/dev/null
    (set -o pipefail; NINJA_STATUS='[%p] ' cmake --build "$folder" "${targets[@]}" | show_progress)
}

# Of a build's steps one line in a while, of the rest everything.
show_progress() {
    local line last=-10 percent
    while IFS= read -r line; do
        if [[ $line =~ ^\[\ *([0-9]+)%\]\  ]]; then
            percent=${BASH_REMATCH[1]}
            [ "$percent" -ge $((last + 10)) ] || continue
            last=$percent
            echo "building: $percent %"
        elif [ "$line" != "ninja: no work to do." ]; then
            printf '%s\n' "$line"
        fi
    done
}

largest_windows_program=2000000

# build_windows [name...]: the Windows edition in English and German into build/windows/en and build/windows/de, and whatever else
# is named into build/windows/bin.
build_windows() {
    local folder=build/windows program language testing
    testing=$([ $# -eq 0 ] && echo OFF || echo ON)
    build "$folder" --no-warn-unused-cli -DCMAKE_TOOLCHAIN_FILE=cmake/windows-i486.cmake -DCMAKE_BUILD_TYPE=Release \
        -DBUILD_TESTING="$testing" --targets edition "$@"
    # The tables in the help are printed by a program, which this system runs from a build of its own.
    build build/release -DCMAKE_BUILD_TYPE=Release -DBUILD_TESTING="$testing" --targets help_pages
    mkdir -p "$folder"/{en,de}
    for program in regg.exe {en,de}/britlock.exe; do
        cp "$folder/bin/$program" "$folder/$program"
        tools/windows-for-486 "$folder/$program"
        tools/windows-imports "$folder/$program"
        i686-w64-mingw32-strip "$folder/$program"
        [ "$(stat -c %s "$folder/$program")" -lt $largest_windows_program ] || { echo "$program is too large" >&2; return 1; }
    done
    for language in en de; do
        cp "$folder/regg.exe" "build/release/help/$language/britlock.hlp" "$folder/$language/"
        sed 's/$/\r/' "packaging/windows/readme.$language.txt" | iconv -t CP1252 >"$folder/$language/readme.txt"
        tools/windows-setup "$folder" "$language"
    done
}
