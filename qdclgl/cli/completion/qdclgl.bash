# Completion of qdclgl's command line in bash. The program itself says what a word could be; where
# it knows nothing, it is a file.
_qdclgl() {
  local line quoted
  COMPREPLY=()
  while IFS= read -r line; do
    printf -v quoted %q "${line%%$'\t'*}"
    COMPREPLY+=("$quoted")
  done < <("${COMP_WORDS[0]}" complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
  [[ ${COMPREPLY[0]-} != *= ]] || compopt -o nospace 2>/dev/null
}
complete -o default -F _qdclgl qdclgl
