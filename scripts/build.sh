# Sourced by the scripts beside it: configures and builds a preset, silently where nothing is wrong.

# logged LOG COMMAND...: shows the end of what the command printed if it fails, and nothing otherwise
logged()
{
    log=$1
    shift
    "$@" >"$log" 2>&1 || { tail -n 60 "$log" >&2; echo "all of the output: $log" >&2; return 1; }
}

# build_preset PRESET [TARGET...]
build_preset()
{
    preset=$1
    shift
    mkdir -p build
    log=build/$preset.log
    [ "build/$preset/build.ninja" -nt CMakePresets.json ] || logged "$log" cmake --preset "$preset"
    if ! cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1; then
        # The first errors, without the steps that went well.
        grep -v '^\[[0-9]*/[0-9]*\] ' "$log" | head -n 60 >&2
        echo "all of the output: $log" >&2
        return 1
    fi
}
