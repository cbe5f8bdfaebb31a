#!/usr/bin/env bash
# Measures archives against other programs on one generated patient, in one run:
#   bench/archive.sh [megabytes]      (200 by default)
# Prints ratios; below 1 is faster than the other program. The other programs run natively, ours under Wine.
. "$(dirname "$0")/../tools/common.sh"
cd "$root"
megabytes=${1:-200}
cmake --preset windows-release >/dev/null
cmake --build --preset windows-release --target archive_bench silence_bench -- --quiet
folder=$(mktemp -d "$root/build/bench.XXXXXX")
trap 'rm -rf "$folder"' EXIT

time_of() { # name command...
  local start end
  start=$(date +%s.%N)
  "${@:2}" >/dev/null
  end=$(date +%s.%N)
  echo "$1 $(echo "$end $start" | awk '{ print $1 - $2 }') 0"
}
zip_6() { (cd "$folder/work" && zip -6 -q "$folder/$1/other.zip" ./*); }
unzip_it() { unzip -q "$folder/$1/BENCH01.KAZ" -d "$folder/$1/other"; }
practice_unzip() { unzip -q "$folder/$1/practice.kaz" -d "$folder/$1/practice"; }
practice_unzip_to_disk() {
  unzip -q "$folder/$1/practice.kaz" -d "$folder/$1/on_disk"
  sync "$folder/$1/on_disk"/*
}
copy_it() { cp -r "$folder/work" "$folder/$1/cp"; sync -f "$folder/$1/cp"; }
# In rounds, so that what else runs on the machine meets all alike; the fastest of each counts.
for round in 1 2 3; do
  tools/wine-run build/windows-release/bin/archive_bench.exe "$(tools/windows-path "$folder")" "$megabytes" $round
  time_of unzip unzip_it $round
  time_of zip_6 zip_6 $round
  time_of cp copy_it $round
  BENCH_MEGABYTES=$megabytes BENCH_ARCHIVE="$(tools/windows-path "$folder/$round")\\practice.kaz" \
    tools/wine-run build/windows-release/bin/silence_bench.exe | grep '^silence_\|^practice_'
  time_of practice_unzip practice_unzip $round
  time_of practice_unzip_to_disk practice_unzip_to_disk $round
done >"$folder/times"
awk '
  !($1 in time) || $2 < time[$1] { time[$1] = $2 }
  $3 > bytes[$1] { bytes[$1] = $3 }
  function ratio(text, one, other, most) {
    printf "%-42s %6.2f s / %6.2f s = %5.2f   (aim: at most %s)\n", text, time[one], time[other], time[one] / time[other], most
  }
  END {
    printf "%.0f MB in the set, %.0f MB packed (%.2f %% of the zip library'\''s), peak memory %.1f MB (aim: at most 160), %d workers\n",
      bytes["generate"] / 1048576, bytes["packed"] / 1048576, bytes["packed"] * 100 / bytes["packed_one"],
      bytes["peak_memory"] / 1048576, bytes["workers"]
    ratio("save / the zip library'\''s own program", "save", "minizip_program", "0.3")
    ratio("save / zip -6", "save", "zip_6", "0.3")
    ratio("save / save with one worker", "save", "save_one", "-")
    ratio("1,000 small files / with one worker", "small", "small_one", "1")
    printf "verify %.3f s, %.3f s a 100 MB              (aim: at most 0.2)\n", time["verify"],
      time["verify"] * 104857600 / bytes["generate"]
    ratio("load / the zip library'\''s own program", "load", "minizip_unzip", "-")
    ratio("load to the scratch folder / unzip", "load", "unzip", "-")
    ratio("load to the last file in the practice / unzip", "practice_load", "practice_unzip", "0.4")
    ratio("the same / unzip, and sync of its files", "practice_load", "practice_unzip_to_disk", "-")
    ratio("volumes written / copying under Wine", "volume_write", "windows_copy", "2")
    ratio("volumes read / copying under Wine", "volume_read", "windows_copy", "2")
    ratio("volumes written / cp", "volume_write", "cp", "2")
    ratio("volumes read / cp", "volume_read", "cp", "-")
    printf "longest silence of the user interface thread: save %.0f ms, load %.0f ms, merge %.0f ms (aim: at most 50)\n",
      time["silence_save"] * 1000, time["silence_load"] * 1000, time["silence_merge"] * 1000
    for (n = 25; n <= 100; n *= 2) {
      name = "listing_" n "x40"
      printf "listing %3d timepoints of 40 images: %.3f ms, %.0f ns a name\n", n, time[name] * 1000,
        time[name] * 1e9 / bytes[name]
    }
  }' "$folder/times"
