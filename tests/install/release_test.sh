#!/bin/sh
# release_test.sh SOURCE: the newest entry of the Debian changelog is the release that src/release.h describes, dated with its
# moment, so that a package that is built anew is the same to the bit.
set -eu
cd "$1"
status=0
fail() { echo "$*" >&2; status=1; }

release() { sed -n "s/^#define RELEASE_$1 *\"\{0,1\}\([^\" ]*\).*/\1/p" src/release.h; }
changelog=packaging/debian/changelog
version=$(sed -n '1s/.*(\(.*\)).*/\1/p' $changelog)
epoch=$(date -u -d "$(sed -n 's/^ -- .*>  //p' $changelog | head -n 1)" +%s)

[ "${version%-*}" = "$(release VERSION)" ] || fail "$changelog has the version $version, the release $(release VERSION)"
case $(release BUILD_IDENTIFIER) in
*_v"$version") ;;
*) fail "$changelog has the version $version, the build identifier is $(release BUILD_IDENTIFIER)" ;;
esac
[ "$epoch" = "$(release EPOCH)" ] || fail "$changelog is dated $epoch, the release $(release EPOCH)"
exit $status
