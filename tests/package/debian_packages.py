#!/usr/bin/env python3
"""Makes the Debian packages of a build, installs them in a bare root, and removes them again.

    debian_packages.py make --build DIR --work DIR
    debian_packages.py lint --work DIR
    debian_packages.py install --work DIR
    debian_packages.py remove --work DIR

"make" runs cpack and checks what is in the packages. "install" makes DIR/root a bare Debian root
with mmdebstrap. Without that, without root's rights or without an archive, DIR/root is a directory
with a copy of the list of the packages that this system has, in which dpkg works with --root.
"remove" checks that no file is left. The status is 77 if a program is missing that the step needs.
"""

import argparse
import glob
import os
import re
import shutil
import subprocess
import sys

SKIPPED = 77
LIBRARIES = ("configuration", "sources", "service", "etcd")
PROGRAM = "connector-config"
DEVELOPMENT = "libconnector-configuration-dev"

# What dpkg and the linker keep about packages; a root is bare without it.
BOOKS = ("/var/lib/dpkg/", "/var/cache/", "/var/log/", "/etc/ld.so.cache", "/tmp/", "/proc/", "/dev/")


class Failure(Exception):
    """A step found what should not be."""


def run(*command, **options):
    """-> the standard output"""
    result = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            check=False, **options)
    if result.returncode != 0:
        raise Failure(f"{' '.join(command)}\nended with {result.returncode}:\n{result.stdout}")
    return result.stdout


def expect(condition, text):
    if not condition:
        raise Failure(text)


def need(program):
    if shutil.which(program) is None:
        print(f"skipped: {program} is not installed")
        sys.exit(SKIPPED)


def packages_in(work, debug_symbols=False):
    """-> {name: file}"""
    pattern = "*.ddeb" if debug_symbols else "*.deb"
    files = glob.glob(os.path.join(work, "packages", pattern))
    return {os.path.basename(file).split("_")[0]: file for file in files}


def field(file, name):
    return run("dpkg-deb", "--field", file, name).strip()


def files_of(file):
    listing = run("dpkg-deb", "--contents", file)
    return [line.split()[5][1:] for line in listing.splitlines() if not line.startswith("d")]


# make

def make(options):
    need("dpkg-shlibdeps")
    shutil.rmtree(os.path.join(options.work, "packages"), ignore_errors=True)
    run("cpack", "-G", "DEB", "-B", os.path.join(options.work, "packages"), cwd=options.build)
    packages = packages_in(options.work)
    expect(len(packages) == len(LIBRARIES) + 2, f"these packages were made: {sorted(packages)}")
    for library in LIBRARIES:
        names = [name for name in packages if re.fullmatch(f"libconnector-{library}[0-9.]+", name)]
        expect(len(names) == 1, f"no package of the library {library} among {sorted(packages)}")
        check_library(names[0], packages[names[0]])
    check_program(packages)
    check_development(packages[DEVELOPMENT])
    check_debug_symbols(packages, packages_in(options.work, debug_symbols=True))


def check_library(name, file):
    soversion = re.search(r"[0-9.]+$", name).group()
    for path in files_of(file):
        fits = path.endswith(f".so.{soversion}") or ".so." in path or path.startswith("/usr/share/")
        expect(fits, f"{name} contains {path}")
    control = {member: run("dpkg-deb", "--info", file, member)
               for member in ("shlibs", "symbols", "triggers")}
    expect(f" {soversion} {name} (>= " in control["shlibs"], f"{name}: shlibs: {control['shlibs']}")
    expect("ldconfig" in control["triggers"], f"{name}: triggers: {control['triggers']}")
    expect(f"{name} #MINVER#" in control["symbols"] and "@Base" in control["symbols"],
           f"{name}: symbols: {control['symbols']}")
    expect("libc6 " in field(file, "Depends"), f"{name} does not depend on the C library")


def check_program(packages):
    paths = files_of(packages[PROGRAM])
    for path in ("/usr/bin/connector-config",
                 "/usr/libexec/connector-config/connector-config-network",
                 "/usr/libexec/connector-config/connector-config-etcd",
                 "/usr/share/man/man1/connector-config.1.gz",
                 "/usr/share/bash-completion/completions/connector-config",
                 "/usr/share/zsh/vendor-completions/_connector-config",
                 "/usr/share/fish/vendor_completions.d/connector-config.fish",
                 "/usr/lib/systemd/system/connector-config@.service"):
        expect(path in paths, f"{PROGRAM} does not contain {path}")
    depends = field(packages[PROGRAM], "Depends")
    version = field(packages[PROGRAM], "Version")
    for library in ("configuration", "sources"):
        expect(re.search(fr"libconnector-{library}[0-9.]+ \(= {re.escape(version)}\)", depends),
               f"{PROGRAM} depends on {depends}")


def check_development(file):
    paths = files_of(file)
    for end in ("/connector/configuration/Configuration.hpp", "/pkgconfig/connector-etcd.pc",
                "/connector-configuration-config.cmake", "/libconnector-platform.so"):
        expect(any(path.endswith(end) for path in paths), f"{DEVELOPMENT} does not contain *{end}")


def check_debug_symbols(packages, debug_packages):
    expected = {f"{name}-dbgsym" for name in packages if name != DEVELOPMENT}
    expect(set(debug_packages) == expected, f"debug symbols: {sorted(debug_packages)}")
    for name, file in debug_packages.items():
        paths = files_of(file)
        expect(paths and all(path.startswith(("/usr/lib/debug/", "/usr/share/doc/")) for path in paths),
               f"{name} contains {paths}")


# lint

