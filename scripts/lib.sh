# Shared by the scripts: where the tree is, how steps are told. To be sourced.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

if [ -t 2 ] && [ -z "${NO_COLOR:-}" ]; then bold=$'\e[1m' plain=$'\e[0m'; else bold='' plain=''; fi

# say TEXT...: what happens now.
say() { printf '%s==> %s%s\n' "$bold" "$*" "$plain" >&2; }

die() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

# quietly COMMAND...: its output on a terminal as it comes; elsewhere only when it fails.
quietly() {
  if [ -t 2 ]; then "$@" >&2 && return 0 || return $?; fi
  local log status=0
  log=$(mktemp)
  "$@" >"$log" 2>&1 || status=$?
  [ "$status" -eq 0 ] || cat "$log" >&2
  rm -f "$log"
  return "$status"
}

# build PRESET [TARGET...]: configures with the tests, builds what is out of date.
build() {
  local preset=$1
  shift
  quietly cmake --preset "$preset" -DBUILD_TESTING=ON
  quietly cmake --build --preset "$preset" ${1:+--target "$@"}
}

# debian_release: its number; nothing elsewhere.
debian_release() { (. /etc/os-release && [ "$ID" = debian ] && echo "${VERSION_ID:-}") 2>/dev/null || true; }

# pinned COMMAND WHAT: whether a tool is here that has to be of one version, since another one judges otherwise. Where it is not
# to be had that is told; on the release that has it, it must be here.
pinned() {
  if command -v "$1" >/dev/null; then return 0; fi
  [ "$(debian_release)" != 12 ] || die "no $1: run scripts/install-packages"
  say "NOT CHECKED: $2, for want of $1, which Debian 12 has"
  return 1
}

# ---- Stages of a long run, and how long each took ----

stages=()
stage_title=''

# stage TITLE...: what was begun before has ended; this begins.
stage() {
  end_stage
  say "$*"
  stage_title=$* stage_began=$SECONDS
}

end_stage() {
  [ -z "$stage_title" ] || stages+=("$(printf '%6d s  %s' $((SECONDS - stage_began)) "$stage_title")")
  stage_title=''
}

# tell_stages: the table, whatever the end; for a trap at the exit.
tell_stages() {
  local status=$?
  [ "$status" -eq 0 ] || stage_title+=${stage_title:+'  FAILED'}
  end_stage
  [ ${#stages[@]} -eq 0 ] || printf '%s\n' '' "${stages[@]}" "$(printf '%6d s  in all' "$SECONDS")" >&2
  exit "$status"
}
