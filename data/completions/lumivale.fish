# fish completion for lumivale: its commands, each command's options and their values.

set -l commands clear discard fixtures folders list lock locked read restore scan search selfcheck shelf tidy trash undo
set -l shelves ids bills tickets chats code shopping maps other

# True when the command is NAME (the first word that is not an option or the folder of --data).
function __lumivale_command_is
    set -l words (commandline -opc)
    set -e words[1]
    while set -q words[1]
        switch $words[1]
            case --data
                set -e words[1..2]
            case '-*'
                set -e words[1]
            case '*'
                contains -- $words[1] $argv
                return
        end
    end
    return 1
end

# How many arguments the command has so far, not counting options and their values.
function __lumivale_arguments_are
    set -l words (commandline -opc)
    set -l count -1
    set -l skip 0
    for word in $words[2..-1]
        if test $skip -eq 1
            set skip 0
        else if contains -- $word --data --lang --place --layout --scope --days --to
            set skip 1
        else if not string match -q -- '-*' $word
            set count (math $count + 1)
        end
    end
    test $count -eq $argv[1]
end

complete -c lumivale -f

set -l top "not __lumivale_command_is $commands"
complete -c lumivale -n $top -l data -x -a '(__fish_complete_directories)' -d 'Keep the data in this folder'
complete -c lumivale -n $top -s h -l help -d 'Show the help'
complete -c lumivale -n $top -l version -d 'Show the version'
complete -c lumivale -n $top -a clear -d 'Put old screenshots in the Trash'
complete -c lumivale -n $top -a discard -d "Move a locked screenshot's file to the Trash"
complete -c lumivale -n $top -a fixtures -d 'Draw the made-up screenshots into a folder'
complete -c lumivale -n $top -a folders -d 'List or change the folders that are read'
complete -c lumivale -n $top -a list -d 'List the screenshots of a place'
complete -c lumivale -n $top -a lock -d 'Lock screenshots away, encrypted'
complete -c lumivale -n $top -a locked -d 'List the locked screenshots'
complete -c lumivale -n $top -a read -d 'Read and sort pictures'
complete -c lumivale -n $top -a restore -d 'Write a locked screenshot back as a file'
complete -c lumivale -n $top -a scan -d 'Find new screenshots and read them'
complete -c lumivale -n $top -a search -d 'Find screenshots by their words'
complete -c lumivale -n $top -a selfcheck -d 'Check the whole program on made-up screenshots'
complete -c lumivale -n $top -a shelf -d 'Put a screenshot on a shelf by hand'
complete -c lumivale -n $top -a tidy -d 'File screenshots into one folder per shelf'
complete -c lumivale -n $top -a trash -d 'Put screenshots in the Trash'
complete -c lumivale -n $top -a undo -d 'Undo the last tidy or trashing'

complete -c lumivale -n '__lumivale_command_is read scan list search folders tidy clear undo locked' -l json -d 'One JSON object per line'
complete -c lumivale -n '__lumivale_command_is read' -l lang -x -d 'Read in this language (a tag such as en-US)'
complete -c lumivale -n '__lumivale_command_is read trash lock' -F
complete -c lumivale -n '__lumivale_command_is fixtures selfcheck; and __lumivale_arguments_are 0' -x -a '(__fish_complete_directories)'
complete -c lumivale -n '__lumivale_command_is list' -l place -x -a "overview all recent private locked $shelves" -d 'The place to list'
complete -c lumivale -n '__lumivale_command_is shelf; and __lumivale_arguments_are 0' -F
complete -c lumivale -n '__lumivale_command_is shelf; and __lumivale_arguments_are 1' -x -a "$shelves auto"
complete -c lumivale -n '__lumivale_command_is folders; and __lumivale_arguments_are 0' -x -a 'add remove on off archive'
complete -c lumivale -n '__lumivale_command_is folders; and __lumivale_arguments_are 1' -x -a '(__fish_complete_directories)'
complete -c lumivale -n '__lumivale_command_is tidy' -l layout -x -a 'shelf month' -d 'One folder per shelf, or per shelf and month'
complete -c lumivale -n '__lumivale_command_is tidy' -l rename -d 'Give files new names from what they say'
complete -c lumivale -n '__lumivale_command_is clear' -l days -x -a '30 90 182 365' -d 'Older than this many days'
complete -c lumivale -n '__lumivale_command_is tidy clear' -l scope -x -a 'loose everything' -d 'Only loose screenshots, or every one'
complete -c lumivale -n '__lumivale_command_is tidy clear' -l include-private -d 'Private screenshots too'
complete -c lumivale -n '__lumivale_command_is tidy clear' -l dry-run -d 'Show the plan, move nothing'
complete -c lumivale -n '__lumivale_command_is tidy clear trash lock discard' -l yes -d 'Go ahead without asking'
complete -c lumivale -n '__lumivale_command_is undo' -l list -d 'List the last tidies and trashings'
complete -c lumivale -n '__lumivale_command_is restore' -l to -x -a '(__fish_complete_directories)' -d 'Write into this folder'
