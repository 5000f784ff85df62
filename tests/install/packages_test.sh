#!/bin/sh
# packages_test.sh FOLDER: as root, the Debian packages in FOLDER install in an empty root of their own, never on this machine:
# every package has its files of packages.txt, decstats and programs of others work with them, and nothing is left when they are
# removed. Exits with 77 where that part is left out.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
source=${here%/tests/install}
folder=$1
status=0
fail() { echo "$*" >&2; status=1; }

version=$(sed -n '1s/.*(\(.*\)).*/\1/p' "$source/packaging/debian/changelog")
epoch=$(sed -n 's/^#define RELEASE_EPOCH *\([0-9]*\).*/\1/p' "$source/src/release.h")
multiarch=$(dpkg-architecture -q DEB_HOST_MULTIARCH)
names="libstats1 libhostsvc1 libstatspublish1 libstats-dev decstats decstats-serve"

# The archives hold no moment but the release's, and no folder of this machine.
for package in "$folder"/*.deb; do
    rm -rf "$folder/unpacked"
    dpkg-deb -x "$package" "$folder/unpacked"
    newer=$(find "$folder/unpacked" ! -type d -newermt "@$epoch")
    [ -z "$newer" ] || fail "newer than the release: $newer"
    named=$(grep -rlF -e "$folder" "$folder/unpacked" || true)
    [ -z "$named" ] || fail "a folder of this machine is named in: $named"
done

if [ "$(id -u)" -ne 0 ]; then
    echo "packages: not installed, only root may"
    [ $status -ne 0 ] || status=77
    exit $status
fi

root=$folder/root
rm -rf "$root"
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates" "$root/bin"
touch "$root/var/lib/dpkg/status"
cp /bin/busybox "$root/bin/sh" # for the packages' scripts
# The libraries of the system, which they depend on, are not in this root.
in_root() { dpkg --root="$root" --log="$folder/dpkg.log" --force-depends "$@" >"$folder/dpkg.out" 2>&1 || { cat "$folder/dpkg.out"; exit 1; }; }
archives=
for name in $names; do archives="$archives $folder/${name}_${version}_$(dpkg --print-architecture).deb"; done
# shellcheck disable=SC2086 # lists of words
in_root --install $archives

sed "s/@MULTIARCH@/$multiarch/; s/@VERSION@/${version%-*}/" "$here/packages.txt" >"$folder/expected"
for name in $names; do
    dpkg --root="$root" -L "$name" | while IFS= read -r file; do
        [ -d "$root$file" ] && [ ! -h "$root$file" ] || echo "$name $file"
    done
done | LC_ALL=C sort >"$folder/installed"
diff "$folder/expected" "$folder/installed" || fail "the files of the packages differ"
depends=$(dpkg-deb -f "$folder/decstats_${version}_"*.deb Depends)
case ", $depends, " in
*", libstats1 (= $version), "*) ;;
*) fail "decstats may be installed without its library: $depends" ;;
esac

libraries=$root/usr/lib/$multiarch examples=$root/usr/share/doc/libstats-dev/examples
decstats() { LD_LIBRARY_PATH=$libraries "$root/usr/bin/decstats" "$@"; }
decstats demo idle --component clock-recovery >"$folder/actual"
printf 'Clock Recovery\n  Tracking Mode         : DISABLE \n' | diff - "$folder/actual" || fail "decstats prints something else"
LD_LIBRARY_PATH=$libraries "$root/usr/bin/decstats" serve --version | grep -q "^decstats-serve " || fail "decstats does not run its server"
decstats version >"$folder/actual"
for line in "Library    : $(readlink -f "$libraries/libstats.so.1")" "Date       : $(LC_ALL=C date -u -d "@$epoch" '+%b %e %Y')" \
    "Time       : $(date -u -d "@$epoch" +%T)"; do
    grep -qxF "$line" "$folder/actual" || fail "decstats version lacks: $line"
done
"$here/pkgconfig_test.sh" "$libraries" "$here/outside" cc "${version%-*}" "$examples" || fail "a program does not build with pkg-config"
"$here/cmake_package_test.sh" "$root/usr" "$here/outside" cmake Ninja cc c++ "$examples" || fail "a program does not build with CMake"

# shellcheck disable=SC2086 # lists of words
in_root --purge $names
[ ! -e "$root/usr" ] || fail "left behind: $(find "$root/usr")"
rm -rf "$root" "$folder/unpacked"
[ $status -ne 0 ] || echo "packages: built, installed and removed"
exit $status
