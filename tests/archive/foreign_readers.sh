#!/usr/bin/env bash
# Other programs accept what the module writes: foreign_readers.sh write_samples
set -e
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$1" "$folder"
for zip in "$folder"/*.kaz; do
  unzip -tq "$zip"
  7z t "$zip" >/dev/null
  python3 - "$zip" <<'PYTHON'
import sys, zipfile
zip = zipfile.ZipFile(sys.argv[1])
assert zip.testzip() is None
names = [entry.orig_filename for entry in zip.infolist()]
assert zip.infolist()[names.index('S100.I40')].file_size == 500000
if 'tree' in sys.argv[1]:
    assert 'sub\\deep\\x.bin' in names and 'empty\\' in names, names
else:
    assert names == ['S1.PF', 'S100.I40', 'S100.M', 'x.bin'], names
PYTHON
done
