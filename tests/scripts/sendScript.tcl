# `app send` in the program, against a listener of its own that speaks the same protocol.

proc show {args} {
    if {[catch {uplevel #0 $args} text]} { set text "ERROR $text" }
    echo "$text"
}

# The listener answers three lines, then hangs up on the fourth.
set server [open server.tcl w]
puts $server {
    proc accept {channel host port} {
        fconfigure $channel -buffering line -translation lf
        gets $channel line
        switch -- $line {
            ping { puts $channel "0 pong" }
            lines { puts $channel "0 a\\nb\\\\c" }
            bad { puts $channel "1 no such thing" }
            default { set ::done 1 }
        }
        close $channel
    }
    set listener [socket -server accept -myaddr 127.0.0.1 0]
    set file [open port.new w]
    puts $file [lindex [fconfigure $listener -sockname] 2]
    close $file
    file rename port.new port
    after 20000 { set done 1 }
    vwait done
}
close $server
exec $env(VOREL) --headless server.tcl &

for {set i 0} {$i < 200 && ![file exists port]} {incr i} { after 100 }
set file [open port]
set port [string trim [read $file]]
close $file

# The port differs from run to run.
proc send {line} {
    catch {app send $line 127.0.0.1 $::port} text
    echo [string map [list $::port PORT] $text]
}
send ping
send lines
send bad
send "two\nlines"
send bye
# Nobody listens any more.
for {set i 0} {$i < 100 && ![catch {close [socket 127.0.0.1 $port]}]} {incr i} { after 50 }
send ping
