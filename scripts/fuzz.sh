#!/usr/bin/env bash
# Fuzzes for a while, outside the test run: fuzz.sh [--seconds N] [TARGET...]
# Builds the clang ASan+UBSan fuzz tree ($ZELKIN_FUZZ_BUILD, build-fuzz by default), then runs each named target
# (all by default) for N seconds (600 by default), one after the other, over a scratch copy of its seeds (plus the
# corpus files that suit it, when the corpus is there). New corpus items, logs and findings stay in the scratch folder
# ($ZELKIN_FUZZ_WORK, /tmp/zelkin-fuzz by default), never in the sources. Prints executions, speed, corpus and
# coverage for each target, and the path of each crashing input. Exits 1 when any target found something.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${ZELKIN_FUZZ_BUILD:-$root/build-fuzz}
work=${ZELKIN_FUZZ_WORK:-${TMPDIR:-/tmp}/zelkin-fuzz}
seconds=600
targets=()
while [ $# -gt 0 ]; do
    case $1 in
        --seconds) seconds=${2:?--seconds needs a number}; shift 2 ;;
        --seconds=*) seconds=${1#--seconds=}; shift ;;
        -h|--help) sed -n '2,7s/^# \{0,1\}//p' "$0"; exit 0 ;;
        -*) echo "fuzz.sh: unknown option $1" >&2; exit 2 ;;
        *) targets+=("$1"); shift ;;
    esac
done
if ! [[ $seconds =~ ^[0-9]+$ ]] || [ "$seconds" -eq 0 ]; then
    echo "fuzz.sh: --seconds takes a positive whole number, not \"$seconds\"" >&2
    exit 2
fi

"$root/scripts/setup.sh"
CC=clang CXX=clang++ "$root/scripts/build.sh" "$build" -DZELKIN_BUILD_FUZZERS=ON -- fuzzers
manifest=$build/fuzz/fuzz_targets.txt

known=$(cut -d"|" -f1 "$manifest")
if [ ${#targets[@]} -eq 0 ]; then
    read -r -a targets <<<"$(echo $known)"
fi
for target in "${targets[@]}"; do
    if ! grep -qx "$target" <<<"$known"; then
        echo "fuzz.sh: no fuzz target \"$target\"; there are: $(echo $known)" >&2
        exit 2
    fi
done

# A log line's value: stat() LOG NAME reads libFuzzer's "stat::NAME: VALUE".
stat() { sed -n "s/^stat::$2: *//p" "$1" | tail -n 1; }

found=0
summary=()
for target in "${targets[@]}"; do
    IFS='|' read -r name program seeds extra suppressions flags < <(grep "^$target|" "$manifest")
    IFS=, read -r -a options <<<"$flags"
    scratch=$work/$name
    rm -rf "$scratch"
    mkdir -p "$scratch/corpus" "$scratch/extra"
    cp "$seeds"/* "$scratch/corpus/"
    # The corpus is read-only and outside the project: its files are offered as seeds, never added to.
    if [ -n "$extra" ]; then
        for file in $extra; do
            if [ -f "$file" ]; then cp "$file" "$scratch/extra/"; fi
        done
    fi
    echo "== $name: ${seconds}s, log in $scratch/log"
    status=0
    (cd "$scratch" &&
        LSAN_OPTIONS=${suppressions:+suppressions=$suppressions} \
        "$program" corpus extra -max_total_time="$seconds" -timeout=30 -print_final_stats=1 \
            -artifact_prefix="$scratch/" ${options[@]+"${options[@]}"}) >"$scratch/log" 2>&1 || status=$?

    runs=$(stat "$scratch/log" number_of_executed_units)
    speed=$(stat "$scratch/log" average_exec_per_sec)
    coverage=$(grep -o 'cov: [0-9]*' "$scratch/log" | tail -n 1 | cut -d' ' -f2)
    corpus=$(find "$scratch/corpus" -type f | wc -l)
    line="$name: ${runs:-?} runs, ${speed:-?}/s, corpus $corpus, cov ${coverage:-?}"
    if [ "$status" -ne 0 ]; then
        found=1
        input=$(sed -n 's/.*Test unit written to \(.*\)$/\1/p' "$scratch/log" | tail -n 1)
        problem=$(grep -m1 -E '^(==[0-9]+==ERROR|SUMMARY|.*runtime error)' "$scratch/log" || true)
        line="$line; FOUND (exit $status): ${problem:-see the log}; input: ${input:-none written}"
    fi
    echo "$line"
    summary+=("$line")
done

echo
echo "== Summary"
printf '%s\n' "${summary[@]}"
exit $found
