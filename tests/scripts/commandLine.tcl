# The program's own options, files, standard input and exit codes, each in a process of its own.

# Runs the program and prints its exit code and what it says on both streams.
proc run {title args} {
    set code 0
    if {[catch {exec -ignorestderr {*}$args 2>@1} text options]} {
        set status [dict get $options -errorcode]
        if {[lindex $status 0] eq "CHILDSTATUS"} {
            set code [lindex $status 2]
            set text [regsub {\nchild process exited abnormally$} $text ""]
            if {$text eq "child process exited abnormally"} { set text "" }
        }
    }
    echo "== $title: exit $code"
    if {$text ne ""} { echo $text }
}

proc write {name text} {
    set file [open $name w]
    puts -nonewline $file $text
    close $file
}

set vorel $env(VOREL)
write good.tcl "echo good \[file tail \[info script\]\]\n"
write bad.hx "# Hx script 1.0\nset a 1\nproc inner {} {\n  error {gone wrong}\n}\ninner\n"
write broken.nrrd "this is no volume\n"

run "unknown option" $vorel --headles
run "missing value" $vorel --headless --eval
run "version" $vorel --version --headless
run "no display" env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM $vorel good.tcl
run "files, then texts" $vorel --headless --eval {echo first} good.tcl --eval {echo second}
run "a dash alone and words after -- are files" $vorel --headless -- -
run "a failing script stops the rest" $vorel --headless bad.hx good.tcl --eval {echo never}
run "a failing text" $vorel --headless --eval {nonsense 1 2}
run "quit passes catch" $vorel --headless --eval {catch {quit 5}; echo never} --eval {echo never}
run "Tcl's exit is the same" $vorel --headless --eval {exit 6; echo never}
run "a missing script" $vorel --headless missing.tcl
run "a broken data file" $vorel --headless broken.nrrd good.tcl

# With a window, here one of a platform without a screen, the rest goes on behind data that cannot be read.
set window [list env QT_QPA_PLATFORM=offscreen $vorel --preferences window.ini]
run "a broken data file in a window" {*}$window broken.nrrd good.tcl missing.nrrd --eval {quit 3}
run "a failing script in a window" {*}$window good.tcl bad.hx good.tcl --eval {echo never}
run "a failing text in a window" {*}$window --eval {nonsense 1 2} --eval {echo never}

run "standard input" $vorel --headless << "proc p {} {\n  echo from p\n}\np\necho done"
run "standard input stops at an error" $vorel --headless << "echo one\nfoo\necho two\n"
run "standard input that ends too early" $vorel --headless << "echo one\nproc p \{\} \{\n"
run "standard input may quit" $vorel --headless << "quit 9\necho never\n"

# The input stays open: what was put off runs between the commands, and may end the program.
proc talk {title lines} {
    set channel [open "|$::vorel --headless 2>@1" r+]
    foreach line $lines { puts $channel $line }
    flush $channel
    fconfigure $channel -blocking 0
    set text {}
    for {set i 0} {$i < 200 && ![eof $channel]} {incr i} {
        append text [read $channel]
        after 50
    }
    echo "== $title: [expr {[eof $channel] ? "ended" : "still running"}]"
    echo [string trim $text]
    fconfigure $channel -blocking 1
    catch {close $channel} text options
    echo "status: [lrange [dict get $options -errorcode] 2 end]"
}
talk "what a script puts off runs" {{after 10 {echo later; quit 3}} {echo first}}
talk "an error in it is told" {{after 10 {nonsense}} {after 100 {quit 4}}}

# Names are UTF-8 wherever the program runs.
set name "\u00e4 \u4e2d"
write $name.tcl "echo {it is $name}\n"
write $name.nrrd "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 1 1 1\nencoding: ascii\n\n7\n"
run "names under the plain locale" env LC_ALL=C $vorel --headless $name.tcl --eval {
    foreach file [glob *.nrrd] { catch {load $file} text; echo $text }
    echo [file exists "\u00e4 \u4e2d.nrrd"] [objects "*\u4e2d*"]
}

write data.nrrd "NRRD0004\ntype: uchar\ndimension: 3\nsizes: 1 1 1\nencoding: ascii\n\n7\n"
run "preferences are not written over data" $vorel --headless --preferences data.nrrd --eval {echo never}
run "which stay as they are" $vorel --headless data.nrrd --eval {echo [data.nrrd value 0 0 0]}

# Without modes editors open in the normal window, whose menu has the images.
run "labels in the normal window" $vorel --headless --in-window data.nrrd --eval {
    load data.nrrd
    set labels [newLabels data.nrrd]
    segment $labels data.nrrd
    menu "Segmentation/Gray image/data2.nrrd"
    menu "Segmentation/Gradient image/Default-GradientImage"
    echo [segment $labels] [objects]
    remove $labels
    echo [catch {view 0 slice}] [objects]
}
run "help on the editor before it is opened" $vorel --headless --eval {echo [lindex [split [help gi] \n] 0]}

run "preferences are kept in the named file" $vorel --headless --preferences p.ini --eval {preference selectionAlpha 33}
run "and come back" $vorel --headless --preferences p.ini --eval {echo [preference selectionAlpha]}
run "but not without it" $vorel --headless --eval {echo [preference selectionAlpha]}

# Results and remarks come on different streams.
set command {env VOREL_RESOURCES=/nowhere "$0" --headless --eval "echo result"}
run "results" sh -c "$command 2>/dev/null" $vorel
run "remarks" sh -c "$command 2>&1 >/dev/null | head -n 1" $vorel
run "lines of both kinds keep their order" $vorel --headless --eval {puts a; echo b; puts c; echo d}
