"""Optimised programs are hardened, whichever optimised configuration they are built in."""

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

# Fills a buffer on the stack, so that it needs its guard, from a size known only at run time.
PROGRAM = """#include <cstdio>
#include <cstring>

int main(int count, char** arguments) {
    char buffer[64];
    std::memcpy(buffer, arguments[0], static_cast<std::size_t>(count));
    return std::puts(buffer);
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


@pytest.fixture(scope="module")
def programs(tmp_path_factory):
    folder = tmp_path_factory.mktemp("hardening")
    (folder / "CMakeLists.txt").write_text(PROJECT.format(root=paths.ROOT))
    (folder / "main.cpp").write_text(PROGRAM)
    build = folder / "build"
    run("cmake", "-S", str(folder), "-B", str(build), "-G", "Ninja Multi-Config",
        f"-DCMAKE_CONFIGURATION_TYPES={';'.join(OPTIMISED)}")
    for configuration in OPTIMISED:
        run("cmake", "--build", str(build), "--config", configuration)
    return {configuration: build / configuration / "program" for configuration in OPTIMISED}


@pytest.mark.parametrize("configuration", OPTIMISED)
def test_every_optimised_configuration_is_hardened(programs, configuration):
    symbols = check(programs[configuration])
    assert "__stack_chk_fail" in symbols
    assert "__memcpy_chk" in symbols


@pytest.mark.skipif(build_type() not in OPTIMISED, reason="the service under test is not optimised")
def test_the_service_is_hardened():
    assert "__stack_chk_fail" in check(paths.SERVICE)
