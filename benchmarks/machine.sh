# For benchmarks/run and benchmarks/compare: what the figures were taken on. The argument is the build folder.

machine() {
    grep -m 1 '^model name' /proc/cpuinfo || uname -m
    printf '%s cores, Linux %s, %s\n' "$(nproc)" "$(uname -r)" "$(. /etc/os-release && echo "$PRETTY_NAME")"
    "$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$1/CMakeCache.txt")" --version | head -n 1
    printf 'file system: %s; load before the run: %s\n' "$(df --output=fstype "$1" | tail -n 1)" \
        "$(cut -d ' ' -f 1 /proc/loadavg)"
}
