# Outlines of every kind, drawn with mouse and keys in the viewers' windows.

# A bright block of 13 x 11 x 10 voxels.
proc writeScan {file left} {
    set channel [open $file wb]
    puts -nonewline $channel \
        "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 24 20 16\nspacings: 1 1 1\nencoding: raw\n\n"
    for {set k 0} {$k < 16} {incr k} {
        for {set j 0} {$j < 20} {incr j} {
            for {set i 0} {$i < 24} {incr i} {
                set inside [expr {$i >= $left && $i <= $left + 12 && $j >= 4 && $j <= 14 && $k >= 3 && $k <= 12}]
                puts -nonewline $channel [binary format c [expr {$inside ? 120 : 10}]]
            }
        }
    }
    close $channel
}
writeScan scan.nrrd 5
writeScan moved.nrrd 9
set labels [newLabels [load scan.nrrd]]
segment $labels

# Rows of the selection in the slice of a viewer.
proc show {title viewer} {
    lassign [lindex {{1 2 0} {0 2 1} {0 1 2}} [view $viewer orientation]] columns rows depth
    set dims {24 20 16}
    echo "$title:"
    for {set r 0} {$r < [lindex $dims $rows]} {incr r} {
        set line ""
        for {set c 0} {$c < [lindex $dims $columns]} {incr c} {
            set voxel {0 0 0}
            lset voxel $columns $c
            lset voxel $rows $r
            lset voxel $depth [view $viewer slice]
            append line [expr {[gi isVoxelSelected {*}$voxel] ? "#" : "."}]
        }
        echo $line
    }
}
proc drag {viewer from args} {
    view $viewer event move {*}$from
    view $viewer event press {*}$from
    foreach at $args { view $viewer event move {*}$at }
    view $viewer event release {*}[lindex $args end]
}
proc clicks {viewer modifiers args} {
    foreach at $args {
        view $viewer event move {*}$at {*}$modifiers
        view $viewer event press {*}$at left {*}$modifiers
        view $viewer event release {*}$at left {*}$modifiers
    }
}

foreach viewer {0 1 2} {
    view $viewer zoom 12
    view $viewer size 300 260
    view $viewer slice 8
}
view 2 event key 2

drag 2 {3 3} {18 3} {18 6} {3 6} {3 3}
show "drawn by hand" 2
clicks 2 {alt} {5 9} {12 17} {20 9}
view 2 event key Alt
show "clicked with Alt, which replaces" 2
gi undo
show "undone" 2

view 0 flip 0 1 1
tool 2 widget wRectangleButton 1
drag 0 {2 2} {12 10}
show "a rectangle in a mirrored viewer" 0
view 1 event press 10 8 left alt
view 1 event move 16 11
view 1 event release 16 11 left shift
show "one from its center, added" 1
tool 2 widget wEllipseButton 1
view 2 event press 6 5
view 2 event move 17 14
view 2 event release 17 14
show "an ellipse" 2
gi clear 3d

tool 2 widget wFreehandButton 1
tool 2 widget wAutoTraceCheckBox 1
proc traceBlock {title viewer corners end} {
    clicks $viewer {} {*}$corners
    view $viewer event move {*}$end
    view $viewer event press {*}$end right
    view $viewer event release {*}$end right
    show $title $viewer
}
traceBlock "traced along the edges of a block" 2 {{5 4} {17 4} {17 14} {5 14}} {5 9}
load moved.nrrd
traceBlock "in another image, where it lies farther right" 2 {{9 4} {21 4} {21 14} {9 14}} {9 9}
view 0 slice 12
traceBlock "in another plane" 0 {{4 3} {14 3} {14 12} {4 12}} {4 7}
clicks 2 {} {6 5} {12 5}
view 2 event leave
echo "left, the selection stays: [gi isVoxelSelected 12 9 8]"

catch {tool 2 widget wEllipseButton 1; tool 2 widget wAutoTraceCheckBox 0} message
echo $message
