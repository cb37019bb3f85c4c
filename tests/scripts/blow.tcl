# The blow tool on a bright disc in a dark slice: in its panel, with modifier keys, dragged out and back.

set size 32
set channel [open disc.nrrd wb]
puts -nonewline $channel "NRRD0004\ntype: uchar\ndimension: 3\nsizes: $size $size 2\nspacings: 1 1 1\nencoding: raw\n\n"
for {set i 0} {$i < 2 * $size * $size} {incr i} {
    set x [expr {$i % $size - 16}]
    set y [expr {$i / $size % $size - 16}]
    puts -nonewline $channel [binary format c [expr {$x * $x + $y * $y < 100 ? 200 : 20}]]
}
close $channel

proc selected {} {
    global size
    set n 0
    for {set j 0} {$j < $size} {incr j} {
        for {set i 0} {$i < $size} {incr i} { incr n [gi isVoxelSelected $i $j 0] }
    }
    return $n
}

# One gesture from the middle of the disc over so many voxels, of which each is four pixels wide.
proc blow {way args} {
    view 2 event press 16 16 left {*}$args
    view 2 event move [expr {16 + $way}] 16 left {*}$args
    view 2 event release [expr {16 + $way}] 16 left {*}$args
}

segment [newLabels [load disc.nrrd]]
view 2 size 200 200
view 2 zoom 4
view 2 slice 0
view 2 event key 5
echo "tolerance [tool 5 widget wToleranceEdit], width [tool 5 widget wGaussWidthEdit]"

blow 0
set circle [selected]
echo "the first circle: $circle voxels"
blow 14
set disc [selected]
echo "the disc has 305 voxels, near it: [expr {abs($disc - 305) < 60}]"
blow 0 ctrl
echo "without the circle: [expr {$disc - [selected]}] fewer"
blow 0 shift
echo "with it again: [expr {[selected] == $disc}]"
gi undo
gi undo
echo "two steps back: [expr {[selected] == $disc}]"

# Far beyond the disc, where nothing is an edge.
tool 5 widget wToleranceEdit 50
tool 5 widget wGaussWidthEdit 1
blow 14
echo "all tolerated: [expr {[selected] > 800}]"

# A gesture of its own slice: another one in its middle gives it up.
gi clear
view 2 event press 16 16 left
view 2 event move 24 16 left
view 2 slice 1
view 2 event move 20 16 left
view 2 event release 20 16 left
view 2 slice 0
echo "given up: [selected]"
catch {tool 5 widget wToleranceEdit 77} message
echo $message
