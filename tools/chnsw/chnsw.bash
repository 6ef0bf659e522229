# bash completion of chnsw. The tool itself says what may follow, by the description of its commands; only the names of files
# and folders are bash's.

_chnsw() {
  local kind='' before='' typed='' word
  COMPREPLY=()
  {
    IFS= read -r kind
    IFS= read -r before
    IFS= read -r typed
    if [ "$kind" = path ]; then
      while IFS= read -r word; do COMPREPLY+=("$before$word"); done < <(compgen -f -- "$typed")
      compopt -o filenames 2>/dev/null || true
    fi
    while IFS= read -r word; do
      COMPREPLY+=("$before$word")
      [[ $word != *= ]] || compopt -o nospace 2>/dev/null || true
    done
  } < <("${COMP_WORDS[0]}" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}

complete -F _chnsw chnsw
