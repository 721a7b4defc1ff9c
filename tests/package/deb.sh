#!/usr/bin/env bash
# Makes the .deb of this build with CPack, unpacks it with dpkg -x into an empty root and runs
# the programs from there as an installed copy runs: nothing from the build tree, no
# LD_LIBRARY_PATH, a fresh home. The data pack, the catalogue and the libraries must be the
# package's own; the Depends field comes from dpkg-shlibdeps. Exit 77 (skipped) where the dpkg
# tools are missing.
# Usage: deb.sh BUILD-DIR
set -euo pipefail
build=$1
for tool in dpkg dpkg-deb dpkg-shlibdeps file cpack readelf; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is not installed"; exit 77; }
done
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cpack --config "$build/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log" >&2; fail "cpack"; }
deb=$(echo "$work"/out/koqdde_*.deb)
[ -f "$deb" ] || fail "no koqdde_*.deb in $(ls "$work/out")"
[ "$(dpkg-deb -f "$deb" Package)" = koqdde ] || fail "package name"
[ -n "$(dpkg-deb -f "$deb" Maintainer)" ] || fail "no maintainer"
depends=$(dpkg-deb -f "$deb" Depends)
names=$(sed 's/ ([^)]*)//g; s/, /\n/g' <<<"$depends")
for package in libc6 libstdc++6 libqt6widgets6 libqt6gui6 libqt6core6 libsqlite3-0 \
  libpugixml1v5 libexpat1; do
  grep -qxF "$package" <<<"$names" || fail "Depends lacks $package: $depends"
done
# Each dependency is a package of the system's archive at a version that satisfies it, so a
# fresh system of this release installs the package (not checked without package lists).
if apt-cache show libc6 >/dev/null 2>&1; then
  while read -r name op version; do
    candidate=$(apt-cache policy "$name" | awk '/Candidate:/ {print $2}')
    [ -n "$candidate" ] && [ "$candidate" != "(none)" ] || fail "$name is in no archive"
    [ -z "$op" ] || dpkg --compare-versions "$candidate" "$op" "$version" ||
      fail "$name $candidate does not satisfy $op $version"
  done < <(sed 's/, /\n/g; s/[()]//g' <<<"$depends")
fi

root=$work/root
dpkg -x "$deb" "$root"
bin=$root/usr/bin
for file in bin/koqdde bin/koqdde-workbench share/koqdde/sample/catalog.xml \
  share/locale/zh_CN/LC_MESSAGES/koqdde.mo share/bash-completion/completions/koqdde \
  share/zsh/site-functions/_koqdde share/fish/vendor_completions.d/koqdde.fish \
  include/KoQdDeConfig/host/HostData.h include/KoQdDeConfig/workbench/CAutoConfigDlg.h; do
  [ -f "$root/usr/$file" ] || fail "the package has no /usr/$file"
done
core=$(find "$root/usr/lib" -name 'libKoQdDeConfigCore.so.0')
widgets=$(find "$root/usr/lib" -name 'libKoQdDeConfig.so.0')
[ -n "$core" ] && [ -n "$widgets" ] || fail "the libraries are missing"
[ -f "$(dirname "$core")/cmake/KoQdDeConfig/KoQdDeConfigConfig.cmake" ] || fail "no CMake package"
# The dialogs' library finds the core library beside it, wherever the two are unpacked.
# Outputs are read whole before grep: under pipefail, grep -q leaving early kills the writer
# with SIGPIPE and fails the pipeline at random.
loads=$(env -u LD_LIBRARY_PATH ldd "$widgets")
grep -qF "$core" <<<"$loads" || fail "$loads"
if grep -qi 'NEEDED.*qt' <<<"$(readelf -d "$core")"; then fail "the core library needs Qt"; fi

# A marker in the unpacked pack shows that the per-user copy is made from it.
touch "$root/usr/share/koqdde/sample/from-the-package"
installed() {
  env -i PATH=/usr/bin:/bin HOME="$work/home" "$@"
}
[ "$(installed "$bin/koqdde" --version)" = "koqdde $(dpkg-deb -f "$deb" Version | cut -d- -f1)" ] ||
  fail "koqdde --version: $(installed "$bin/koqdde" --version 2>&1)"
grep -qx 'koqdde-workbench [0-9.]*' <<<"$(installed "$bin/koqdde-workbench" --version)" ||
  fail "koqdde-workbench --version"
tree=$(installed "$bin/koqdde" tree) || fail "koqdde tree: $tree"
grep -q '给水管' <<<"$tree" || fail "koqdde tree: $tree"
[ -f "$work/home/.local/share/koqdde/sample/from-the-package" ] ||
  fail "the per-user pack was not copied from the package's"
# The help in Chinese, from the package's catalogue.
[ "$(installed LANG=zh_CN.UTF-8 "$bin/koqdde" --help)" != "$(installed "$bin/koqdde" --help)" ] ||
  fail "no Chinese help: the catalogue was not found"
# Without a display the workbench renders itself into the user's cache and says where.
said=$(installed XDG_CACHE_HOME="$work/cache" "$bin/koqdde-workbench") || fail "workbench: $said"
grep -qF "$work/cache/koqdde/workbench.png" <<<"$said" || fail "workbench said: $said"
[ -s "$work/cache/koqdde/workbench.png" ] || fail "no picture in the cache"
echo "deb: $(basename "$deb"), $(du -k "$deb" | cut -f1) KiB; Depends: $depends"
