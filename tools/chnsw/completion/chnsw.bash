# bash completion of chnsw: commands, options, their values, and files where a chassis file or a folder is meant.

_chnsw_words() {
  local word
  COMPREPLY=()
  while IFS= read -r word; do COMPREPLY+=("$word"); done < <(compgen -W "$1" -- "$2")
}

_chnsw_files() {
  local word
  COMPREPLY=()
  while IFS= read -r word; do COMPREPLY+=("$word"); done < <(compgen -f -- "$1")
  compopt -o filenames 2>/dev/null || true
}

# The options of a command, beside those of every command.
_chnsw_options() {
  case $1 in
    pa | pn) echo '--explain --vsan --fast' ;;
    if) echo '--explain --skip-lag-check' ;;
    slot | index) echo '--explain' ;;
    map) echo '--index' ;;
    next) echo '--all' ;;
    default) echo '--slot --logical --verdict' ;;
    check) echo '--notes' ;;
    front) echo '--svg' ;;
    export) echo '--to' ;;
    watch) echo '--interval --count' ;;
    'set port') echo '--pn --pa --vsans --vsan' ;;
  esac
}

_chnsw() {
  local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' part='' place
  for ((place = 1; place < COMP_CWORD; ++place)); do
    case ${COMP_WORDS[place]} in
      -s | --switch | --format | --color) ((++place)) ;;
      -*) ;;
      *)
        if [ -z "$command" ]; then
          command=${COMP_WORDS[place]}
        elif [ "$command" = set ] && [ -z "$part" ]; then
          part=${COMP_WORDS[place]}
        fi
        ;;
    esac
  done

  case $before in
    -s | --switch | --svg) _chnsw_files "$current" && return ;;
    --format) _chnsw_words 'table json jsonl csv' "$current" && return ;;
    --color) _chnsw_words 'auto always never' "$current" && return ;;
    --to) _chnsw_words 'toml json csv' "$current" && return ;;
  esac
  if [[ $current == -* ]]; then
    [ -z "$part" ] || command="$command $part"
    _chnsw_words "$(_chnsw_options "$command") --switch --format --color --help --version" "$current"
    return
  fi
  case $command in
    '')
      _chnsw_words 'pa pn if slot index map vsan logical info next last check default front diff export create watch set' \
        "$current"
      ;;
    set) [ -n "$part" ] || _chnsw_words 'port binding address' "$current" ;;
    pa | pn | if | slot | index | vsan) _chnsw_words 'all' "$current" ;;
    diff | create) _chnsw_files "$current" ;;
    *) COMPREPLY=() ;;
  esac
}

complete -F _chnsw chnsw
