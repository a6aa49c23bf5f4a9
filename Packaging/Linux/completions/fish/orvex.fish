# Completes the options of orvex in fish; files are completed by themselves.

complete -c orvex -s h -l help -d 'print a help message and exit'
complete -c orvex -l version -d 'print the version and exit'
complete -c orvex -l orvex-qa-workspace -x -a '(__fish_complete_directories)' -d 'the folder that stands for the application folder'
