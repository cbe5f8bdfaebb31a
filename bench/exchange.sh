#!/usr/bin/env bash
# The exchange: 200 MB up and down through the transfer program's code against curl to the same service, and the
# service's commands a second. Arguments: megabytes. Run by tools/bench, which has built everything.
. "$(dirname "$0")/../tools/common.sh"
cd "$root"
megabytes=${1:-200}
if [ -z "${VEL_SERVICE_HOST:-}" ]; then
  exec tools/with-service "$root/build/native-release/bin/velservice" "$0" "$megabytes"
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/working" "$work/rasko"
head -c "$((megabytes * 1000000))" /dev/urandom >"$work/working/A107.I0A"
signature=$(md5sum <"$work/working/A107.I0A" | cut -c1-32)
size=$((megabytes * 1000000)) piece=$((4 << 20))
commands=https://$VEL_SERVICE_HOST/beta/upload/veltrixserver.asp
files=https://$VEL_SERVICE_HOST/beta/upload/veltrixupload.asp
curl=(curl -sSf --cacert "$VEL_SERVICE_CA" -b "$work/cookies" -c "$work/cookies")

record() { # GUID [signature]
  printf '<patient patientid="A1" id="%s"><timepoints><timepoint file="A107"><images><image file="A107.I0A" signature="%s"/></images></timepoint></timepoints></patient>' "$1" "${2:-$signature}"
}
elapsed() { # command...: seconds
  local start=$EPOCHREALTIME
  "$@" >/dev/null
  echo "$EPOCHREALTIME $start" | awk '{ printf "%.3f", $1 - $2 }'
}
bench() { # mode document [megabytes]
  tools/wine-run build/windows-release/bin/transfer_bench.exe "$1" "$(tools/windows-path "$work")" "$(tools/windows-path "$work/$2")" "${@:3}"
}
least() { sort -n | head -1; }

"${curl[@]}" -d 'cmd=login&Login=anna&password=first+secret&tz=0' "$commands"
split -b "$piece" -d -a 4 "$work/working/A107.I0A" "$work/piece."
curl_uploads() { # GUID
  local upload offset=0 next part
  record "$1" >"$work/curl.xml"
  upload=$("${curl[@]}" --data-urlencode cmd=addtoqueue --data-urlencode "xmlData@$work/curl.xml" "$commands" | sed -n 's/.* upload="\([0-9]*\)".*/\1/p')
  for part in "$work"/piece.*; do
    next=$((offset + piece))
    [ "$offset" -eq 0 ] || echo next
    printf 'silent\nfail\ncacert = "%s"\ncookie = "%s"\noutput = "/dev/null"\nheader = "Content-Type: application/octet-stream"\ndata-binary = "@%s"\nurl = "%s?upload=%s&name=A107.I0A&offset=%s%s"\n' \
      "$VEL_SERVICE_CA" "$work/cookies" "$part" "$files" "$upload" "$offset" "$([ "$next" -lt "$size" ] || echo '&last=1')"
    offset=$next
  done >"$work/pieces"
  elapsed curl -K "$work/pieces"
  "${curl[@]}" -d '' "$files?upload=$upload&commit=1"
}

# In turn, the best of three: other programs disturb every one of them.
printf '<patient patID="B9" frvPatId="1"><images><image imageExists="0" imgfilename="A107.I0A" finalfilename="B907.I0A" imgfileSignature="%s"/></images></patient>' "$signature" >"$work/manifest.xml"
for round in 1 2 3; do
  curl_uploads "curl$round" >>"$work/curl_up"; echo >>"$work/curl_up"
  record "rasko$round" >"$work/record.xml"
  bench up record.xml >>"$work/rasko_up"
  record "bare$round" "$(printf %032d 0)" >"$work/bare.xml"
  bench bare-up bare.xml "$megabytes" >>"$work/bare_up"
  rm -f "$work/curl.out" "$work/working/B907.I0A"
  elapsed "${curl[@]}" -o "$work/curl.out" "$files?id=1&name=A107.I0A&signature=$signature&offset=0" >>"$work/curl_down"; echo >>"$work/curl_down"
  bench down manifest.xml >>"$work/rasko_down"
  bench bare-down manifest.xml >>"$work/bare_down"
  cmp "$work/curl.out" "$work/working/A107.I0A"
  cmp "$work/working/B907.I0A" "$work/working/A107.I0A"
done
for way in up down; do
  awk -v way="$way" -v a="$(least <"$work/rasko_$way")" -v b="$(least <"$work/curl_$way")" -v c="$(least <"$work/bare_$way")" -v m="$megabytes" 'BEGIN {
    printf "%sload of %d MB: %s s; curl: %s s; ratio %.2f; WinINet alone: %s s; ratio to it %.2f\n", way, m, a, b, a / b, c, a / c }'
done

# A record of many images, and the signatures of a file against the system's programs.
mkdir "$work/record"
for number in $(seq -w 0 99); do
  for group in 0 1 2 3 4 5 6 7; do
    for type in 0 A B C D; do echo "$number$group$type" >"$work/record/A1$number.I$group$type"; done
  done
done
tools/wine-run build/windows-release/bin/document_bench.exe "$(tools/windows-path "$work/record")\\" \
  "$(tools/windows-path "$work/working/A107.I0A")" >"$work/documents"
grep timepoints "$work/documents"
for program in md5sum sha512sum; do
  native=$(elapsed "$program" "$work/working/A107.I0A")
  grep "^$program $("$program" <"$work/working/A107.I0A" | cut -d' ' -f1) " "$work/documents" |
    awk -v b="$native" -v m="$megabytes" '{ printf "signature of %d MB: %s s; %s: %s s; ratio %.2f\n", m, $3, $1, b, $3 / b }'
done
build/native-release/bin/service_bench "${VEL_SERVICE_HOST#*:}" "$(cat "$VEL_SERVICE_DATA/pid")" "$VEL_SERVICE_CA" "$VEL_SERVICE_DATA/server.pem" "$VEL_SERVICE_DATA/server.key"
