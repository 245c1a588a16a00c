# Completion of qdclgl's command line in bash. Commands, options, kinds, columns and classes are the
# program's own words; what is neither is a file.
_qdclgl() {
  local program=${COMP_WORDS[0]} command=${COMP_WORDS[1]} current=${COMP_WORDS[COMP_CWORD]}
  local words='' kinds='' kind='' word
  case $command in
    kinds | list | show | add | set | remove)
      kinds=$("$program" kinds --csv 2>/dev/null | tail -n +2 | cut -d , -f 1)
      ;;
  esac
  # The kind is the first word behind the command, or behind BOOK.
  for word in "${COMP_WORDS[@]:2:COMP_CWORD-2}"; do
    if [[ -n $word && $'\n'$kinds$'\n' == *$'\n'$word$'\n'* ]]; then
      kind=$word
      break
    fi
  done
  if [[ $COMP_CWORD -eq 1 ]]; then
    words=$("$program" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z-]*\) .*/\1/p')
  elif [[ $current == -* ]]; then
    words=$("$program" "$command" --help 2>/dev/null | sed -n 's/^  \(-[a-z],\)\?\(--[a-z-]*\).*/\2/p')
  elif [[ $command == api ]]; then
    words=$("$program" api --tsv 2>/dev/null | tail -n +2 | cut -f 1 | uniq)
  elif [[ -n $kinds && -z $kind ]]; then
    words=$kinds
  elif [[ $command == add || $command == set ]]; then
    words=$("$program" kinds "$kind" --csv 2>/dev/null | sed -n 's/^\([^,]*\),.*add.*/\1=/p')
    compopt -o nospace 2>/dev/null
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o default -F _qdclgl qdclgl
