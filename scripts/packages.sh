# Sourced by the scripts beside it: installs the Debian packages that are missing, without questions.

build_packages="g++ cmake ninja-build pkg-config libcli11-dev rapidjson-dev libmicrohttpd-dev zlib1g-dev"
test_packages="$build_packages clang clang-format clang-tidy libgtest-dev binutils locales valgrind abigail-tools groff-base
    lld python3 python3-jsonschema python3-prometheus-client jq strace"
complete_packages="prometheus chromium chromium-driver python3-selenium" # for promtool, and for the page
target_packages="g++-aarch64-linux-gnu qemu-user googletest"
package_packages="$build_packages build-essential busybox-static debhelper lintian"
fuzz_packages="$build_packages clang libclang-rt-14-dev"
softdec_packages="$build_packages libavcodec-dev libavutil-dev libdvbpsi-dev libbitstream-dev libpcap0.8-dev
    tstools"
bench_packages="$build_packages libbenchmark-dev libfmt-dev libzstd-dev valgrind nlohmann-json3-dev prometheus-cpp-dev"

# install_packages PACKAGE...
install_packages()
{
    missing=
    for package in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    echo "installing:$missing" >&2
    as_root=
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { echo "these packages are missing and neither root nor sudo is at hand:$missing" >&2; return 1; }
        as_root=sudo
    fi
    log=$(mktemp)
    # shellcheck disable=SC2086 # lists of words
    if { $as_root apt-get -q update && $as_root env DEBIAN_FRONTEND=noninteractive apt-get -qy --no-install-recommends install $missing; } >"$log" 2>&1 </dev/null; then
        rm -f "$log"
    else
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
}
