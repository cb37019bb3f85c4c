# Brush and threshold, drawn and clicked as a person does.

set channel [open scan.nrrd wb]
puts -nonewline $channel "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 8 6 4\nspacings: 1 1 1\nencoding: raw\n\n"
for {set i 0} {$i < 192} {incr i} { puts -nonewline $channel [binary format c [expr {$i % 8}]] }
close $channel

# The selected voxels of a slice, a line per row.
proc show {title slice} {
    set rows {}
    for {set j 0} {$j < 6} {incr j} {
        set row ""
        for {set i 0} {$i < 8} {incr i} { append row [expr {[gi isVoxelSelected $i $j $slice] ? "#" : "."}] }
        lappend rows $row
    }
    echo "$title: $rows"
}

set labels [newLabels [load scan.nrrd]]
segment $labels
view 2 size 200 200
view 2 zoom 20
view 2 slice 1

gi setTool 1
tool 1 widget wSizeSpinBox 1
view 2 event press 1 1 left
view 2 event move 5 1 left
view 2 event move 5 4 left
view 2 event release 5 4 left
show stroke 1
view 2 event press 3 1 left ctrl
view 2 event move 5 1 left ctrl
view 2 event release 5 1 left ctrl
show erased 1
gi undo
gi undo
show undone 1

tool 1 widget wSquareButton click
tool 1 widget wSizeSpinBox 60
view 2 event press 3 3 left
view 2 event release 3 3 left
show square 1
gi undo
tool 1 widget wCurrentMaterialCheckBox 1
gi selectMaterial 1
view 2 event press 3 3 left
view 2 event release 3 3 left
show "no voxel of this material" 1
tool 1 widget wCurrentMaterialCheckBox 0

gi setTool 4
gi setToolDataWindow 2 4
tool 4 widget wSelectButton click
show "threshold, volume" 3
tool 4 widget wAllSlicesCheckBox 0
tool 4 widget wSelectButton click
show "threshold, slice" 1
show "another slice" 3
gi add
echo "labels: [$labels count 1] voxels of [material 1 name]"

catch {tool 1 widget wSizeSpinBox 513} message
echo $message
catch {toolbox widget wBrush click} message
echo [lindex [split $message ";"] 0]
