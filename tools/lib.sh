# Shared by ./run, ./test and the tools: packages, builds, the Wine prefix. Source it from the tree's top folder.
# shellcheck shell=bash

export DEBIAN_FRONTEND=noninteractive
BUILD_WINDOWS=$PWD/build/windows
export WINEPREFIX=${LUMEN_PREFIX:-$PWD/build/prefix}

say() { printf '%s\n' "$*" >&2; }

# Installs what tools/packages lists and the machine lacks.
ensure_packages() {
  local missing=()
  local name
  while read -r name; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || missing+=("$name")
  done < <(grep -v '^#' tools/packages)
  [ ${#missing[@]} -eq 0 ] && return 0
  say "Installing: ${missing[*]}"
  local log
  log=$(mktemp)
  if ! { apt-get update && apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    tail -30 "$log" >&2
    return 1
  fi
  rm -f "$log"
}

# build PRESET: configures and builds; prints the log only when that fails.
build() {
  local preset=$1 log=build/$1.log
  mkdir -p build
  say "Building: $preset"
  if ! { cmake --preset "$preset" && cmake --build --preset "$preset"; } >"$log" 2>&1; then
    grep -E -A5 'error|FAILED' "$log" | head -60 >&2
    say "The build failed; the whole log is $log"
    return 1
  fi
}

# Makes the Wine prefix once, and starts its server anew: one that an interrupted run left behind may still know classes of
# processes that are gone.
ensure_prefix() {
  [ ! -d "$WINEPREFIX" ] || /usr/lib/wine/wineserver64 -k >/dev/null 2>&1 || true
  tools/wine-prefix
}
