# scripts/packages.sh - sourced by ./run, ./test and ./package: installs the Debian packages that are missing
#
#   need_packages PACKAGE...    does nothing when all are installed; else installs them as root or through sudo

packages_to_build="g++ cmake ninja-build libcli11-dev nlohmann-json3-dev zlib1g-dev libjpeg62-turbo-dev libpng-dev"
packages_for_window="qt6-base-dev qt6-wayland"
packages_to_test="libgtest-dev libgmock-dev googletest libbenchmark-dev clang libclang-rt-14-dev clang-format clang-tidy libjpeg-turbo-progs shared-mime-info libglib2.0-bin zsh fish xvfb xauth openbox xdotool wmctrl x11-utils weston desktop-file-utils appstream lintian locales jq parallel admesh"
packages_for_arm64="g++-aarch64-linux-gnu qemu-user-static googletest"
packages_for_windows="g++-mingw-w64-i686-posix g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine64 wine debootstrap xvfb xauth zip"
packages_for_page="emscripten binutils-source chromium"

need_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if command -v sudo >/dev/null && { sudo -n true 2>/dev/null || [ -t 0 ]; }; then
            as_root=(sudo)
        else
            echo "These packages are missing: ${missing[*]}. Install them as root (apt-get install ${missing[*]}) and start again." >&2
            return 1
        fi
    fi
    echo "Installing ${missing[*]}" >&2
    "${as_root[@]}" apt-get update -qq >/dev/null || true # an old package list may still do
    if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/tmp/kestrelbox-packages.log 2>&1; then
        tail -n 20 /tmp/kestrelbox-packages.log >&2
        echo "The packages could not be installed: ${missing[*]}" >&2
        return 1
    fi
}
