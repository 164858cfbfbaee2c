#!/usr/bin/env bash
# Instructions per call of every entry on its typical scene, counted by
# callgrind (repeatable to a few hundredths of a percent, whatever else the
# machine does). Usage: instructions.sh PROGRAM [WIDTH]
set -euo pipefail
program=$1
width=${2:-}
entries="breast breast_model thyroid thyroid_narrow liver carotid gallwall gallbladder"
[ -n "$width" ] && entries="breast breast_model thyroid liver carotid gallwall gallbladder"
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
printf '%-16s %16s\n' entry "instructions/call"
for e in $entries; do
  calls=$(valgrind -q --tool=callgrind --collect-atstart=no --toggle-collect=MeasuredCalls \
    --callgrind-out-file="$out/$e" "$program" "$e" $width | awk '{print $2}')
  total=$(awk '/^totals:/ {print $2}' "$out/$e")
  printf '%-16s %16d\n' "$e" $((total / calls))
done
