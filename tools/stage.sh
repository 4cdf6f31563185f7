# shellcheck shell=bash
# What ./demo and ./check share: building quietly, with a log that is shown only on failure. Sourced, from the root.

# runLogged LOG COMMAND...: runs it with all output in LOG; when it fails, shows the log's errors and its end.
runLogged()
{
    local log=$1
    shift
    mkdir -p "$(dirname "$log")"
    if "$@" >"$log" 2>&1 </dev/null; then
        return 0
    fi
    printf '\nFailed: %s\nFrom %s:\n' "$*" "$log"
    { grep -E 'error:|undefined reference|FAILED:' "$log" || true; } | head -n 20 | sed 's/^/    /'
    tail -n 20 "$log" | sed 's/^/    /'
    return 1
}

# buildPreset PRESET TARGET...: configures, and builds with all cores. After a target that cannot be built, the
# others still are.
buildPreset()
{
    local preset=$1
    shift
    runLogged "build/$preset/configure.log" cmake --preset "$preset" || return 1
    runLogged "build/$preset/build.log" cmake --build "build/$preset" --parallel "$(nproc)" --target "$@" -- -k 0
}
