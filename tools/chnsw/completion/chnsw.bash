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
    tod) echo '--vsan --at --leap-seconds --explain' ;;
    'set port') echo '--pn --pa --vsans --vsan' ;;
  esac
}

# The value of an option, or nothing (and 1) after a word that takes none.
_chnsw_value() {
  case $1 in
    -s | --switch | --svg) _chnsw_files "$2" ;;
    --format) _chnsw_words 'table json jsonl csv' "$2" ;;
    --color) _chnsw_words 'auto always never' "$2" ;;
    --to) _chnsw_words 'toml json csv' "$2" ;;
    *) return 1 ;;
  esac
}

_chnsw() {
  local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' part='' place
  for ((place = 1; place < COMP_CWORD; ++place)); do
    case ${COMP_WORDS[place]} in
      -s | --switch | --format | --color)
        ((++place))
        # "--switch=FILE" is three words where "=" divides them
        [ "${COMP_WORDS[place]}" != = ] || ((++place))
        ;;
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

  if [ "$current" = = ]; then
    current=''
  elif [ "$before" = = ]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  elif [[ $current == --*=* ]]; then
    # one word, where "=" does not divide: what is offered replaces all of it
    _chnsw_value "${current%%=*}" "${current#*=}" && COMPREPLY=("${COMPREPLY[@]/#/${current%%=*}=}")
    return
  fi
  _chnsw_value "$before" "$current" && return
  if [[ $current == -* ]]; then
    [ -z "$part" ] || command="$command $part"
    _chnsw_words "$(_chnsw_options "$command") --switch --format --color --help --version" "$current"
    return
  fi
  case $command in
    '')
      _chnsw_words 'pa pn if slot index map vsan logical info next last check default front diff export create watch set tod' \
        "$current"
      ;;
    set) [ -n "$part" ] || _chnsw_words 'port binding address time' "$current" ;;
    pa | pn | if | slot | index | vsan) _chnsw_words 'all' "$current" ;;
    tod) _chnsw_words 'now -' "$current" ;;
    diff | create) _chnsw_files "$current" ;;
    *) COMPREPLY=() ;;
  esac
}

complete -F _chnsw chnsw
