"""The installed files, as a package would hold them."""

import subprocess

import pytest

from support import paths


@pytest.fixture
def prefix(work):
    folder = work / "prefix"
    subprocess.run(
        ["cmake", "--install", str(paths.BUILD), "--prefix", str(folder)],
        check=True,
        capture_output=True,
        timeout=60,
    )
    return folder


def test_everything_that_runs_is_installed(prefix):
    files = {str(path.relative_to(prefix)) for path in prefix.rglob("*") if path.is_file()}
    assert files >= {
        "bin/kestal-session",
        "etc/kestal/lighttpd.conf",
        "lib/systemd/system/kestal.service",
        "libexec/kestal/kestal-server",
        "libexec/kestal/kestal.cgi",
    }
    devices = {name for name in files if name.startswith("share/kestal/devices/")}
    assert devices == {f"share/kestal/devices/{path.name}" for path in paths.DEVICES.iterdir()}
    assert not [name for name in files if name.endswith((".a", ".h", ".hpp"))]


def test_the_installed_service_serves(prefix, make_server):
    server = make_server()
    server.launcher = prefix / "libexec" / "kestal" / "kestal-server"
    del server.environment["KESTAL_RESPONDER"]
    server.environment["KESTAL_CONFIGURATION"] = str(prefix / "etc" / "kestal" / "lighttpd.conf")
    server.environment["KESTAL_DEVICE"] = str(prefix / "share" / "kestal" / "devices" / "default.json")
    assert server.start().ask("/srv/status").json()["statusData"]


def test_the_unit_names_the_folders_of_the_build(prefix):
    unit = (prefix / "lib" / "systemd" / "system" / "kestal.service").read_text()
    assert "@CMAKE" not in unit
    assert "libexec/kestal/kestal-server\n" in unit
    assert "etc/kestal/lighttpd.conf\n" in unit
