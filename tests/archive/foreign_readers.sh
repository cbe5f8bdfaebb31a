#!/usr/bin/env bash
# Other programs accept what the module writes: foreign_readers.sh write_samples
set -e
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$1" "$folder/sample.kaz"
unzip -tq "$folder/sample.kaz"
python3 - "$folder/sample.kaz" <<'PYTHON'
import sys, zipfile
zip = zipfile.ZipFile(sys.argv[1])
assert zip.testzip() is None
names = [entry.orig_filename for entry in zip.infolist()]
assert 'sub\\deep\\x.bin' in names and 'empty\\' in names, names
assert zip.infolist()[names.index('S100.I40')].file_size == 500000
PYTHON
for program in 7z 7zz; do
  if command -v "$program" >/dev/null; then
    "$program" t "$folder/sample.kaz" >/dev/null
  fi
done
