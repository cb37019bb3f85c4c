# A volume comes in, gets a label field, and both answer questions about themselves.

proc show {args} {
    if {[catch {uplevel #0 $args} text]} {
        echo "[join $args]  =>  ERROR $text"
    } else {
        echo "[join $args]  =>  $text"
    }
}

# A volume of 4 x 3 x 2 voxels with the values 0 to 23, as text.
set file [open brain.nrrd w]
puts $file "NRRD0004\ntype: short\ndimension: 3\nsizes: 4 3 2\nencoding: ascii\nspace: left-posterior-superior
space directions: (0.5,0,0) (0,2,0) (0,0,3)\nspace origin: (10,20,30)\n"
for {set i 0} {$i < 24} {incr i} { puts $file $i }
close $file

show load brain.nrrd
show brain.nrrd dims
show brain.nrrd range
show brain.nrrd value 3 2 1
show newLabels brain.nrrd
show newLabels brain.nrrd
show newLabels brain.Labels
show brain.Labels type
show brain.Labels dims
show brain.Labels bbox
show brain.Labels materials
show brain.Labels count 0
show brain.Labels range
show brain.Labels parameters Materials/Inside/Color
show brain.Labels parameters ImageData
show brain.Labels ImageData connect
show load -labels brain.nrrd

# Labels over an image lie exactly where the image lies, to the last digit.
set file [open fine.nrrd w]
puts $file "NRRD0004\ntype: short\ndimension: 3\nsizes: 4 3 1\nencoding: ascii\nspace: left-posterior-superior
space directions: (0.48828125123456,0,0) (0,2,0) (0,0,3)\nspace origin: (10.123456789012,20,30)\n"
for {set i 0} {$i < 12} {incr i} { puts $file $i }
close $file
set image [load fine.nrrd]
set labels [newLabels $image]
$image save image.nrrd
$labels save labels.nrrd
proc geometryOf {name} {
    set file [open $name rb]
    set lines [lrange [split [read $file] \n] 0 20]
    close $file
    return [lsearch -all -inline -glob $lines "space *"]
}
echo [join [geometryOf image.nrrd] \n]
echo "the same: [expr {[geometryOf image.nrrd] eq [geometryOf labels.nrrd]}]"
remove $image $labels
show objects
show remove brain.nrrd
show brain.Labels parameters ImageData
