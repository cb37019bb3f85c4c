# One editing session as a script sees it: a small image is made and saved by hand, labels are drawn by
# selections, undone, saved and read again.

set channel [open scan.nrrd wb]
puts -nonewline $channel "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 5 4 3\nspacings: 1 1 2\nencoding: raw\n\n"
for {set i 0} {$i < 60} {incr i} { puts -nonewline $channel [binary format c $i] }
close $channel

set image [load scan.nrrd]
set labels [newLabels $image]
echo "$labels: [$labels materials] over [$labels ImageData getValue]"
echo "editor: [segment $labels]"
echo "help on it: [llength [split [help gi] \n]] lines"

gi setSlice 1
foreach voxel {{1 1 1} {2 1 1} {2 2 1} {4 3 2}} { gi toggleVoxel {*}$voxel }
gi selectMaterial 1
gi add
echo "after add in the slice: [$labels count 1] voxels"
gi add 3d
echo "after add in the volume: [$labels count 1] voxels"
gi undo
echo "after undo: [$labels count 1] voxels, selected [gi isVoxelSelected 4 3 2]"

material 1 name Node
material 1 color {0.25 0.5 0.75}
$labels save out.seg.nrrd
$labels save plain
remove $labels
echo "open: [catch {material 1 name} message] $message"

set again [load out.seg.nrrd]
echo "$again: [$again type], [$again materials], color [$again parameters Materials/Node/Color], [$again count 1] voxels"
set again [load plain]
echo "$again: [$again type], [$again count 1] voxels"

foreach line {
    {segment nobody}
    {segment scan.nrrd}
    {material 1 name}
    {gi fly}
    {gi smooth 3}
    {gi selectMaterial 99}
} { echo "$line -> [catch $line message] $message" }
