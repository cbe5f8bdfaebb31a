# Shared by the scripts in this folder; source it, do not run it.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
deps=${VEL_DEPS_DIR:-$root/build/deps}
export VEL_DEPS_DIR=$deps

say() { printf '== %s\n' "$*"; }
die() { printf 'error: %s\n' "$*" >&2; exit 1; }

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"
  elif command -v sudo >/dev/null; then sudo "$@"
  else die "'$*' needs root: run as root or install sudo"
  fi
}
