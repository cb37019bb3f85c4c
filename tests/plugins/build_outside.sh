#!/usr/bin/env bash
# Installs the program into a folder of its own, builds a plug-in against that, and uses its filter from the menu.
#
#   build_outside.sh BUILD_FOLDER PLUGIN_SOURCE COMPILER
set -euo pipefail
build=$(realpath "$1")
source=$(realpath "$2")
prefix=$build/outside/prefix
rm -rf "$build/outside"
mkdir -p "$prefix"

cmake --install "$build" --prefix "$prefix" >"$build/outside/install.log"
# What the whole build brought along must not stand in for what is built here.
rm -f "$prefix/lib/libspecks.so"
cmake -S "$source" -B "$build/outside/specks" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER="$3" \
  -DCMAKE_PREFIX_PATH="$prefix" >"$build/outside/configure.log"
cmake --build "$build/outside/specks"
cmake --install "$build/outside/specks" --prefix "$prefix"

cat >"$build/outside/use.tcl" <<'TCL'
namespace eval kelvane {
    set pluginFilterName {{Remove Specks}}
    set pluginLibs specks
    set pluginClasses kelvaneSpecks
}
set labels [load -labels /usr/share/mricron/templates/aal.nii.gz]
segment $labels
gi toggleVoxel 10 10 90
menu "Segmentation/Remove Specks"
filter "Remove Specks" widget wApply click
if {[gi isVoxelSelected 10 10 90]} {error "the speck is still there."}
TCL
"$prefix/bin/vorel" --headless "$build/outside/use.tcl"
