# The window that nobody sees: its menus, its picture, and what it asks before changes are lost.

proc try {args} {
    catch $args message
    echo "$args -> $message"
}

try menu File/Nothing
try menu File
try menu Object/Save

set channel [open scan.nrrd w]
puts -nonewline $channel "NRRD0004\ntype: uint8\ndimension: 3\nsizes: 4 3 2\nencoding: raw\n\n[string repeat a 24]"
close $channel
load scan.nrrd

# The selected object is the first one: over an image there are new labels to be made, which are edited at once.
try menu "Object/Edit Labels"
menu "Object/New Labels"
set labels scan.Labels
echo "[objects] edited by [gi label]"
menu "Selection/Fill/Volume"
menu View/Workspace
try menu "Selection/Fill/Volume"
$labels save labels.nrrd

windowSnapshot window.png
set channel [open window.png rb]
binary scan [read $channel 24] a8x8IuIu magic width height
close $channel
echo "picture: $width x $height"
try windowSnapshot /no/such/folder/window.png

# Without a file dialog nothing is chosen, and the program says so.
menu "Object/Save As"
answerFile
menu "Object/Save As"
try answerFile ""
answerFile again.nrrd
menu "Object/Save As"
echo "written: [file exists again.nrrd]"

# A question that nobody answers keeps the changes, and the program with them.
$labels parameters Materials/Inside/Color "1 0 0"
menu File/Quit
echo "still here"
answer 1
menu File/Quit
echo "never"
