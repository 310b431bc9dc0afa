# What scripts/run, scripts/test, scripts/bench and scripts/docs share: the Debian packages, the
# configuration and the build. This file is sourced. Standard output is for the caller only:
# messages of this file go to standard error, and the output of tools goes to files in build/log,
# which are shown on failure.
#
# shellcheck shell=bash

script_name=${0##*/}
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)
log_dir=$root/build/log

# Needed to build and to test. packages_of adds the compiler of a preset.
base_packages=(
    abigail-tools
    ccache
    cmake
    codespell
    curl
    etcd-client
    etcd-server
    fish
    g++
    libbenchmark-dev
    libboost-log-dev
    libcli11-dev
    libgflags-dev
    libgmock-dev
    libgrpc++-dev
    libgtest-dev
    libjson-validator-perl
    libpoco-dev
    libprotobuf-dev
    libssl-dev
    libtomlplusplus-dev
    libyaml-cpp-dev
    lintian
    mmdebstrap
    ninja-build
    nlohmann-json3-dev
    openjdk-17-jdk-headless
    openssl
    pkg-config
    protobuf-compiler
    protobuf-compiler-grpc
    python3
    python3-jsonschema
    python3-yaml
    zsh
)

say() { printf '%s\n' "$*" >&2; }

die() {
    say "$script_name: $*"
    exit 1
}

# packages_of PRESET: one name per line
packages_of() {
    printf '%s\n' "${base_packages[@]}"
    if [[ $1 == clang ]]; then
        printf 'clang\n'
    fi
}

# What clang's fuzzer links. Its name contains the version of the installed compiler.
fuzzing_package() {
    printf 'libclang-rt-%s-dev' "$(clang++ -dumpversion | cut -d. -f1)"
}

# missing_of PACKAGE...: those that are not installed, one per line
missing_of() {
    local installed
    # dpkg-query fails if it does not know a package; then that one is missing.
    installed=$(dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
        sed -n 's/^installed //p') || true
    local package
    for package; do
        grep -qxF -- "$package" <<<"$installed" || printf '%s\n' "$package"
    done
}

# apt_get ARGUMENT...: never asks, fails soon without a network, and waits for another apt to finish
apt_get() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get --quiet --assume-yes \
        -o Acquire::Retries=1 -o Acquire::http::Timeout=20 -o Acquire::https::Timeout=20 \
        -o DPkg::Lock::Timeout=120 "$@" </dev/null >>"$log_dir/apt.log" 2>&1
}

# install_packages PACKAGE...: with the present package lists; if that fails, with updated ones
install_packages() {
    apt_get install --no-install-recommends "$@" && return
    : >"$log_dir/apt.log"
    apt_get update || true # lists of other archives may have failed
    apt_get install --no-install-recommends "$@"
}

# apt_failure: the line of apt's log with the cause of the failure. Failed downloads come first,
# because they cause the others.
apt_failure() {
    local line
    line=$(grep -m 1 -E '^[EW]: Failed to fetch ' "$log_dir/apt.log") ||
        line=$(grep -m 1 '^E: ' "$log_dir/apt.log") ||
        line='E: apt-get failed'
    printf '%s' "${line#?: }"
}

# Sets as_root to the command prefix that gives the right to install packages.
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
        die "cannot set up the build: dpkg or apt-get is missing, so this is not a Debian system"
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

# quietly NAME COMMAND...: writes the output to build/log/NAME.log, and shows it if the command
# fails
quietly() {
    local log=$log_dir/$1.log
    shift
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
}

# The thread sanitizer of some compilers does not support the randomised address layout of some
# kernels. Its programs, which the build also runs, get a fixed layout where that is permitted.
with_layout_of() {
    local preset=$1
    shift
    if [[ $preset == tsan ]] && setarch --addr-no-randomize true 2>/dev/null; then
        setarch --addr-no-randomize "$@"
    else
        "$@"
    fi
}

# configure PRESET: only if it is not configured, if the presets have changed, or if the directory
# was moved. Ninja detects all other changes.
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

prepare_log() {
    if ! mkdir -p "$log_dir" 2>/dev/null || [[ ! -w $log_dir ]]; then
        die "cannot write to $log_dir"
    fi
}

# set_up PRESET [TARGET]: installs packages, configures and builds
set_up() {
    prepare_log
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
