# bash completion of chnsw: commands, options, their values, and files where a chassis file or a folder is meant.

_chnsw_commands='pa pn if slot index map vsan logical info next last check default front diff export create watch set tod
manager ask install swap listen notify codepage message'

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
    install) echo '--uninstall --timeout' ;;
    swap) echo '--refuse --reason --timeout' ;;
    listen) echo '--count' ;;
    'ask portmap' | 'ask vsans' | 'ask vsan-state' | 'ask rnid') echo '--timeout' ;;
    'notify vsan' | 'notify enable' | 'notify rnid') echo '--timeout' ;;
    'notify port') echo '--reason --timeout' ;;
    codepage) echo '--to-host --from-host' ;;
    'message decode' | 'message encode') echo '--byte-order --value' ;;
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
    --byte-order) _chnsw_words 'big little' "$2" ;;
    --refuse) _chnsw_words 'check-lock do-swap unlock' "$2" ;;
    *) return 1 ;;
  esac
}

# What comes next in "notify": the notice, what it is about, and its state.
_chnsw_notice() {
  case $1,$2 in
    ,*) _chnsw_words 'vsan port enable rnid' "$3" ;;
    *,0) _chnsw_words 'all' "$3" ;;
    vsan,1 | port,1) _chnsw_words 'up down' "$3" ;;
    enable,1) _chnsw_words 'on off' "$3" ;;
    *) COMPREPLY=() ;;
  esac
}

# What comes next in "message", by the tool's own list: what to do, the kind, and the fields to encode.
_chnsw_message() {
  local fields
  case $1,$2 in
    ,*) _chnsw_words 'list decode encode' "$4" ;;
    list,* | *,0)
      _chnsw_words "$("${COMP_WORDS[0]}" message list --format csv 2>/dev/null | tail -n +2 | cut -d, -f1 | uniq)" "$4"
      ;;
    encode,*)
      fields=$("${COMP_WORDS[0]}" message list "$3" --format csv 2>/dev/null | tail -n +3 | cut -d, -f6)
      _chnsw_words "${fields//$'\n'/= }${fields:+=}" "$4"
      compopt -o nospace 2>/dev/null || true
      ;;
    *) _chnsw_words '-' "$4" ;;
  esac
}

_chnsw() {
  local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command='' part='' first='' others=0 place
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
        elif [[ $command == @(set|ask|notify|message) && -z $part ]]; then
          part=${COMP_WORDS[place]}
        else
          first=${first:-${COMP_WORDS[place]}}
          ((++others))
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
      _chnsw_words "$_chnsw_commands" "$current"
      ;;
    set) [ -n "$part" ] || _chnsw_words 'port binding address time' "$current" ;;
    ask)
      case $part in
        '') _chnsw_words 'portmap vsans vsan-state rnid' "$current" ;;
        vsans) COMPREPLY=() ;;
        *) _chnsw_words 'all' "$current" ;;
      esac
      ;;
    notify) _chnsw_notice "$part" "$others" "$current" ;;
    message) _chnsw_message "$part" "$others" "$first" "$current" ;;
    codepage)
      [ "$others" -gt 0 ] ||
        _chnsw_words "$("${COMP_WORDS[0]}" codepage --format csv 2>/dev/null | tail -n +2 | cut -d, -f1) all" "$current"
      ;;
    install) _chnsw_words 'all' "$current" ;;
    manager) _chnsw_files "$current" ;;
    pa | pn | if | slot | index | vsan) _chnsw_words 'all' "$current" ;;
    tod) _chnsw_words 'now -' "$current" ;;
    diff | create) _chnsw_files "$current" ;;
    *) COMPREPLY=() ;;
  esac
}

complete -F _chnsw chnsw
