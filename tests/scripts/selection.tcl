# Growing, shrinking and the ellipse by menu, key and command, and a filter from a library of its own.

set channel [open scan.nrrd wb]
puts -nonewline $channel "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 12 9 3\nspacings: 1 1 1\nencoding: raw\n\n"
puts -nonewline $channel [string repeat \x00 324]
close $channel

# The selected voxels of a slice, a line per row.
proc show {title slice} {
    set rows {}
    for {set j 0} {$j < 9} {incr j} {
        set row ""
        for {set i 0} {$i < 12} {incr i} { append row [expr {[gi isVoxelSelected $i $j $slice] ? "#" : "."}] }
        lappend rows $row
    }
    echo "$title:"
    foreach row $rows { echo "  $row" }
}

namespace eval kelvane {
    set pluginFilterName {{Remove Specks} Absent}
    set pluginLibs {specks absent}
    set pluginClasses {kelvaneSpecks none}
}
set labels [newLabels [load scan.nrrd]]
segment $labels
foreach {i j} {4 3 5 3 6 3 4 4 5 4 6 4 7 4 5 5} { gi toggleVoxel $i $j 1 }
gi toggleVoxel 10 7 1
menu "Selection/Grow/Current slice"
show "grown in the slice" 1
view 2 event key \] ctrl
show "grown by key" 1
gi undo
menu "Segmentation/Remove Specks"
echo "the field holds [filter "Remove Specks" widget wSmallest]"
filter "Remove Specks" widget wSmallest 6
filter "Remove Specks" widget wApply click
show "without the speck" 1
menu "Selection/Make ellipse"
show "as an ellipse" 1
gi growSelection3D
show "grown in the volume, slice below" 0
gi shrinkSelectionAll2D
show "shrunk in each slice" 0
toolbox widget currentSliceRadioButton 1
toolbox widget shrinkButton click
show "shrunk by the button" 1
gi undo
gi undo
gi undo
gi undo
gi undo
show "with the speck again" 1
echo [catch {filter Absent widget wApply} message] $message
