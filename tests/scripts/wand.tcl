# The magic wand as a person uses it: two seeds and a limit line, the window dragged, the region kept, and the
# seed picked again from a file.

set channel [open scan.nrrd wb]
puts -nonewline $channel "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 10 6 3\nspacings: 1 1 1\nencoding: raw\n\n"
foreach slice {0 1 2} {
    foreach row {1113333333 1111333553 1141333533 1441333333 4411333333 4444447777} {
        foreach value [split $row ""] { puts -nonewline $channel [binary format c [expr {10 * $value}]] }
    }
}
close $channel

# The selected voxels of a slice, a line per row.
proc show {title slice} {
    echo "$title:"
    for {set j 0} {$j < 6} {incr j} {
        set row ""
        for {set i 0} {$i < 10} {incr i} { append row [expr {[gi isVoxelSelected $i $j $slice] ? "#" : "."}] }
        echo "    $row"
    }
}
proc click {i j args} {
    view 2 event move $i $j
    view 2 event press $i $j left {*}$args
    view 2 event release $i $j left {*}$args
}
# What the label data remembers, as "bundle/entry = value".
proc remembered {labels kind} {
    set lines {}
    if {[lsearch [$labels parameters] $kind] < 0} { return "no $kind" }
    foreach slice [$labels parameters $kind] {
        foreach entry [$labels parameters $kind/$slice] {
            lappend lines "$slice/$entry = [$labels parameters $kind/$slice/$entry]"
        }
    }
    return [join $lines ", "]
}
proc begin {labels image} {
    segment $labels $image
    view 2 size 300 200
    view 2 zoom 20
    view 2 slice 1
    toolbox widget currentSliceRadioButton click
}

set image [load scan.nrrd]
set labels [newLabels $image]
begin $labels $image
gi setToolDataWindow 30 30
click 5 3
show "one seed" 1
toolbox widget wMaskingWindowSlider {30 50}
show "a wider window" 1
tool 3 widget wFillInteriorCheckBox 1
toolbox widget wMaskingWindowSlider {30 30}
show "with its interior" 1
tool 3 widget wFillInteriorCheckBox 0

view 2 event key l
view 2 event press 6 0
view 2 event move 6 0 left
view 2 event move 6 5 left
view 2 event release 6 5
show "up to a limit line" 1
gi add
echo "seeds: [remembered $labels Seeds]"
echo "limits: [remembered $labels Limits]"

gi setToolDataWindow 40 50
click 1 4
click 8 1 shift
show "two regions" 1
gi undo
show "one of them" 1
gi add
echo "seeds: [remembered $labels Seeds]"

tool 3 widget wAllSlicesCheckBox 1
gi setToolDataWindow 70 70
click 8 5
echo "volume: [gi isVoxelSelected 8 5 0] [gi isVoxelSelected 8 5 2]"
tool 3 widget wAllSlicesCheckBox 0

$labels save kept.nrrd
remove $labels
set labels [load kept.nrrd]
begin $labels $image
echo "after a reload: [remembered $labels Seeds]; [remembered $labels Limits]"
click 5 3
show "the seed picked again" 1
echo "window [gi getToolDataWindow]"
view 2 event key Delete
show "deleted" 1
echo "seeds: [remembered $labels Seeds]"
gi undo
show "undone" 1
echo "seeds: [remembered $labels Seeds]"
preference giMagicWand "0 0 1 1 1 0 12"
