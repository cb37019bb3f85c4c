# Writes every image that was loaded as NRRD and tells what it is.
#
#   scripts/run --headless scan.nii.gz dicom-folder/ examples/convert.tcl
#
# Files and folders before the script are loaded first; a folder is read as one series. The copies go to
# the folder out, or to the one that the environment variable VOREL_OUT names.

set out [expr {[info exists env(VOREL_OUT)] ? $env(VOREL_OUT) : "out"}]
file mkdir $out

set images [objects]
if {[llength $images] == 0} { error "name the files to convert before the script" }

foreach image $images {
    if {[catch {$image dims} dims]} continue
    set name [file tail $image]
    foreach suffix {.gz .nii .mha .mhd .nrrd .tif .dcm} {
        if {[string match *$suffix $name]} { set name [string range $name 0 end-[string length $suffix]] }
    }
    $image save $out/$name.nrrd
    echo "$image: [join $dims " x "], voxels of [join [$image voxelSize] " x "] mm, values [$image range] -> $out/$name.nrrd"
}
