# The pick tool by mouse in the real viewers: mirrored pictures, the three orientations, one slice and all.

# A volume of 10 x 8 x 6 with two pieces of material 1: a bar in slices 1 to 3 and a voxel in slice 2.
set channel [open scan.nrrd wb]
puts -nonewline $channel "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 10 8 6\nspacings: 1 1 1\nencoding: raw\n\n"
for {set k 0} {$k < 6} {incr k} {
    for {set j 0} {$j < 8} {incr j} {
        for {set i 0} {$i < 10} {incr i} {
            set bar [expr {$i >= 2 && $i <= 4 && $j >= 3 && $j <= 4 && $k >= 1 && $k <= 3}]
            puts -nonewline $channel [binary format c [expr {$bar || ($i == 8 && $j == 6 && $k == 2)}]]
        }
    }
}
close $channel
set labels [load -labels scan.nrrd]
segment $labels

# The selected voxels, "x y z" each, or their box when there are many.
proc show {title} {
    set n 0
    set boxes {}
    foreach axis {0 1 2} { lappend boxes 99 -1 }
    for {set k 0} {$k < 6} {incr k} {
        for {set j 0} {$j < 8} {incr j} {
            for {set i 0} {$i < 10} {incr i} {
                if {![gi isVoxelSelected $i $j $k]} continue
                incr n
                foreach axis {0 1 2} value [list $i $j $k] {
                    if {$value < [lindex $boxes [expr {2 * $axis}]]} { lset boxes [expr {2 * $axis}] $value }
                    if {$value > [lindex $boxes [expr {2 * $axis + 1}]]} { lset boxes [expr {2 * $axis + 1}] $value }
                }
            }
        }
    }
    echo "$title: $n voxels[expr {$n ? ", box $boxes" : ""}]"
}

# Press, way and release between pixels of viewer 2.
proc drag {from to args} {
    view 2 event press {*}$from left {*}$args
    view 2 event move {*}$to left {*}$args
    view 2 event release {*}$to left {*}$args
}

view 2 size 200 200
view 2 zoom 12
view 2 event key 0
foreach {o slice flip on to} {
    2 2 {0 0 0} {3 3} {5 4}
    2 2 {1 1 0} {3 3} {5 4}
    1 3 {1 0 1} {3 2} {1 4}
    0 3 {0 1 0} {4 2} {6 1}
} {
    echo "orientation $o, flip $flip"
    view 2 orientation $o
    view 2 flip {*}$flip
    view 2 slice $slice
    view 2 event press {*}$on left
    view 2 event release {*}$on left
    show "  picked"
    drag $on $to
    show "  moved"
    drag $to {0 0}
    show "  against the edge"
    gi undo
    gi undo
    show "  undone"
    tool 0 widget wAllSlicesCheckBox 0
    drag $on $to
    show "  moved in one slice"
    gi undo
    tool 0 widget wAllSlicesCheckBox 1
    gi clear 3d
}

view 2 orientation 2
view 2 flip 0 0 0
view 2 slice 2
view 2 event press 3 3 left
view 2 event release 3 3 left
# About (3.5, 4), from its right to below it and a little further.
drag {4 4} {3 5} shift
show "turned"
gi undo
view 2 event press 8 6 left shift
view 2 event release 8 6 left
show "both pieces"
view 2 event press 3 3 left ctrl
view 2 event release 3 3 left
show "without the bar"
gi clear 3d
tool 0 widget wSelectAllCheckBox 1
view 2 event press 3 3 left
view 2 event release 3 3 left
show "the whole material"
tool 0 widget wAllSlicesCheckBox 0
gi clear 3d
view 2 event press 3 3 left
view 2 event release 3 3 left
show "the material in the slice"

# Undo while the button is down ends the drag.
view 2 event press 3 3 left
view 2 event move 5 3 left
view 2 event key u
view 2 event move 6 6 left
view 2 event release 6 6
show "undone on the way"
