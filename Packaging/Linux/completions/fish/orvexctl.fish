# Completes the commands, options, values and files of orvexctl in fish.

# The words before the cursor that are neither an option of the program itself nor its value.
function __orvexctl_words
    set -l words (commandline -opc)
    set -e words[1]
    set -l isValue no
    for word in $words
        if test $isValue = yes
            set isValue no
            continue
        end
        switch $word
            case --language --orvex-qa-workspace
                set isValue yes
            case '-*'
            case '*'
                echo $word
        end
    end
end

# Whether exactly this command has been typed; without one, none.
function __orvexctl_at
    set -l words (__orvexctl_words)
    test "$words" = "$argv"
end

# Whether the cursor stands behind this command.
function __orvexctl_in
    set -l words (__orvexctl_words)
    string match -q -- "$argv *" "$words "
end

complete -c orvexctl -f
complete -c orvexctl -s h -l help -d 'print a help message and exit'
complete -c orvexctl -n '__orvexctl_at' -l language -x -a 'en zh-Hans' -d 'the language of messages and shown numbers'
complete -c orvexctl -n '__orvexctl_at' -l orvex-qa-workspace -x -a '(__fish_complete_directories)' -d 'the folder that stands for the application folder'

complete -c orvexctl -n '__orvexctl_at' -a roll -d 'put images on a roll and write the roll PDF'
complete -c orvexctl -n '__orvexctl_at' -a inspect -d 'tell what image files are'
complete -c orvexctl -n '__orvexctl_at' -a icc -d 'tell what an output ICC profile is'
complete -c orvexctl -n '__orvexctl_at' -a pack -d 'arrange the artworks of a layout on as little canvas as possible'
complete -c orvexctl -n '__orvexctl_at' -a render -d 'write a layout as a roll PDF'
complete -c orvexctl -n '__orvexctl_at' -a check -d 'check a PDF as direct printing does, without a printer'
complete -c orvexctl -n '__orvexctl_at' -a userunit -d 'add a UserUnit to a roll PDF, in place'
complete -c orvexctl -n '__orvexctl_at' -a preview -d 'make a picture of a roll'
complete -c orvexctl -n '__orvexctl_at' -a printers -d 'look at the local print queues, read-only'
complete -c orvexctl -n '__orvexctl_at' -a telemetry -d 'tell the state of a queue, read-only'
complete -c orvexctl -n '__orvexctl_at' -a fingerprint -d 'take the fingerprints of settings files, or compare them with a baseline'
complete -c orvexctl -n '__orvexctl_at' -a jobs -d 'look at the local print queue; export or remove jobs'
complete -c orvexctl -n '__orvexctl_at' -a presets -d 'look at presets or delete one; import an output ICC'
complete -c orvexctl -n '__orvexctl_at' -a journal -d 'look at the records of physical prints'
complete -c orvexctl -n '__orvexctl_at' -a diagnostics -d 'print the diagnostics of this machine'
complete -c orvexctl -n '__orvexctl_at' -a apply -d 'answer requests, one JSON line each, from standard input'

complete -c orvexctl -n '__orvexctl_in roll' -s o -r -F -d 'the PDF'
complete -c orvexctl -n '__orvexctl_in roll' -l width -x -d 'the width of the roll, in inches'
complete -c orvexctl -n '__orvexctl_in roll' -l gap -x -d 'the distance of trim frames, in inches'
complete -c orvexctl -n '__orvexctl_in roll' -l size -x -d 'the print size of the image at the same place, in inches'
complete -c orvexctl -n '__orvexctl_in roll' -l turns -d 'let artworks turn by 90° where that saves canvas'
complete -c orvexctl -n '__orvexctl_in roll' -l layout-out -r -F -d 'write the layout as a workspace file'
complete -c orvexctl -n '__orvexctl_in roll' -l title -x -d 'the title of the PDF'
complete -c orvexctl -n '__orvexctl_in roll' -l output-icc -r -F -d 'convert to this output profile'
complete -c orvexctl -n '__orvexctl_in roll' -l intent -x -a 'absoluteColorimetric perceptual relativeColorimetric saturation' -d 'the rendering intent of the conversion'
complete -c orvexctl -n '__orvexctl_in roll' -l driver-correction-off -d 'confirm that the colour correction of the driver is off'

complete -c orvexctl -n '__orvexctl_in pack' -l gap -x -d 'the distance of trim frames, in inches'
complete -c orvexctl -n '__orvexctl_in pack' -l turns -d 'let artworks turn by 90° where that saves canvas'
complete -c orvexctl -n '__orvexctl_in pack' -l width -x -d 'the new width of the roll, in inches'
complete -c orvexctl -n '__orvexctl_in pack' -s o -r -F -d 'where the layout goes; standard output without it'

complete -c orvexctl -n '__orvexctl_in render' -s o -r -F -d 'the PDF'
complete -c orvexctl -n '__orvexctl_in render' -l title -x -d 'the title of the PDF'
complete -c orvexctl -n '__orvexctl_in render' -l output-icc -r -F -d 'convert to this output profile'
complete -c orvexctl -n '__orvexctl_in render' -l intent -x -a 'absoluteColorimetric perceptual relativeColorimetric saturation' -d 'the rendering intent of the conversion'
complete -c orvexctl -n '__orvexctl_in render' -l driver-correction-off -d 'confirm that the colour correction of the driver is off'

complete -c orvexctl -n '__orvexctl_in check' -l width-inches -x -d 'the width it must have, in inches'
complete -c orvexctl -n '__orvexctl_in check' -l height-inches -x -d 'the height it must have, in inches'

complete -c orvexctl -n '__orvexctl_in preview' -s o -r -F -d 'the picture'
complete -c orvexctl -n '__orvexctl_in preview' -l pixels -x -d 'the longer side of the picture'

complete -c orvexctl -n '__orvexctl_in fingerprint' -l baseline -r -F -d 'the settings baseline; - reads one from standard input'
complete -c orvexctl -n '__orvexctl_in fingerprint' -l save -d 'save the fingerprints as the settings baseline'

complete -c orvexctl -n '__orvexctl_in roll' -F
complete -c orvexctl -n '__orvexctl_in inspect' -F
complete -c orvexctl -n '__orvexctl_in icc' -F
complete -c orvexctl -n '__orvexctl_in pack' -F
complete -c orvexctl -n '__orvexctl_in render' -F
complete -c orvexctl -n '__orvexctl_in check' -F
complete -c orvexctl -n '__orvexctl_in userunit' -F
complete -c orvexctl -n '__orvexctl_in preview' -F
complete -c orvexctl -n '__orvexctl_in fingerprint' -F
complete -c orvexctl -n '__orvexctl_in jobs export' -F
complete -c orvexctl -n '__orvexctl_in presets import-icc' -F
complete -c orvexctl -n '__orvexctl_at telemetry' -a '(lpstat -e 2>/dev/null)'

complete -c orvexctl -n '__orvexctl_at jobs' -a list -d 'list the jobs'
complete -c orvexctl -n '__orvexctl_at jobs' -a export -d 'copy the PDF of a job to a file'
complete -c orvexctl -n '__orvexctl_at jobs' -a remove -d 'remove a job and its PDF'
complete -c orvexctl -n '__orvexctl_at presets' -a list -d 'list the presets'
complete -c orvexctl -n '__orvexctl_at presets' -a delete -d 'delete a preset; its ICC profile stays'
complete -c orvexctl -n '__orvexctl_at presets' -a import-icc -d 'copy an ICC profile into the keeping of the program'
complete -c orvexctl -n '__orvexctl_at journal' -a list -d 'list the records'
