# Puts a structure of the atlas where the anatomy has it, as a person does with the mouse.
#
#   scripts/run --headless examples/displace.tcl
#
# The left hippocampus of the atlas is picked with a click in an axial slice, dragged by two
# voxels along x and three along y, turned by a few degrees, and put in place of the former one. Prints what changed, and writes a
# picture before and after and the corrected labels.

source [file join [file dirname [info script]] brain.tcl]

set structure [lsearch -exact [$labels materials] Hippocampus_L]
set thalamus [lsearch -exact [$labels materials] Thalamus_L]
set before [$labels count $structure]
set neighbour [$labels count $thalamus]

view 2 size 724 724
gi setCrossHairLocationIndex 64 106 58
view 2 snapshot $out/displace-before.png

# Button down, along the way, button up; the words behind are the keys held.
proc drag {from to args} {
    view 2 event press {*}$from left {*}$args
    view 2 event move {*}$to left {*}$args
    view 2 event release {*}$to left {*}$args
}

gi setTool 0
view 2 event press 64 106 left
view 2 event release 64 106 left
drag {64 106} {62 103}
drag {72 116} {69 118} shift

# The thalamus beside it is finished: its voxels stay.
material $thalamus lock 1
gi selectMaterial $structure
gi replace 3d
if {[$labels count $thalamus] != $neighbour} { error "a locked material has changed" }
view 2 snapshot $out/displace-after.png
echo "[lindex [$labels materials] $structure]: $before voxels, now [$labels count $structure]"
$labels save $out/displaced.nrrd
