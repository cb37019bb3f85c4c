# Opens a brain's MRI and its anatomical atlas, ready to segment.
#
#   vorel examples/brain.tcl
#
# Takes the T1 image and the labels of Debian's mricron-data, and names and colors the materials from the
# tables beside the labels. The labels become out/brain.nrrd, so that edits never reach the atlas itself.
# Leaves the names of the objects in `image` and `labels`.

set data [expr {[info exists env(VOREL_DATA)] ? $env(VOREL_DATA) : "/usr/share/mricron/templates"}]
set out [expr {[info exists env(VOREL_OUT)] ? $env(VOREL_OUT) : "out"}]
file mkdir $out

set image [load $data/ch2.nii.gz]
set labels [load -labels $data/aal.nii.gz]
echo "image  $image: [$image dims] voxels of [$image voxelSize] mm, values [$image range]"
echo "labels $labels: [$labels dims] voxels, [llength [$labels materials]] materials"

segment $labels $image

# Names: lines of "label name code". Colors: 256 bytes each of red, green and blue.
proc nameMaterials {table colors} {
    set channel [open $colors rb]
    binary scan [read $channel] cu256cu256cu256 red green blue
    close $channel
    set channel [open $table r]
    while {[gets $channel line] >= 0} {
        if {[scan $line "%d %s" label name] != 2} continue
        material $label name $name
        material $label color [list [expr {[lindex $red $label] / 255.0}] \
            [expr {[lindex $green $label] / 255.0}] [expr {[lindex $blue $label] / 255.0}]]
    }
    close $channel
}
nameMaterials $data/aal.nii.txt $data/aal.nii.lut
$labels save $out/brain.nrrd