def lint(options):
    need("lintian")
    command = ["lintian", "--fail-on", "error,warning"]
    if os.geteuid() == 0:
        command.append("--allow-root")
    print(run(*command, *packages_in(options.work).values()))
    # Packages of debug symbols must not contain overrides, so the override for the address of the
    # maintainer is here.
    print(run(*command, "--suppress-tags", "bogus-mail-host",
              *packages_in(options.work, debug_symbols=True).values()))


# install and remove

class BareRoot:
    """A root that mmdebstrap made. Programs in it run with chroot."""

    kind = "chroot"

    def __init__(self, path):
        self.path = path

    def make(self, packages):
        sources = glob.glob("/etc/apt/sources.list.d/*.sources") + glob.glob("/etc/apt/sources.list")
        wanted = sorted({name for file in packages.values() for name in self.dependencies(file)})
        # What it mounts is gone with the mount namespace, however it ends.
        run("timeout", "-k", "10", "400", "unshare", "--mount", "mmdebstrap", "--quiet",
            "--variant=essential", "--include=" + ",".join(wanted), "--dpkgopt=force-unsafe-io",
            "--aptopt=Acquire::Retries 1", "--aptopt=Acquire::http::Timeout 20",
            "", self.path, *sources)

    @staticmethod
    def dependencies(file):
        """-> the packages of Debian that it needs"""
        names = [need.split("|")[0].split()[0] for need in field(file, "Depends").split(",")]
        return [name for name in names if not name.startswith("libconnector-")]

    def dpkg(self, *arguments):
        arguments = [self.inside(argument) for argument in arguments]
        return run("chroot", self.path, "dpkg", "--force-unsafe-io", *arguments)

    def inside(self, argument):
        if not os.path.isfile(argument):
            return argument
        shutil.copy(argument, os.path.join(self.path, "tmp"))
        return "/tmp/" + os.path.basename(argument)

    def run(self, program, *arguments):
        return run("chroot", self.path, program, *arguments)


class Prefix:
    """A directory in which dpkg works. Programs in it run with the libraries of this system."""

    kind = "prefix"

    def __init__(self, path):
        self.path = path

    def make(self, _packages):
        books = os.path.join(self.path, "var/lib/dpkg")
        for directory in ("info", "updates", "triggers"):
            os.makedirs(os.path.join(books, directory))
        shutil.copy("/var/lib/dpkg/status", books)

    def dpkg(self, *arguments):
        return run("dpkg", f"--root={self.path}", "--force-not-root", "--log=/dev/null", *arguments)

    def run(self, program, *arguments):
        triplet = run("dpkg-architecture", "-qDEB_HOST_MULTIARCH").strip()
        environment = {**os.environ, "LD_LIBRARY_PATH": f"{self.path}/usr/lib/{triplet}"}
        return run(self.path + program, *arguments, env=environment)


def root_of(work):
    path = os.path.join(work, "root")
    is_bare = os.path.exists(os.path.join(path, "bin/sh"))
    return BareRoot(path) if is_bare else Prefix(path)


def new_root(work, packages):
    path = os.path.join(work, "root")
    shutil.rmtree(path, ignore_errors=True)
    if os.geteuid() == 0 and shutil.which("mmdebstrap"):
        try:
            BareRoot(path).make(packages)
            return BareRoot(path)
        except Failure as failure:
            print(f"no bare root, so a prefix: {failure}")
            shutil.rmtree(path, ignore_errors=True)
    Prefix(path).make(packages)
    return Prefix(path)


def files_below(root):
    """-> all files and directories, except what dpkg and the linker write about packages"""
    found = set()
    for folder, folders, names in os.walk(root):
        for name in folders + names:
            path = "/" + os.path.relpath(os.path.join(folder, name), root)
            if not path.startswith(BOOKS):
                found.add(path)
    return found


def check_network(root):
    """The part of the program that uses the network is there, too."""
    try:
        root.run("/usr/bin/connector-config", "--url", "unix:/nonexistent", "keys")
    except Failure as failure:
        expect("ended with 1" in str(failure) and "Cannot run" not in str(failure), str(failure))
        return
    raise Failure("there should be no service")


def install(options):
    need("dpkg")
    packages = packages_in(options.work)
    root = new_root(options.work, packages)
    with open(os.path.join(options.work, "files-before"), "w", encoding="utf-8") as file:
        file.write("\n".join(sorted(files_below(root.path))))
    root.dpkg("--install", *packages.values())
    value = root.run("/usr/bin/connector-config", "-s", "net.port:int=80", "get", "net.port")
    expect(value == "80\n", f"the installed program wrote {value}")
    check_network(root)
    for name in packages:
        status = root.dpkg("--status", name)
        expect("Status: install ok installed" in status, status)
    print(f"installed in a {root.kind}")


def remove(options):
    packages = packages_in(options.work)
    root = root_of(options.work)
    root.dpkg("--purge", *packages)
    with open(os.path.join(options.work, "files-before"), encoding="utf-8") as file:
        before = set(file.read().split("\n"))
    left = sorted(files_below(root.path) - before)
    gone = sorted(before - files_below(root.path))
    shutil.rmtree(root.path)
    expect(not left, "left by the packages: " + ", ".join(left))
    expect(not gone, "removed with the packages: " + ", ".join(gone))


STEPS = {"make": make, "lint": lint, "install": install, "remove": remove}


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("step", choices=STEPS)
    parser.add_argument("--build", metavar="DIR")
    parser.add_argument("--work", metavar="DIR", required=True)
    options = parser.parse_args(arguments)
    try:
        STEPS[options.step](options)
    except Failure as failure:
        print(failure)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
