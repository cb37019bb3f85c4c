# The commands of the program: what they answer, and that a misuse is one sentence and changes nothing.

# Shows the result of a command, or its message. The list of classes depends on the packages.
proc show {args} {
    if {[catch {uplevel #0 $args} text]} {
        set text "ERROR $text"
    }
    echo "[join $args]  =>  [regsub {there are Hx.*} $text {there are ...}]"
}

# Misuses first: each says what is wrong.
foreach misuse {
    {create} {create HxNothing} {create HxEditor} {create HxColormap a b}
    {load} {load -labels} {load missing.nrrd} {load -label missing.nrrd}
    {newLabels} {newLabels nothing} {objects a b}
    {remove} {remove nothing}
    {echo} {quit now} {quit 256} {quit 1 2}
    {app} {app send a b} {app receive a b 7} {app send a localhost 0} {app send a localhost http}
    {answer} {answer x} {answer 0 3}
    {preference} {preference nothing} {preference selectionAlpha 256} {preference selectionAlpha 1 2}
    {help a b} {help nothing}
} { show {*}$misuse }
show objects
show preference selectionAlpha

# Objects come, get names of their own, and go together or not at all.
show create HxColormap
show create HxColormap map.am
show create HxLineSet map.am
show create HxSpreadSheet load
show objects
show objects map*
show remove map.am nothing
show objects map*
show remove map.am map2.am map.am
show objects
show map.am label

show preference selectionAlpha 12
show preference selectionAlpha
show echo several words {and one}

# Help on a command of the program, on one of the objects, and on an object; the list of all holds each.
show help remove
show help save
show help count
show help selectMaterial2
show help label
echo [lindex [split [help HxColormap] \n] 0]
set all [help]
foreach command {"NAME save" "NAME parameters" "NAME label" "NAME count" "NAME materials" "NAME color" "EDITOR add"} {
    if {[regexp -all -line "^$command\\M" $all] != 1} { error "not one explanation of $command" }
}
foreach command {load create newLabels objects remove echo quit app answer preference help} {
    if {![regexp -line "^$command\\M" [help]]} { error "no help on $command" }
}
