#!/usr/bin/env bash
# The package holds all that it needs and no more: made, unpacked, and tried without any other folder on the path.
# Arguments: the build folder, and a test program that loads the module by itself.
. "$(dirname "$0")/../../tools/common.sh"
. "$root/tools/wine-env"
build=$1 program=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cpack --config "$build/CPackConfig.cmake" -B "$work" >"$work/log" || { cat "$work/log"; exit 1; }
unzip -q "$work"/VelDlgs-*-win64.zip -d "$work"
folder=$(echo "$work"/VelDlgs-*-win64)

diff <(LC_ALL=C ls "$folder") - <<'LIST' || die "the package holds other files than it should"
VelCtl.dll
VelDlgs.dll
VelHost.exe
VelMfc.dll
VelPat.dll
VelTimepointNames.dll
VelUtil.dll
libgcc_s_seh-1.dll
libssp-0.dll
libstdc++-6.dll
libwinpthread-1.dll
readme.txt
velrasko64.exe
LIST

for file in "$folder"/*.dll "$folder"/*.exe; do
  grep -qF "$(basename "$file")" "$folder/readme.txt" || die "readme.txt does not name $(basename "$file")"
  [ -z "$(x86_64-w64-mingw32-objdump -h "$file" | grep '\.debug_info')" ] || die "$(basename "$file") has its symbols"
  x86_64-w64-mingw32-objdump -p "$file" | sed -n 's/^\s*DLL Name: //p' | while read -r name; do
    [ -e "$folder/$name" ] || [ -n "$(find "$WINEPREFIX/drive_c/windows/system32" -iname "$name")" ] ||
      die "$(basename "$file") needs $name, which is neither in the package nor in the system"
  done
done

cp "$program" "$folder"
VEL_WINEPATH='' "$root/tools/wine-run" "$folder/$(basename "$program")"
