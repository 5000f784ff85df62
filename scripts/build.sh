# Sourced by the scripts beside it: configures and builds a preset, silently where nothing is wrong.

# build_preset PRESET [TARGET...]
build_preset()
{
    preset=$1
    shift
    mkdir -p build
    log=build/$preset.log
    if [ ! -f "build/$preset/build.ninja" ]; then
        cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; return 1; }
    fi
    cmake --build --preset "$preset" ${1:+--target "$@"} >"$log" 2>&1 || { cat "$log" >&2; return 1; }
}
