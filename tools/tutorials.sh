#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Compares what the library reads with what OpenFOAM itself says of the same cases.
set -euo pipefail

usage() {
    cat <<'TXT'
usage: tools/tutorials.sh [options] [CASE...]

Runs tutorials of OpenFOAM for a few time steps, converts each with foamToVTK, reads it with "ddphost stats", and
compares count, least, greatest and mean of every array: by time, field, interior and patch. CASE is a part of a
tutorial's path; without one all of tools/tutorials/cases.txt are compared.

  -o FOLDER          keep cases and results here (build/tutorials); a case that is there is not run again
  -j N               run N cases at once (1)
  --ddphost PATH     the host to test (build/release/host/ddphost)
  --flags "..."      more options for "ddphost info" and "ddphost stats", such as --plain
  --run-only         prepare and run the cases, compare nothing

Needs Debian's packages openfoam, openfoam-examples, python3-vtk9, python3-numpy and m4, and installs them as root. All
differences go to FOLDER/differences.txt. The exit code is 1 if any array is wrong.
TXT
}

cd "$(dirname "$(realpath "$0")")/.."
. tools/setup.sh

root=$PWD
folder=build/tutorials
jobs=1
ddphost=build/release/host/ddphost
flags=""
compare=true
wanted=()
while [ $# -gt 0 ]; do
    case $1 in
        -h | --help) usage; exit 0 ;;
        -o) folder=$2; shift ;;
        -j) jobs=$2; shift ;;
        --ddphost) ddphost=$2; shift ;;
        --flags) flags=$2; shift ;;
        --run-only) compare=false ;;
        --one) one=$2; shift ;;
        -*) usage >&2; exit 2 ;;
        *) wanted+=("$1") ;;
    esac
    shift
done
mkdir -p "$folder"
folder=$(realpath "$folder")

examples=/usr/share/doc/openfoam-examples/examples
# Seconds that one program may take.
export TUTORIAL_SECONDS=60

# The tutorials' scripts and dictionaries look for this layout below WM_PROJECT_DIR, most of which Debian leaves out.
make_project() {
    mkdir -p "$folder/project/bin/tools"
    cp tools/tutorials/RunFunctions "$folder/project/bin/tools/"
    printf 'cleanCase() { :; }\ncleanCase0() { :; }\n' >"$folder/project/bin/tools/CleanFunctions"
    ln -sfn /usr/share/openfoam/etc "$folder/project/etc"
    ln -sfn "$examples" "$folder/project/tutorials"
}

set_environment() {
    export WM_PROJECT=OpenFOAM WM_PROJECT_DIR=$folder/project WM_PROJECT_VERSION=v1912
    export FOAM_TUTORIALS=$examples FOAM_ETC=$WM_PROJECT_DIR/etc FOAM_SIGFPE=true
    # Dictionaries that compile code would need OpenFOAM's headers.
    export FOAM_APP=/nonexistent FOAM_SRC=/nonexistent
    export OMPI_MCA_btl_vader_single_copy_mechanism=none OMP_NUM_THREADS=1
}

