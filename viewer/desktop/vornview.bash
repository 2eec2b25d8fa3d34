# SPDX-License-Identifier: MIT
#
# Completes vornview's command line in bash.

_vornview()
{
    local word=${COMP_WORDS[COMP_CWORD]}
    local before=${COMP_WORDS[COMP_CWORD - 1]}
    local options='--info --list-plugins --headless --size --type --flags --arrive --play --until
        --click --key --at --snapshot --wav --drag --drag-image --report --pictures
        --plugins --version --help'
    COMPREPLY=()
    case $before in
        --size) mapfile -t COMPREPLY < <(compgen -W '640x480 800x600 1024x768 1280x720' -- "$word") ;;
        --type)
            mapfile -t COMPREPLY < <(compgen -W 'video/mpeg audio/mpeg image/gif image/png image/jpeg
                message/rfc822' -- "$word")
            ;;
        --plugins | --pictures) mapfile -t COMPREPLY < <(compgen -d -- "$word") ;;
        --flags | --arrive | --until | --click | --key | --at) ;;
        *)
            if [[ $word == -?* ]]; then
                mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
            else
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(compgen -f -- "$word")
            fi
            ;;
    esac
}
complete -F _vornview vornview
