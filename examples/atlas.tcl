# Edits a brain atlas over its MRI and tells what changed.
#
#   scripts/run
#
# Takes the T1 image and the anatomical labels of Debian's mricron-data, names the materials from the
# table beside the labels, joins the left and right parts of four deep structures, gives the amygdala
# to the hippocampus, takes that last step back, saves the result as .nrrd and .nii.gz, reads both
# files back, prints what changed, and writes pictures of the three orientations and of the whole window.

source [file join [file dirname [info script]] brain.tcl]

proc labelOf {name} {
    global labels
    set label [lsearch -exact [$labels materials] $name]
    if {$label < 0} { error "the atlas has no structure \"$name\"" }
    return $label
}

# Moves every voxel of one material into another, by a selection of the volume.
proc move {from to} {
    gi selectMaterial2 [labelOf $from]
    gi selectMaterial [labelOf $to]
    gi add 3d
}

proc countAll {} {
    global labels
    set counts {}
    set n [llength [$labels materials]]
    for {set label 0} {$label < $n} {incr label} { lappend counts [$labels count $label] }
    return $counts
}

set before [countAll]
set names [$labels materials]

# The thalamus is finished: its lock keeps it as it is, whatever moves beside it.
material [labelOf Thalamus_L] lock 1

foreach structure {Hippocampus Amygdala Caudate Putamen} {
    move ${structure}_R ${structure}_L
    material [labelOf ${structure}_L] name $structure
}
move Amygdala Hippocampus
gi undo
echo "joined the halves of four structures; undid the fifth step"

set after [countAll]
$labels save $out/atlas.nrrd
$labels save $out/atlas.nii.gz

set edges [$labels voxelSize]
set ml [expr {[lindex $edges 0] * [lindex $edges 1] * [lindex $edges 2] / 1000.0}]
echo [format "%-20s %10s %10s %10s %10s" material before after voxels ml]
foreach name [$labels materials] old $before new $after {
    if {$old == $new} continue
    echo [format "%-20s %10d %10d %+10d %+10.3f" $name $old $new [expr {$new - $old}] [expr {($new - $old) * $ml}]]
}

# Pictures of the three orientations through the left hippocampus, image and outlines.
gi setCrossHairLocationIndex 64 106 58
foreach {viewer name} {0 sagittal 1 coronal 2 axial} {
    view $viewer size 724 724
    view $viewer snapshot $out/atlas-$name.png
}
windowSnapshot $out/atlas-window.png
echo "pictures: $out/atlas-sagittal.png, -coronal.png, -axial.png, -window.png"

# What was written must be what was edited.
foreach file [list $out/atlas.nrrd $out/atlas.nii.gz] {
    set copy [load -labels $file]
    set same [expr {[$copy dims] eq [$labels dims]}]
    for {set label 0} {$label < [llength $after]} {incr label} {
        if {[$copy count $label] != [lindex $after $label]} { set same 0 }
    }
    if {!$same} { error "$file does not hold what was saved" }
    echo "$file: [lrange [$copy materials] 37 38] ..., read back the same"
    remove $copy
}
