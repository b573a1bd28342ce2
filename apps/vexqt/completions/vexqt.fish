# Completion of vexqt for fish. The program itself knows what can stand where.

function __vexqt_complete
    set -l words (commandline --tokenize --cut-at-cursor --current-process)
    set -l current (commandline --cut-at-cursor --current-token)
    set -l program $words[1]
    set -e words[1]
    # Tildes are there still, and the last word has its quotes, one of them perhaps not closed.
    set words (string replace -r '^~/' "$HOME/" -- $words)
    set current (string replace -r '^~/' "$HOME/" -- (string trim --left --chars "'\"" -- $current) | string replace -ra '\\\\(.)' '$1')
    for answer in (command $program __complete $words "$current" 2>/dev/null)
        if test "$answer" = :files
            __fish_complete_path "$current"
        else
            echo $answer
        end
    end
end

complete --command vexqt --no-files --keep-order --arguments '(__vexqt_complete)'
