#!/bin/sh
# Counts what one node costs, in instructions, allocations and memory, under valgrind. Run from the root of the tree.
# Every figure is a difference between runs of two sizes, so that what they have in common cancels.
set -eu

cmake --preset bench >&2
cmake --build --preset bench --target patina_workloads patina_workloads_of_command >&2
program=build/bench/bin/patina_workloads

# instructions WORKLOAD SIZE
instructions() {
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$1" "$2" 2>&1 |
        awk '/Collected :/ { figure = $4 } END { print figure ? figure : "no figure" }'
}

# allocations WORKLOAD SIZE: calls of operator new, malloc and realloc
allocations() {
    valgrind --tool=memcheck --leak-check=no --undef-value-errors=no "$program" "$1" "$2" 2>&1 |
        awk '/total heap usage:/ { figure = $5 } END { print figure ? figure : "no figure" }' | tr -d ,
}

# live_bytes WORKLOAD SIZE: what is allocated at the time of the most, without what the allocator adds
live_bytes() {
    snapshots=$(mktemp)
    valgrind --tool=massif --peak-inaccuracy=0 --massif-out-file="$snapshots" "$program" "$1" "$2" >/dev/null 2>&1
    awk -F= '/^mem_heap_B/ && $2 > most { most = $2 } END { print most ? most : "no figure" }' "$snapshots"
    rm "$snapshots"
}

# difference COUNT WORKLOAD SMALL LARGE
difference() {
    small=$("$1" "$2" "$3")
    large=$("$1" "$2" "$4")
    echo $((large - small))
}

# row TITLE UNITS INSTRUCTIONS ALLOCATIONS
row() {
    awk -v title="$1" -v units="$2" -v instructions="$3" -v allocations="$4" \
        'BEGIN { printf "%-40s %14.0f %14.2f\n", title, instructions / units, allocations / units }'
}

# call_row OPERATION TYPE: the cost of one call
call_row() {
    instructions=$(difference instructions "$1/$2" 10 110)
    allocations=$(difference allocations "$1/$2" 10 110)
    row "$1 $2" 100 "$instructions" "$allocations"
}

# document_row DO START DOCUMENT SMALL LARGE NODES: what DO costs for each node beyond SMALL, without what START, from
# which it starts, costs too; the document has NODES nodes for each unit of its size
document_row() {
    instructions=$(($(difference instructions "$1/$3" "$4" "$5") -
        $(difference instructions "$2/$3" "$4" "$5")))
    allocations=$(($(difference allocations "$1/$3" "$4" "$5") -
        $(difference allocations "$2/$3" "$4" "$5")))
    row "$1 $3, $4 to $5" $((($5 - $4) * $6)) "$instructions" "$allocations"
}

# memory_row TYPE: what one node holds while it lives
memory_row() {
    printf '%-40s %14d\n' "memory $1" $(($(difference live_bytes "memory/$1" 100 600) / 500))
}

printf '%-40s %14s %14s\n' 'for each call, or each node exported' instructions allocations
# each with the nodes that one unit of its size has
documents='constant-chain:1 texture-chain:1 summed-fan-out:2 unread-fan-out:1'
types='CoreVertexColour CoreUv CoreTexture CoreConstant CoreMaths CoreSwizzle CoreLayerBlend CoreAnimatedUv'
for type in CoreDefault $types; do
    call_row create "$type"
done
for type in CoreDefault $types; do
    call_row update "$type"
done
for type in $types; do
    call_row generate "$type"
done
for document in $documents; do
    for sizes in '10 100' '100 1000' '1000 10000'; do
        document_row export document "${document%:*}" $sizes "${document#*:}"
        document_row assemble build "${document%:*}" $sizes "${document#*:}"
    done
done

printf '\n%-40s %14s\n' "with the command's allocator" instructions
program=build/bench/bin/patina_workloads_of_command
for document in $documents; do
    name=${document%:*}
    nodes=$((900 * ${document#*:}))
    total=$(($(difference instructions "assemble/$name" 100 1000) - $(difference instructions "build/$name" 100 1000)))
    printf '%-40s %14d\n' "assemble $name, 100 to 1000" $((total / nodes))
done
program=build/bench/bin/patina_workloads

printf '\n%-40s %14s\n' 'for each live node' bytes
for type in CoreDefault $types; do
    memory_row "$type"
done
