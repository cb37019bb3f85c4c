# Cuts the deep nuclei out of an atlas of the whole brain, as a template for planning.
#
#   scripts/run --headless examples/deepNuclei.tcl
#
# Takes the anatomical labels of Debian's mricron-data, deletes all structures but six, joins the left and
# right half of each, colors them from a table of its own, prints their volumes and writes the result for
# other segmentation programs (.seg.nrrd). Leaves the label field in `labels`.

set data [expr {[info exists env(VOREL_DATA)] ? $env(VOREL_DATA) : "/usr/share/mricron/templates"}]
set out [expr {[info exists env(VOREL_OUT)] ? $env(VOREL_OUT) : "out"}]
file mkdir $out

set nuclei {Hippocampus Amygdala Caudate Putamen Pallidum Thalamus}
materialColors [file join [file dirname [info script]] deepNuclei.txt]

set labels [load -labels $data/aal.nii.gz]
segment $labels
set channel [open $data/aal.nii.txt r]
while {[gets $channel line] >= 0} {
    if {[scan $line "%d %s" label name] == 2} { material $label name $name }
}
close $channel

# From the last one down, as the labels above a deleted material move down by one.
for {set label [expr {[llength [$labels materials]] - 1}]} {$label > 0} {incr label -1} {
    if {[regexp {^(.*)_[LR]$} [material $label name] -> structure] && $structure in $nuclei} continue
    gi deleteMaterial $label 0
}

# The first half takes the name of the whole, and with it the color; the other one joins it.
proc nameMaterial {from to} {
    global labels
    material [lsearch -exact [$labels materials] $from] name $to
}
foreach nucleus $nuclei {
    nameMaterial ${nucleus}_L $nucleus
    answer 0;# yes, merge the two
    nameMaterial ${nucleus}_R $nucleus
}

set edges [$labels voxelSize]
set ml [expr {[lindex $edges 0] * [lindex $edges 1] * [lindex $edges 2] / 1000.0}]
set label 0
foreach name [$labels materials] {
    set n [$labels count $label]
    echo [format "%d %-12s %8d voxels %9.3f ml" $label $name $n [expr {$n * $ml}]]
    incr label
}
$labels save $out/deepNuclei.seg.nrrd
echo "wrote $out/deepNuclei.seg.nrrd"
