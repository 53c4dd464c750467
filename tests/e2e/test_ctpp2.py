"""Which library for the answer tree a build uses, and what it prints about it.

Nothing is built but a library of two functions: configuring tells all.
"""

import pathlib
import subprocess

import pytest

from support import paths

CDT = """#pragma once
#include <string>
{version}
namespace CTPP {{ struct CDT {{ CDT(); }}; }}
"""
UTIL = "namespace CTPP { void CDT2JSON(const CDT&, std::string&); }\n"
SOURCE = """#include <ctpp2/CDT.hpp>
#include <ctpp2/CTPP2Util.hpp>
CTPP::CDT::CDT() = default;
void CTPP::CDT2JSON(const CDT&, std::string&) {}
"""
TEXT_VERSION = '#define CTPP_VERSION "2.8.9"'
INSTALLED = [
    folder for folder in ("/usr/include", "/usr/local/include") if pathlib.Path(folder, "ctpp2").exists()
]
nothing_installed = pytest.mark.skipif(bool(INSTALLED), reason="this machine has a CTPP2 of its own")


class Prefix:
    """A folder with headers and libraries as CTPP2 installs them."""

    def __init__(self, folder):
        self.folder = folder
        self.lib = folder / "lib"
        self.lib.mkdir(parents=True)

    def headers(self, version=TEXT_VERSION):
        headers = self.folder / "include" / "ctpp2"
        headers.mkdir(parents=True)
        (headers / "CDT.hpp").write_text(CDT.format(version=version))
        (headers / "CTPP2Util.hpp").write_text(UTIL)
        return self

    def shared(self):
        self.compile("-shared", "-Wl,-soname,libctpp2.so.2", "-o", self.lib / "libctpp2.so.2")
        (self.lib / "libctpp2.so").symlink_to("libctpp2.so.2")
        return self

    def static(self, name):
        self.compile("-c", "-o", self.folder / "ctpp2.o")
        subprocess.run(["ar", "rc", self.lib / name, self.folder / "ctpp2.o"], check=True, timeout=60)
        return self

    def compile(self, *arguments):
        (self.folder / "ctpp2.cpp").write_text(SOURCE)
        include = f"-I{self.folder / 'include'}"
        source = self.folder / "ctpp2.cpp"
        subprocess.run(["c++", "-fPIC", include, source, *arguments], check=True, timeout=60)


class Configured:
    def __init__(self, work, prefix, *order):
        self.folder = work / "build"
        done = subprocess.run(
            ["cmake", "-S", paths.ROOT, "-B", self.folder, "-G", "Ninja",
             f"-DCMAKE_PREFIX_PATH={prefix.folder}", *order],
            capture_output=True, text=True, timeout=300,
        )
        self.succeeded = done.returncode == 0
        # Join the lines, because CMake wraps long error messages.
        self.said = " ".join((done.stdout + done.stderr).split())

    def builds_with(self, path):
        return str(path) in (self.folder / "build.ninja").read_text()

    def rpath_of_the_installed_service(self):
        """Reads the run path that the install script sets; CMake checks for it in an installed program."""
        script = (self.folder / "service" / "cmake_install.cmake").read_text()
        return script.partition(' RPATH "')[2].partition('"')[0]


@pytest.fixture
def prefix(work):
    return Prefix(work / "opt")


def test_our_own_tree_is_used_even_if_a_library_is_installed(work, prefix):
    configured = Configured(work, prefix.headers().shared())
    assert configured.succeeded, configured.said
    assert "CTPP2: compat, our own of kestal " in configured.said
    assert configured.builds_with(paths.ROOT / "compat" / "ctpp2" / "CDT.cpp")
    assert not configured.builds_with(prefix.folder)


def test_a_shared_library_is_linked_with_its_run_path(work, prefix):
    configured = Configured(work, prefix.headers().shared(), "-DKESTAL_CTPP2=system")
    assert configured.succeeded, configured.said
    assert f"CTPP2: system, version 2.8.9: {prefix.lib}/libctpp2.so " in configured.said
    assert f"the installed service looks for it in {prefix.lib}, too" in configured.said
    assert configured.rpath_of_the_installed_service() == str(prefix.lib)
    assert configured.builds_with(prefix.lib / "libctpp2.so")
    assert not configured.builds_with(paths.ROOT / "compat" / "ctpp2")


@pytest.mark.parametrize(
    ("name", "macro", "version"),
    [
        ("libctpp2-st.a", TEXT_VERSION, "2.8.9"),
        ("libctpp2.a", "#define CTPP_VERSION 20809", "20809"),
        ("libctpp2.a", "", "unknown"),
    ],
)
def test_a_static_library_is_linked_and_its_headers_give_the_version(work, prefix, name, macro, version):
    configured = Configured(work, prefix.headers(macro).static(name), "-DKESTAL_CTPP2=system")
    assert configured.succeeded, configured.said
    assert f"CTPP2: system, version {version}: {prefix.lib}/{name} " in configured.said
    assert "looks for it" not in configured.said
    assert configured.rpath_of_the_installed_service() == ""
    assert configured.builds_with(prefix.lib / name)


@nothing_installed
@pytest.mark.parametrize("missing", ["header", "library", "both"])
def test_missing_files_are_named(work, prefix, missing):
    header = "the header ctpp2/CDT.hpp"
    library = "the library libctpp2.so, libctpp2.a or libctpp2-st.a"
    told = {"header": header, "library": library, "both": f"{header} and {library}"}
    if missing == "library":
        prefix.headers()
    if missing == "header":
        (prefix.lib / "libctpp2-st.a").touch()
    configured = Configured(work, prefix, "-DKESTAL_CTPP2=system")
    assert not configured.succeeded
    assert f"KESTAL_CTPP2=system: not found: {told[missing]}. Install CTPP2" in configured.said


def test_a_library_that_does_not_fit_is_refused(work, prefix):
    prefix.headers()
    subprocess.run(["ar", "rc", prefix.lib / "libctpp2.a"], check=True, timeout=60)
    configured = Configured(work, prefix, "-DKESTAL_CTPP2=system")
    assert not configured.succeeded
    assert "KESTAL_CTPP2=system: no program can be built with" in configured.said


def test_an_unknown_value_is_refused(work, prefix):
    configured = Configured(work, prefix, "-DKESTAL_CTPP2=auto")
    assert not configured.succeeded
    assert "KESTAL_CTPP2 is 'auto'; it must be compat or system" in configured.said
