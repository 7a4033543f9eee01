#!/usr/bin/env bash
# A fuzzing campaign over every libFuzzer target: scripts/fuzz.sh MINUTES runs each target for
# MINUTES minutes (default 10) on a corpus kept in build/fuzz/corpus/<target>, which starts from
# the seeds in fuzz/corpus and grows from one campaign to the next. Inputs that crash, leak or
# hang land in build/fuzz/artifacts/<target>/; the end prints the executions of each target.
set -euo pipefail
cd "$(dirname "$0")/.."

minutes="${1:-10}"
if ! [[ "$minutes" =~ ^[0-9]+$ ]] || [ "$minutes" -eq 0 ]; then
    echo "usage: scripts/fuzz.sh MINUTES (a whole number of minutes per target)" >&2
    exit 2
fi

bash scripts/install-deps.sh --with-fuzz
cmake --preset fuzz
cmake --build --preset fuzz -j "$(nproc)"

targets=(number_text chart_state definition_file block_panel bar_chart_state localization gallery_files
         rtchart_roundtrip)
summary=()
status=0
for target in "${targets[@]}"; do
    corpus="build/fuzz/corpus/$target"
    artifacts="build/fuzz/artifacts/$target"
    log="build/fuzz/logs/$target.log"
    mkdir -p "$corpus" "$artifacts" "$(dirname "$log")"
    cp -n fuzz/corpus/"$target"/* "$corpus"/ 2>/dev/null || true
    echo "== fuzz_$target for $minutes min"
    if ! ASAN_OPTIONS=detect_leaks=0 QT_QPA_PLATFORM=offscreen \
        ./build/fuzz/fuzz/fuzz_"$target" -max_total_time=$((minutes * 60)) -timeout=30 \
        -print_final_stats=1 -artifact_prefix="$artifacts/" "$corpus" >"$log" 2>&1; then
        echo "fuzz_$target failed; see $log and $artifacts" >&2
        status=1
    fi
    runs="$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || true)"
    summary+=("fuzz_$target: ${runs:-?} executions, $(find "$corpus" -type f | wc -l) corpus files")
done
printf '%s\n' "${summary[@]}"
exit "$status"
