# Makes the pictures of the user's guide: an atlas over its MRI, a stroke of the brush, the masking, a
# selection on its way, outlines of the lasso.
#
#   scripts/guide-pictures
#
# The pictures go to the folder out/guide, or to the one that the environment variable VOREL_OUT names.

set data [expr {[info exists env(VOREL_DATA)] ? $env(VOREL_DATA) : "/usr/share/mricron/templates"}]
set out [expr {[info exists env(VOREL_OUT)] ? $env(VOREL_OUT) : "out/guide"}]
file mkdir $out

set image [load $data/ch2.nii.gz]
set labels [load -labels $data/aal.nii.gz]
segment $labels $image

# Lines of "label name code".
set table [open $data/aal.nii.txt r]
while {[gets $table line] >= 0} {
    if {[scan $line "%d %s" label name] == 2} { material $label name $name }
}
close $table

# The whole window, in three orientations, with the left hippocampus selected and current.
view 2 event key v
view 2 event key 6
view 2 event key 1
gi setCrossHairLocationIndex 64 106 58
toolbox widget currentSliceRadioButton click
gi selectMaterial2 37
view 2 event move 64 106
windowSnapshot $out/window.png

# The magic wand in a ventricle, held off the other one by a limit line.
segment [newLabels $image] $image
view 2 event key 6
view 2 slice 90
view 2 size 420 420
gi setToolDataWindow 5 75
view 2 event key l
view 2 event press 92 94
foreach {i j} {94 101 96 111 93 121 90 134 90 146} { view 2 event move $i $j left }
view 2 event release 90 146
view 2 event move 113 87
view 2 event press 113 87
view 2 event release 113 87
view 2 event leave
view 2 snapshot $out/wand.png

# A stroke of the brush in an axial slice, as the mouse would draw it.
segment [newLabels $image] $image
view 2 slice 58
view 2 size 420 420
view 2 event key 1
tool 1 widget wSizeSpinBox 16
view 2 event press 70 150 left
foreach {i j} {66 140 64 130 68 120 76 114 86 112} { view 2 event move $i $j left }
view 2 event release 86 112 left
view 2 event leave
view 2 snapshot $out/brush.png

# Masking shows what it lets through.
gi clear 3d
gi setToolDataWindow 95 255
toolbox widget wEnableMaskingCheckBox 1
view 2 snapshot $out/masking.png

# What was drawn and given to a material is picked, and rotated as far as the button is held.
toolbox widget wEnableMaskingCheckBox 0
view 2 event press 62 84 left
foreach {i j} {64 92 68 100 70 108 76 112} { view 2 event move $i $j left }
view 2 event release 76 112 left
gi add
view 2 event key 0
view 2 event press 66 96 left
view 2 event release 66 96 left
view 2 event press 74 110 left shift
view 2 event move 60 112 left shift
view 2 snapshot $out/pick.png
view 2 event release 60 112 left shift

# The lasso's outlines, each before it is finished.
proc play {args} { foreach step $args { view 2 event {*}$step } }
gi clear 3d
view 2 event leave
view 2 slice 88
view 2 size 300 300
view 2 zoom 3
view 2 event key 2
play {press 82 121} {move 79 128} {move 79 136} {move 72 145} {move 75 149} {move 88 141} {move 90 136} {move 91 128}
view 2 snapshot $out/lasso-freehand.png
play {release 91 128} {key c}
tool 2 widget wEllipseButton 1
play {press 70 122} {move 111 148}
view 2 snapshot $out/lasso-ellipse.png
play {release 111 148} {key c}
tool 2 widget wRectangleButton 1
play {press 70 122} {move 111 148}
view 2 snapshot $out/lasso-rectangle.png
play {release 111 148} {key c}
tool 2 widget wFreehandButton 1
tool 2 widget wAutoTraceCheckBox 1
play {press 81 122} {release 81 122} {move 81 134} {press 81 134} {release 81 134}
play {move 74 146} {press 74 146} {release 74 146} {move 89 139}
view 2 snapshot $out/lasso-trace.png
play leave
tool 2 widget wAutoTraceCheckBox 0

# A curve is blown up from the middle of the midbrain, and the button still held.
segment [newLabels $image] $image
view 2 slice 58
view 2 zoom 2
view 2 size 420 420
view 2 event key 5
tool 5 widget wToleranceEdit 25
play {press 90 110} {move 105 110}
view 2 snapshot $out/blow.png
play {release 105 110}
