# Outlines the lateral ventricles of a brain with the lasso's auto trace, in three orientations.
#
#   vorel examples/traceVentricle.tcl
#
# Plays the clicks that a person makes: one on the edge to begin, some along it to fix what is right so far, a
# right click to close. The result becomes the material "Inside"; pictures of the traces under way and of what
# they select go to the folder out, or to the one that the environment variable VOREL_OUT names.

set data [expr {[info exists env(VOREL_DATA)] ? $env(VOREL_DATA) : "/usr/share/mricron/templates"}]
set out [expr {[info exists env(VOREL_OUT)] ? $env(VOREL_OUT) : "out"}]
file mkdir $out

set image [load $data/ch2.nii.gz]
set labels [newLabels $image]
segment $labels $image
gi selectMaterial 1
gi setTool 2
tool 2 widget wAutoTraceCheckBox 1
toolbox widget currentSliceRadioButton click

# Moves the pointer along the edge and clicks at each place; the last place closes the outline.
proc trace {viewer name places} {
    global out
    foreach at [lrange $places 0 end-1] {
        view $viewer event move {*}$at
        view $viewer event press {*}$at
        view $viewer event release {*}$at
    }
    set last [lindex $places end]
    view $viewer event move {*}$last
    view $viewer snapshot $out/ventricle-$name-tracing.png
    view $viewer event press {*}$last right
    view $viewer event release {*}$last right
    view $viewer snapshot $out/ventricle-$name.png
    view $viewer event key a
}

foreach {viewer name slice places} {
    2 axial 88 {{81 122} {81 134} {75 146} {88 140} {90 126} {84 121}}
    1 coronal 124 {{75 98} {89 93} {88 84} {84 84} {78 92}}
    0 sagittal 96 {{101 95} {112 97} {128 92} {143 83} {148 74} {136 79} {113 90}}
} {
    view $viewer size 700 700
    view $viewer zoom 5
    view $viewer slice $slice
    trace $viewer $name $places
    echo "$name slice $slice: [$labels count 1] voxels"
}
