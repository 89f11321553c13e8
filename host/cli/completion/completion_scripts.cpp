// SPDX-License-Identifier: BSD-3-Clause
// Copyright 2026 the Umbrant authors

// The scripts for bash, zsh and fish. Each passes the words up to the cursor to `umbrant __complete`, and hands what it
// prints (see completion.h) to its shell. A program that is missing, or that does not know the request, leaves the
// names of files, as without a script. A module's file is the only thing that is put into them.

#include "host/cli/completion/completion.h"
#include "host/process/shell_word.h"

namespace umbrant::host {

namespace {

constexpr char kBash[] =
    R"script(# Completion of umbrant's command line for bash, as `umbrant completion bash` prints it.

# Splits a line into `words`, without quotes; the last one is being completed. `cut` is how much of it readline keeps:
# up to a quote that is open, or to a character such as "=" that parts words for readline alone. `target` says that it
# is the file of a redirection. Not COMP_WORDS, which has parts of words and the text after the cursor.
_umbrant_split() {
    local line=$1 word='' begun='' quote='' before=0 i c
    words=() cut=0 target=''
    for ((i = 0; i < ${#line}; ++i)); do
        c=${line:i:1}
        if [[ $quote ]]; then
            if [[ $c == "$quote" ]]; then
                quote='' cut=$before
            elif [[ $quote == '"' && $c == \\ && ${line:i+1:1} == [\"\\\$\`] ]]; then
                word+=${line:$((++i)):1}
            else
                word+=$c
            fi
            continue
        fi
        case $c in
            [[:space:]])
                [[ ! $begun ]] || { [[ $target ]] && target='' || words+=("$word"); }
                word='' begun='' cut=0
                ;;
            [\<\>]) word='' begun='' cut=0 target=yes ;;
            [\"\']) quote=$c begun=yes before=$cut cut=${#word} ;;
            \\) word+=${line:$((++i)):1} begun=yes ;;
            *)
                word+=$c begun=yes
                [[ $COMP_WORDBREAKS != *"$c"* ]] || cut=${#word}
                ;;
        esac
    done
    words+=("$word")
}

_umbrant() {
    local words cut target program answer kind prefix current line
    COMPREPLY=()
    _umbrant_split "${COMP_LINE:0:COMP_POINT}"
    # Returning nothing leaves the names of files, by readline itself, which knows how to quote.
    [[ ! $target && ${#words[@]} -gt 1 ]] || return 0
    program=${words[0]} current=${words[${#words[@]} - 1]}
    [[ $program != \~/* ]] || program=$HOME/${program:2}
    program=$(type -P "$program" || type -P umbrant) || return 0
    answer=$("$program" __complete ${_umbrant_module:+--module "$_umbrant_module"} -- "${words[@]:1}" \
        2>/dev/null </dev/null) || return 0
    kind=${answer##*$'\n'}
    prefix=${kind#*$'\t'} kind=${kind%%$'\t'*}
    [[ $kind == :* ]] || return 0
    if [[ $kind == :files ]]; then
        [[ $cut -lt ${#prefix} ]] || return 0
        answer=$(compgen -f -- "${current:${#prefix}}")
        compopt -o filenames 2>/dev/null || :
    fi
    while IFS= read -r line; do
        [[ $line && $line != :* ]] || continue
        line=$prefix${line%%$'\t'*}
        [[ $kind != :options ]] || line=${line%=}
        [[ $line == "$current"* ]] || continue
        COMPREPLY+=("${line:cut}")
        # Readline quotes the names of files alone.
        [[ $kind != :words || $line != *' '* ]] || compopt -o filenames 2>/dev/null || :
    done <<<"$answer"
    [[ $kind != :settings ]] || compopt -o nospace 2>/dev/null || :
    # Where nothing is known, names of files would be wrong.
    [[ ${#COMPREPLY[@]} -gt 0 ]] || compopt +o default 2>/dev/null || :
    return 0
}

complete -o default -F _umbrant umbrant
)script";

constexpr char kZsh[] = R"script(#compdef umbrant
# Completion of umbrant's command line for zsh, as `umbrant completion zsh` prints it.

_umbrant() {
    local program=${${(Q)words[1]}/#\~\//$HOME/} answer kind prefix line
    local -a plain valued
    [[ $program == */* && -x $program ]] || (( $+commands[$program] )) || program=umbrant
    if ! answer=$("$program" __complete ${_umbrant_module:+--module "$_umbrant_module"} -- \
        "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2>/dev/null </dev/null); then
        _files
        return
    fi
    kind=${answer##*$'\n'}
    prefix=${kind#*$'\t'} kind=${kind%%$'\t'*}
    (( ! $#prefix )) || compset -p $#prefix
    # A name and its description, parted by a colon. What takes a value gets a "=", which a space removes again.
    for line in "${(@f)answer}"; do
        [[ -n $line && $line != :* ]] || continue
        line=${line//:/\\:}
        line=${line/$'\t'/:}
        case $kind:${line%%:*} in
            (:options:*=|:settings:*=) valued+=("${line/=/}") ;;
            (*) plain+=("$line") ;;
        esac
    done
    case $kind in
        (:options) _describe -o option plain -- valued -q -S = ;;
        (:settings) _describe parameter valued -q -S = ;;
        (:words) _describe value plain ;;
        (*) _files ;;
    esac
}

# Loaded from fpath, or read by `source`.
if [[ $zsh_eval_context[-1] == loadautofunc ]]; then
    _umbrant "$@"
else
    compdef _umbrant umbrant
fi
)script";

constexpr char kFish[] =
    R"script(# Completion of umbrant's command line for fish, as `umbrant completion fish` prints it.

# Sets the candidates. Fails where names of files are wanted, which fish completes without a rule.
function __umbrant_ask
    set -g __umbrant_answer
    set -l words (commandline -opc)
    while string match -qr '^\w+=' -- "$words[1]"
        set -e words[1]
    end
    set -l current (commandline -ct)
    # An open quote cannot be read.
    set current (string unescape -- "$current" 2>/dev/null; or string replace -ra '[\'"]' '' -- "$current")
    set -l program (string replace -r '^~/' "$HOME/" -- "$words[1]")
    command -sq -- "$program"; or set program umbrant
    command -sq -- "$program"; or return 1
    set -l module
    set -q __umbrant_module; and set module --module "$__umbrant_module"
    set -l answer (command $program __complete $module -- $words[2..-1] "$current" 2>/dev/null </dev/null)
    or return 1
    set -l kind (string split -m 1 \t -- "$answer[-1]")
    set -e answer[-1]
    switch "$kind[1]"
        case :files
            # After "-o", fish would look for a file of that name.
            string match -qr '^-[^-]' -- "$kind[2]"; or return 1
            set -l name (string sub -s (math 1 + (string length -- "$kind[2]")) -- "$current")
            set answer (complete -C "__umbrant_none "(string escape -- "$name"))
        case :options
            set answer (string replace -r '^([^=\t]*)=' '$1' -- $answer)
        case ':*'
        case '*'
            return 1
    end
    set __umbrant_answer "$kind[2]"$answer
end

complete -c umbrant -n __umbrant_ask -f -a '$__umbrant_answer'
)script";

/// The script with a line after its first, which is a comment.
std::string WithLine(const std::string& script, const std::string& line) {
    const std::size_t end = script.find('\n') + 1;
    return script.substr(0, end) + line + "\n" + script.substr(end);
}

/// A text within single quotes of fish.
std::string FishQuoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + "'";
}

}  // namespace

std::string BashCompletion(const std::string& module) {
    return module.empty() ? kBash : WithLine(kBash, "_umbrant_module=" + ShellWord(module));
}

std::string ZshCompletion(const std::string& module) {
    return module.empty() ? kZsh : WithLine(kZsh, "typeset -g _umbrant_module=" + ShellWord(module));
}

std::string FishCompletion(const std::string& module) {
    return module.empty() ? kFish : WithLine(kFish, "set -g __umbrant_module " + FishQuoted(module));
}

}  // namespace umbrant::host