# Replaces top-level entries of a dictionary, so that it looks as if written by hand: set_entries FILE KEY VALUE ...
set_entries() {
    local file=$1
    shift
    while [ $# -gt 0 ]; do
        sed -i -E "/^$1[[:space:]][^;]*;/d" "$file"
        printf '%s %s;\n\n' "$1" "$2" >>"$file"
        shift 2
    done
}

# Cuts a run to a few steps and writes each of them.
shorten() {
    local control=system/controlDict start step end
    start=$(foamDictionary -entry startTime -value "$control" 2>/dev/null || echo 0)
    step=$(foamDictionary -entry deltaT -value "$control" 2>/dev/null || echo 1)
    end=$(awk -v start="$start" -v step="$step" -v steps="$steps" 'BEGIN { printf "%.12g", start + steps * step }')
    set_entries "$control" endTime "$end" writeControl timeStep writeInterval 1 adjustTimeStep no purgeWrite 0 \
        stopAt endTime runTimeModifiable no
    [ -z "$binary" ] || set_entries "$control" writeFormat binary
    [ -z "$gz" ] || set_entries "$control" writeCompression on
    [ -z "$nofunctions" ] || foamDictionary -entry functions -remove "$control" >/dev/null 2>&1
}

# Samples a patch in the form that the library reads and, to compare with, as VTK: values of faces and of points.
sample_patch() {
    cat >>system/controlDict <<TXT

functions
{
    sampleSurface
    {
        type            surfaces;
        libs            (sampling);
        writeControl    writeTime;
        surfaceFormat   foam;
        fields          (p U);
        surfaces
        (
            faces { type patch; patches ($1); triangulate true; interpolate false; }
            nodes { type patch; patches ($1); triangulate true; interpolate true; }
        );
    }
    sampleSurfaceVtk
    {
        \$sampleSurface;
        surfaceFormat   vtk;
    }
}
TXT
}

# One way to decompose for all, since two cores are no place for a run of twenty domains.
write_decomposition() {
    cat <<TXT
FoamFile
{
    version 2.0;
    format ascii;
    class dictionary;
    object decomposeParDict;
}

numberOfSubdomains $domains;
method simple;
coeffs
{
    n ($domains 1 1);
}
TXT
}

prepare() {
    local path=$1 case=$2 file
    rm -rf "$case"
    mkdir -p "$(dirname "$case")"
    cp -rL "$examples/$path" "$case"
    chmod -R u+w "$case"
    cd "$case"
    # Debian's packaging compresses longer files. OpenFOAM reads fields and geometry in that form, but not the rest.
    find . -name '*.gz' ! -path './0*' ! -path '*/triSurface/*' ! -path '*/polyMesh/*' -exec gunzip -f {} +
    # The functions of RunFunctions need bash, and a script that was compressed has lost its mode.
    { find . -type f -exec grep -l '^#! */bin' {} + || true; } | while read -r file; do
        sed -i '1s,^#! */bin/sh,#!/bin/bash,' "$file"
        chmod +x "$file"
    done
    shorten
    [ -z "$surfaces" ] || sample_patch "$surfaces"
    if [ -n "$decompose" ] || [ -n "$(find . -name 'decomposeParDict*')" ]; then
        write_decomposition >system/decomposeParDict
        find system -mindepth 2 -name 'decomposeParDict' | while read -r file; do write_decomposition >"$file"; done
    fi
}

run_steps() {
    if [ -n "$decompose" ] || [ ! -f Allrun ]; then
        . "$WM_PROJECT_DIR/bin/tools/RunFunctions"
        [ ! -d 0.orig ] || restore0Dir
        # Only "setFields" knows the file under this name.
        [ ! -f 0/alpha.water.orig ] || cp 0/alpha.water.orig 0/alpha.water
        [ ! -f system/blockMeshDict ] || runApplication blockMesh
        [ ! -f system/setFieldsDict ] || runApplication setFields
        if [ -n "$decompose" ]; then
            runApplication decomposePar
            runParallel "$(getApplication)"
        else
            runApplication "$(getApplication)"
        fi
    else
        timeout $((4 * TUTORIAL_SECONDS)) bash ./Allrun </dev/null >log.Allrun 2>&1 ||
            echo log.Allrun >>"$TUTORIAL_FAILED"
    fi
}

# The meshes of a case: one line for each with the folder of the case (a processor's, or ".") and the region.
list_meshes() {
    find -L . -path '*/polyMesh/owner*' ! -path '*/dynamicCode/*' ! -path '*.orig/*' | sed 's,^\./,,' | sort |
        awk -F/ '{ base = "."; i = 1; if ($1 ~ /^processor[0-9]+$/) { base = $1; i = 2 }
                   if ($i != "constant") { next }
                   print base, ($(i + 1) == "polyMesh" ? "region0" : $(i + 1)) }' | sort -u
}

# Without the libraries of a condition foamToVTK shows the value in the file, which is what the solver had. With them it
# also sets up conditions without a value, but then some wall functions start anew from the cells.
libraries="(turbulenceModels incompressibleTurbulenceModels compressibleTurbulenceModels atmosphericModels waveModels
    liquidPropertiesFvPatchFields semiPermeableBaffle thermalBaffleModels regionCoupling
    surfaceFilmDerivedFvPatchFields fvMotionSolvers reactingEulerianFvPatchFields combustionModels
    interfaceProperties twoPhaseProperties)"

