# What scripts/run, scripts/test and scripts/bench share: the Debian packages, the configuration and the
# build. Sourced, not run. Standard output is left to what the user asked for; everything said here goes to
# standard error, and what the tools say goes to files under build/log unless they fail.
# shellcheck shell=bash

script_name=${0##*/}
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)
log_dir=$root/build/log

# To build and to test. The compiler of a preset comes on top: see packages_of.
base_packages=(
    ccache
    cmake
    curl
    g++
    libbenchmark-dev
    libboost-log-dev
    libcli11-dev
    libgmock-dev
    libgtest-dev
    libpoco-dev
    ninja-build
    pkg-config
    python3
)

say() { printf '%s\n' "$*" >&2; }

die() {
    say "$script_name: $*"
    exit 1
}

# packages_of PRESET: one name a line
packages_of() {
    printf '%s\n' "${base_packages[@]}"
    if [[ $1 == clang ]]; then
        printf 'clang\n'
    fi
}

# What clang's fuzzer links; its name has the version of the compiler that is installed by then.
fuzzing_package() {
    printf 'libclang-rt-%s-dev' "$(clang++ -dumpversion | cut -d. -f1)"
}

# missing_of PACKAGE...: those that are not installed, one a line
missing_of() {
    local installed
    # dpkg-query fails when it does not know a package, which is an answer, too.
    installed=$(dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
        sed -n 's/^installed //p') || true
    local package
    for package; do
        grep -qxF -- "$package" <<<"$installed" || printf '%s\n' "$package"
    done
}

# apt_get ARGUMENT...: never asks, gives a dead network up soon, and waits for another apt to finish
apt_get() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get --quiet --assume-yes \
        -o Acquire::Retries=1 -o Acquire::http::Timeout=20 -o Acquire::https::Timeout=20 \
        -o DPkg::Lock::Timeout=120 "$@" </dev/null >>"$log_dir/apt.log" 2>&1
}

# install_packages PACKAGE...: with the package lists that are there; if that fails, with new ones
install_packages() {
    apt_get install --no-install-recommends "$@" && return
    : >"$log_dir/apt.log"
    apt_get update || true # the lists of somebody else's archive may be what failed
    apt_get install --no-install-recommends "$@"
}

# apt_failure: the line of apt's log that says best what went wrong. What could not be fetched is the
# reason for what is missing afterwards, so it goes first.
apt_failure() {
    local line
    line=$(grep -m 1 -E '^[EW]: Failed to fetch ' "$log_dir/apt.log") ||
        line=$(grep -m 1 '^E: ' "$log_dir/apt.log") ||
        line='E: apt-get failed'
    printf '%s' "${line#?: }"
}

# Sets as_root to the words that run a command with the right to install packages.
require_root() {
    as_root=()
    if ((EUID == 0)); then
        return
    fi
    as_root=(sudo -n)
    if ! "${as_root[@]}" true 2>/dev/null; then
        die "cannot install $*: neither root nor able to use sudo without a password"
    fi
}

ensure_packages() {
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        die "cannot set up the build: this is no Debian system (dpkg or apt-get is missing)"
    fi
    local missing
    mapfile -t missing < <(missing_of "$@")
    if ((${#missing[@]} == 0)); then
        return
    fi
    require_root "${missing[@]}"
    say "Installing Debian packages: ${missing[*]}"
    : >"$log_dir/apt.log"
    if ! install_packages "${missing[@]}"; then
        die "cannot install the Debian packages: $(apt_failure) (see build/log/apt.log)"
    fi
}

# quietly NAME COMMAND...: with the output in build/log/NAME.log; shown when the command fails
quietly() {
    local log=$log_dir/$1.log
    shift
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
}

# The thread sanitizer of some compilers cannot live with the address layout of some kernels, so its
# programs, which the build runs, too, get a fixed layout where that is permitted.
with_layout_of() {
    local preset=$1
    shift
    if [[ $preset == tsan ]] && setarch --addr-no-randomize true 2>/dev/null; then
        setarch --addr-no-randomize "$@"
    else
        "$@"
    fi
}

# configure PRESET: only when it was not done, or for other presets or another place. Everything
# else ninja sees for itself.
configure() {
    local tree=$root/build/$1
    if [[ -e $tree/build.ninja && ! $root/CMakePresets.json -nt $tree/build.ninja ]] &&
        grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$tree/CMakeCache.txt"; then
        return
    fi
    say "Configuring build/$1"
    rm -rf "$tree/CMakeCache.txt" "$tree/CMakeFiles"
    quietly "configure-$1" cmake --preset "$1" || die "cannot configure the preset $1"
}

# build PRESET [TARGET]
build() {
    local preset=$1
    local tree=$root/build/$preset
    local target=${2:-all}
    if ninja -C "$tree" -n "$target" 2>/dev/null | grep -q 'no work to do'; then
        return
    fi
    say "Building build/$preset"
    quietly "build-$preset" with_layout_of "$preset" \
        cmake --build --preset "$preset" --parallel "$(nproc)" --target "$target" ||
        die "cannot build the preset $preset"
}

# set_up PRESET [TARGET]: everything up to the finished build
set_up() {
    if ! mkdir -p "$log_dir" 2>/dev/null || [[ ! -w $log_dir ]]; then
        die "cannot write to $log_dir"
    fi
    local packages
    mapfile -t packages < <(packages_of "$1")
    ensure_packages "${packages[@]}"
    if [[ $1 == clang ]]; then
        ensure_packages "$(fuzzing_package)"
    fi
    cd "$root" || die "cannot enter $root" # where the presets are
    configure "$1"
    build "$@"
}
