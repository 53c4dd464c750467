"""Optimised programs are hardened in every optimised configuration, and do not depend on the folder in which
they are built."""

import platform
import signal
import subprocess

import pytest

from support import paths

OPTIMISED = ["Release", "RelWithDebInfo", "MinSizeRel"]

PROJECT = """cmake_minimum_required(VERSION 3.25)
project(hardening LANGUAGES CXX)
include({root}/cmake/KestalTargets.cmake)
add_executable(program main.cpp)
target_link_libraries(program PRIVATE kestal_options)
"""

# Fills a buffer on the stack, so that the compiler adds a stack guard, with a size known only at run time.
# Then uses another one with an index that comes from outside.
PROGRAM = """#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#define SEEN(buffer) __asm__ volatile("" : : "r"(buffer) : "memory")

__attribute__((noinline)) void Fill(const char* text, std::size_t count) {
    char buffer[64];
    std::memset(buffer, 1, sizeof buffer);
    std::memcpy(buffer, text, count);
    SEEN(buffer);
}

__attribute__((noinline)) int LeftBehind() {
    char buffer[64];
    SEEN(buffer);
    int sum = 0;
    for (const char each : buffer) {
        sum += each;
    }
    return sum;
}

int main(int count, char** arguments) {
    Fill(arguments[0], 1);
    std::printf("%s %d\\n", __FILE__, LeftBehind());
    (void)std::fflush(stdout);
    const std::vector<int> one{0};
    return one[static_cast<std::size_t>(count) - 1];
}
"""


def run(*command):
    done = subprocess.run(command, capture_output=True, text=True, timeout=300)
    assert done.returncode == 0, done.stdout + done.stderr
    return done.stdout


def build_type():
    for line in (paths.BUILD / "CMakeCache.txt").read_text().splitlines():
        if line.startswith("CMAKE_BUILD_TYPE:"):
            return line.partition("=")[2]
    return ""


def check(program):
    described = run("readelf", "-hldW", str(program))
    lines = [line.split() for line in described.splitlines()]
    assert ["Type:", "DYN"] in [line[:2] for line in lines], described
    assert any({"(FLAGS_1)", "NOW", "PIE"} <= set(line) for line in lines), described
    assert any(line[:1] == ["GNU_RELRO"] for line in lines), described
    stack = [line for line in lines if line[:1] == ["GNU_STACK"]]
    assert len(stack) == 1 and stack[0][-2] == "RW", described
    return run("readelf", "--dyn-syms", "-W", str(program))


def build_in(folder):
    (folder / "CMakeLists.txt").write_text(PROJECT.format(root=paths.ROOT))
    (folder / "main.cpp").write_text(PROGRAM)
    build = folder / "build"
    run("cmake", "-S", str(folder), "-B", str(build), "-G", "Ninja Multi-Config",
        f"-DCMAKE_CONFIGURATION_TYPES={';'.join(OPTIMISED)}")
    for configuration in OPTIMISED:
        run("cmake", "--build", str(build), "--config", configuration)
    return {configuration: build / configuration / "program" for configuration in OPTIMISED}


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    return tmp_path_factory.mktemp("hardening")


@pytest.fixture(scope="module")
def programs(folder):
    return build_in(folder)


def compiler_has(folder, flag):
    """Whether the compiler of the programs in a folder knows a flag, and so must have used it."""
    (found,) = [
        line.partition("=")[2]
        for line in (folder / "build" / "CMakeCache.txt").read_text().splitlines()
        if line.startswith(f"KESTAL_HAS_{flag}:")
    ]
    return found == "1"


@pytest.mark.parametrize("configuration", OPTIMISED)
def test_every_optimised_configuration_is_hardened(programs, configuration):
    symbols = check(programs[configuration])
    assert "__stack_chk_fail" in symbols
    assert "__memcpy_chk" in symbols


@pytest.mark.parametrize("configuration", OPTIMISED)
def test_uninitialised_variables_do_not_show_other_data(programs, folder, configuration):
    if not compiler_has(folder, "ftrivial_auto_var_init_zero"):
        pytest.skip("the compiler cannot do this")
    assert run(str(programs[configuration])).split()[1] == "0"


@pytest.mark.parametrize("configuration", OPTIMISED)
def test_an_index_beyond_its_container_ends_the_process(programs, configuration):
    done = subprocess.run([programs[configuration], "another"], capture_output=True, timeout=60)
    assert done.returncode == -signal.SIGABRT
    assert b"Assertion '__n < this->size()' failed" in done.stderr


@pytest.mark.parametrize("configuration", OPTIMISED)
def test_indirect_jumps_reach_only_marked_places(programs, folder, configuration):
    flags = {"x86_64": ("fcf_protection", "IBT"), "aarch64": ("mbranch_protection_standard", "BTI")}
    if platform.machine() not in flags:
        pytest.skip("not of this processor")
    flag, feature = flags[platform.machine()]
    assert compiler_has(folder, flag)
    (made,) = folder.glob(f"build/**/{configuration}/main.cpp.o")
    # The program can have the mark only if the C library has it.
    assert feature in run("readelf", "-n", str(made))


def test_a_build_in_another_folder_is_the_same(programs, tmp_path):
    folder = tmp_path / "another" / "folder"
    folder.mkdir(parents=True)
    for configuration, other in build_in(folder).items():
        assert other.read_bytes() == programs[configuration].read_bytes(), configuration


@pytest.mark.skipif(build_type() not in OPTIMISED, reason="the service under test is not optimised")
def test_the_service_is_hardened():
    assert "__stack_chk_fail" in check(paths.SERVICE)
