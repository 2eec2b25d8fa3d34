# SPDX-License-Identifier: MIT
# shellcheck disable=SC2034 # what it sets is for who sources it
#
# For scripts that show something where nobody looks: start_screen FOLDER WIDTHxHEIGHT starts an X
# server and waits for it; its process is then in `screen`, its name in `display`.

screen=
start_screen() {
    Xvfb -ac -noreset -displayfd 3 -screen 0 "$2x24" 3>"$1/display" 2>/dev/null &
    screen=$!
    for _ in {1..100}; do
        [[ -s $1/display ]] && break
        sleep 0.1
    done
    display=:$(<"$1/display")
}
