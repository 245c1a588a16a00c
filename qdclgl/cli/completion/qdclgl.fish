# Completion of qdclgl's command line in fish. The program itself says what a word could be; where it
# knows nothing, it is a file.
function __qdclgl_candidates
    set -l words (commandline -opc) (commandline -ct)
    set -e words[1]
    set -l candidates (command qdclgl complete $words 2>/dev/null)
    or set candidates
    if test (count $candidates) -gt 0
        printf '%s\n' $candidates
    else
        __fish_complete_path (commandline -ct)
    end
end
complete -c qdclgl -f -a '(__qdclgl_candidates)'
