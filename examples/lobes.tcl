# Reduces the anatomical atlas to the lobes of the brain, for a paper's overview figure.
#
#   scripts/run --headless examples/lobes.tcl
#
# Every structure goes into the first material of its lobe; what belongs to none becomes background.
# The result is written with names and colors that other segmentation programs read (.seg.nrrd).

set data [expr {[info exists env(VOREL_DATA)] ? $env(VOREL_DATA) : "/usr/share/mricron/templates"}]
set out [expr {[info exists env(VOREL_OUT)] ? $env(VOREL_OUT) : "out"}]
file mkdir $out

set lobes {
    Frontal     {Precentral* Frontal_* Rolandic* Supp_Motor* Olfactory* Rectus* Paracentral*}  {0.90 0.30 0.25}
    Parietal    {Postcentral* Parietal_* SupraMarginal* Angular* Precuneus*}                    {0.25 0.55 0.90}
    Temporal    {Temporal_* Heschl* Fusiform*}                                                  {0.30 0.75 0.35}
    Occipital   {Calcarine* Cuneus* Lingual* Occipital_*}                                       {0.95 0.80 0.25}
    Limbic      {Cingulum* Hippocampus* ParaHippocampal* Amygdala* Insula*}                     {0.70 0.40 0.85}
    Deep_nuclei {Caudate* Putamen* Pallidum* Thalamus*}                                         {0.95 0.55 0.15}
    Cerebellum  {Cerebelum* Vermis*}                                                            {0.45 0.75 0.80}
}

set labels [load -labels $data/aal.nii.gz]
segment $labels
set channel [open $data/aal.nii.txt r]
while {[gets $channel line] >= 0} {
    if {[scan $line "%d %s" label name] == 2} { material $label name $name }
}
close $channel

proc lobeOf {structure} {
    global lobes
    foreach {lobe patterns color} $lobes {
        foreach pattern $patterns { if {[string match $pattern $structure]} { return $lobe } }
    }
    return ""
}

proc moveVoxels {from to} {
    gi selectMaterial2 $from
    gi selectMaterial $to
    gi add 3d
}

set label 0
foreach structure [$labels materials] {
    set lobe [lobeOf $structure]
    if {$label > 0 && $lobe eq ""} {
        moveVoxels $label 0
    } elseif {$lobe ne "" && [info exists first($lobe)]} {
        moveVoxels $label $first($lobe)
    } elseif {$lobe ne ""} {
        set first($lobe) $label
    }
    incr label
}

set edges [$labels voxelSize]
set ml [expr {[lindex $edges 0] * [lindex $edges 1] * [lindex $edges 2] / 1000.0}]
foreach {lobe patterns color} $lobes {
    material $first($lobe) name $lobe
    material $first($lobe) color $color
    set n [$labels count $first($lobe)]
    echo [format "%-12s %9d voxels %9.1f ml" $lobe $n [expr {$n * $ml}]]
}
$labels save $out/lobes.seg.nrrd
echo "wrote $out/lobes.seg.nrrd"
