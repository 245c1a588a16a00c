# Completion of qdclgl's command line in bash. Commands, options and classes are the program's own
# words; what is neither is a file.
_qdclgl() {
  local program=${COMP_WORDS[0]} command=${COMP_WORDS[1]} current=${COMP_WORDS[COMP_CWORD]}
  local words=
  if [[ $COMP_CWORD -eq 1 ]]; then
    words=$("$program" --help 2>/dev/null | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
  elif [[ $current == -* ]]; then
    words=$("$program" "$command" --help 2>/dev/null | sed -n 's/^  \(-[a-z],\)\?\(--[a-z-]*\).*/\2/p')
  elif [[ $command == api ]]; then
    words=$("$program" api --tsv 2>/dev/null | tail -n +2 | cut -f 1 | uniq)
  fi
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o default -F _qdclgl qdclgl
