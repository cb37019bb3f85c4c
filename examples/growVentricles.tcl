# Finds the lateral ventricles of an MRI with the magic wand and tells their volume.
#
#   vorel --headless examples/growVentricles.tcl
#
# A click in a ventricle with "All slices" takes all voxels of its values that hang together with it. In the labels
# the seed stays, so the region can be picked and changed later. They become out/ventricles.nrrd, or lie in the
# folder that VOREL_OUT names.

set data [expr {[info exists env(VOREL_DATA)] ? $env(VOREL_DATA) : "/usr/share/mricron/templates"}]
set out [expr {[info exists env(VOREL_OUT)] ? $env(VOREL_OUT) : "out"}]
file mkdir $out

set image [load $data/ch2.nii.gz]
set labels [newLabels $image]
segment $labels $image
material 1 name Ventricles
view 2 slice 90
tool 3 widget wAllSlicesCheckBox 1
gi setToolDataWindow 15 45

# The wand takes the value under the pointer: a click is a move and a press.
foreach {i j} {113 87 69 87} {
    view 2 event move $i $j
    view 2 event press $i $j left shift
    view 2 event release $i $j
}
gi add 3d

lassign [$labels voxelSize] dx dy dz
echo [format "%s: %.1f ml" [material 1 name] [expr {[$labels count 1] * $dx * $dy * $dz / 1000}]]
echo "seeds: [$labels parameters Seeds]"
$labels save $out/ventricles.nrrd
