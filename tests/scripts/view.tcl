# Pictures of slices, drawn without a display.

set channel [open scan.nrrd wb]
puts -nonewline $channel "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 8 6 4\nspacings: 1 1 2\nencoding: raw\n\n"
for {set i 0} {$i < 192} {incr i} { puts -nonewline $channel [binary format c $i] }
close $channel

# Width and height of a PNG file, from its header.
proc pngSize {file} {
    set channel [open $file rb]
    seek $channel 16
    binary scan [read $channel 8] II width height
    close $channel
    return "$width x $height"
}

catch {view 0 slice} message
echo $message
set labels [newLabels [load scan.nrrd]]
segment $labels
gi setSlice 1
foreach voxel {{1 1 1} {2 1 1} {2 2 1}} { gi toggleVoxel {*}$voxel }
gi selectMaterial 1
gi add

foreach viewer {0 1 2} {
    view $viewer zoom 10
    view $viewer snapshot view$viewer.png
    echo "viewer $viewer: orientation [view $viewer orientation], slice [view $viewer slice], zoom [view $viewer zoom],\
        flips [view $viewer flip], [pngSize view$viewer.png]"
}
view 2 size 32 20
view 2 slice 99
view 2 flip 1 0 1
gi snapshot 2 again.png
echo "viewer 2: slice [view 2 slice], flips [view 2 flip], [pngSize again.png]"
gi setMaxAlpha 200
foreach line {{view 3 slice} {view 0 zoom 0} {view 0 size 0 9} {view 0 turn} {view 0 snapshot a.nothing}} {
    catch $line message
    echo $message
}