convert() {
    timeout "$TUTORIAL_SECONDS" foamToVTK "${options[@]}" -name "$@" </dev/null >>"$log" 2>&1 && return
    rm -rf "${base:?}/$1"
    return 1
}

# Without its library this wall function is taken for a fixed value, but it is that of the cells to any solver.
convert_wall_functions() {
    local fields
    fields=$({ find "$base"/[0-9]*/"$sub" -maxdepth 1 -type f -exec zgrep -l '\<kqRWallFunction;' {} + 2>/dev/null ||
        true; } | sed 's,.*/,,; s,\.gz$,,' | sort -u | tr '\n' ' ')
    [ -z "$fields" ] || convert "$vtk/wall-functions" -fields "($fields)" -lib "$libraries" || true
}

# Converts one mesh. A boundary condition that foamToVTK cannot set up ends it; then each field is converted by itself,
# and each time of such a field.
convert_mesh() {
    local base=$1 region=$2 options file field time sub
    local vtk=VTK-$region log=log.foamToVTK.$base.$region
    rm -rf "${base:?}/$vtk"
    : >"$log"
    sub=$region
    [ "$region" != region0 ] || sub=.
    options=(-case "$base" -region "$region" -processor-fields -no-lagrangian)
    [ "$base" != . ] || options=(-region "$region" -no-lagrangian)
    if ! convert "$vtk"; then
        echo "$log" >>failed
        find "$base"/[0-9]*/"$sub" -maxdepth 1 -type f -printf '%f\n' 2>/dev/null | sed 's,\.gz$,,' | sort -u |
            while read -r field; do
                convert "$vtk/$field" -fields "$field" && continue
                for file in "$base"/[0-9]*/"$sub/$field"; do
                    time=${file#"$base"/}
                    time=${time%%/*}
                    convert "$vtk/$field-$time" -fields "$field" -time "$time" ||
                        convert "$vtk/$field-$time" -fields "$field" -time "$time" -lib "$libraries" || true
                done
            done
    fi
    convert_wall_functions
}

run_case() {
    local path=$1 case=$folder/cases/$1 word base region
    local steps domains surfaces decompose binary gz nofunctions
    steps=2 domains=3 surfaces="" decompose="" binary="" gz="" nofunctions=""
    for word in "${@:2}"; do
        case $word in
            steps=* | domains=* | surfaces=*) eval "$word" ;;
            *) eval "$word=yes" ;;
        esac
    done
    if [ ! -f "$case/ran" ]; then
        [ -d "$examples/$path" ] || { echo "no such tutorial: $path" >&2; return 0; }
        say "$path"
        export TUTORIAL_FAILED=$case/failed
        prepare "$path" "$case"
        (run_steps)
        list_meshes >meshes
        touch case.foam ran
    fi
    cd "$case"
    [ ! -f converted ] || return 0
    while read -r base region; do
        convert_mesh "$base" "$region"
    done <meshes
    touch converted
    [ ! -f failed ] || sed 's,^,   failed: ,' failed
}

chosen_cases() {
    local line part
    grep -v '^#' tools/tutorials/cases.txt | while read -r line; do
        if [ ${#wanted[@]} -eq 0 ]; then
            echo "$line"
        else
            for part in "${wanted[@]}"; do
                case ${line%% *} in *"$part"*) echo "$line" ;; esac
            done
        fi
    done
}

set_environment
# How the script runs itself for each case, so that xargs can run several at once.
if [ -n "${one:-}" ]; then
    # shellcheck disable=SC2086
    run_case $one
    exit 0
fi

install_packages openfoam openfoam-examples python3-vtk9 python3-numpy m4
make_project
chosen_cases >"$folder/chosen"
[ -s "$folder/chosen" ] || fail "no tutorial of tools/tutorials/cases.txt contains: ${wanted[*]}"
xargs -d '\n' -P "$jobs" -I{} "$root/tools/tutorials.sh" -o "$folder" --one {} <"$folder/chosen"
[ "$compare" = true ] || exit 0
[ -x "$ddphost" ] || fail "no host at $ddphost: run ./run.sh or give --ddphost"
# The system's Python, since Debian's VTK module is only there.
exec /usr/bin/python3 tools/tutorials/compare.py --ddphost "$ddphost" "--flags=$flags" "$folder" <"$folder/chosen"
