# A part of a real atlas: materials are deleted by the hundred, merged by name and colored from a table. What
# is left in each must be what NumPy counts in the same file:
#
#   labels = numpy.asarray(nibabel.load("aal.nii.gz").dataobj)
#   numpy.isin(labels, [37, 38]).sum()    # Hippocampus_L and Hippocampus_R of aal.nii.txt; and so on
#
# The first count is that of all other voxels.

set counts {
    Exterior 7036717  Hippocampus 15075  Amygdala 3698  Caudate 15623  Putamen 16452  Pallidum 4473
    Thalamus 17099
}

set env(VOREL_OUT) .
set examples [file normalize [file join [file dirname [info script]] .. .. examples]]
source $examples/deepNuclei.tcl

proc check {labels} {
    set label 0
    foreach {name count} $::counts {
        if {[lindex [$labels materials] $label] ne $name} { error "label $label is not $name" }
        set seen [$labels count $label]
        if {$seen != $count} { error "$name has $seen voxels instead of $count" }
        incr label
    }
    if {$label != [llength [$labels materials]]} { error "there are more materials" }
}
check $labels

# Colors of the table, of the pictures' table, and of the file for other programs.
echo [$labels parameters Materials/Thalamus/Color] = [material 6 color]
set copy [load deepNuclei.seg.nrrd]
check $copy
set file [open deepNuclei.seg.nrrd rb]
foreach line [lsearch -all -inline -regexp [split [read $file] \n] {^Segment\d+_(Name|Color|Extent):}] { echo $line }
close $file

# The file of colors is a person's own, and broken ones are told.
proc show {args} { catch {uplevel #0 $args} text; echo "[join $args]  =>  $text" }
proc write {text} { set file [open colors.txt w]; puts $file $text; close $file }
show materialColors nowhere.txt
show materialColors .
write "Thalamus 0.1 0.2"
show materialColors colors.txt
write "# mine\nNidus 0.5 0.25 1\n"
show materialColors colors.txt
gi newMaterial Nidus
show material 7 color
show materialColors
