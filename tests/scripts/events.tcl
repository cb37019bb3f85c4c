# Mouse and keyboard as a script plays them: a stroke of the brush, keys, wheel, and what cannot be played.

set channel [open scan.nrrd wb]
puts -nonewline $channel "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 40 30 20\nspacings: 1 1 1\nencoding: raw\n\n"
puts -nonewline $channel [string repeat [binary format c 7] 24000]
close $channel
set labels [newLabels [load scan.nrrd]]
segment $labels
gi selectMaterial 1

# Rows of the slice that the selection was added to.
proc drawing {slice} {
    global labels
    for {set j 10} {$j < 15} {incr j} {
        set row ""
        for {set i 5} {$i < 30} {incr i} { append row [expr {[$labels value $i $j $slice] ? "#" : "."}] }
        echo $row
    }
}

view 2 zoom 10
view 2 size 300 200
view 2 slice 4
view 2 event key 1
tool 1 widget wSizeSpinBox 30
view 2 event press 12 12
view 2 event move 20 12
view 2 event move 20 13
view 2 event release 20 13
view 2 event key a
drawing 4

view 2 event press 16 12 ctrl
view 2 event release 16 12 ctrl
view 2 event key u
view 2 event key u
echo "after two undos: [$labels count 1] labels"

foreach {key modifiers} {Right {} Right {} PageDown {} Left {} Home {} End {} Tab {} space {}} {
    view 2 event key $key {*}$modifiers
    echo "$key: slice [view 2 slice]"
}
view 2 event wheel -60
echo "half a notch: slice [view 2 slice]"
view 2 event wheel -60
echo "a notch: slice [view 2 slice]"
view 2 event wheel -240 shift
echo "two notches with shift: slice [view 2 slice]"
view 0 event key Left
view 0 event leave
echo "viewer 0: slice [view 0 slice]"

# Keys of the menus reach them, as from a person's hands.
view 2 event press 20 12 left
view 2 event release 20 12
view 2 event key a
set added [$labels count 1]
view 2 event key z ctrl
echo "Ctrl+Z took back [expr {$added - [$labels count 1]}] of $added"

foreach line {{press 12} {press 90 12} {move 1 1 upper} {key Hyper} {key a left} {wheel fast} {jump 1 1}} {
    catch {view 2 event {*}$line} message
    echo $message
}
