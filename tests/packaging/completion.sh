# Prints every command and option that a program's help names and its completion does not offer, a line each.
# Usage: completion.sh PROGRAM COMPLETION
set -euo pipefail
program=$1
. "$2"

# What the help of a command names: its subcommands and its options.
subcommands() { "$program" "$@" --help | sed -nE 's/^  ([a-z][a-z-]*) .*/\1/p'; }
options() { "$program" "$@" --help | sed -nE 's/^  (-h,)?(--[a-z][a-z-]*).*/\2/p'; }

# offered PREFIX COMMAND...: what is offered for a word that begins so behind that command
offered() {
    local prefix=$1
    shift
    COMP_WORDS=(vicenter "$@" "$prefix") COMP_CWORD=$(($# + 1)) COMPREPLY=()
    _vicenter
    echo " ${COMPREPLY[*]} "
}

told=0
check() {
    local word dashed plain
    dashed=$(offered "--" "$@") plain=$(offered "" "$@")
    for word in $(options "$@"); do
        told=$((told + 1))
        case $dashed in *" $word "*) ;; *) echo "$* $word" ;; esac
    done
    for word in $(subcommands "$@"); do
        case $plain in *" $word "*) ;; *) echo "$* $word" ;; esac
        check "$@" "$word"
    done
}
check
[ "$told" -gt 60 ] || echo "The help names $told options."
