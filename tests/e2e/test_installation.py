"""The installed files, as a package would contain them."""

import json
import os
import pathlib
import subprocess

import pytest

from support import paths, web
from support.ports import Port
from support.waiting import wait_until

LANGUAGES = {path.stem for path in (paths.ROOT / "catalogue").glob("*.po")}


@pytest.fixture
def image(work):
    """The root of the device's file system with only our files in it."""
    folder = work / "image"
    subprocess.run(
        ["cmake", "--install", str(paths.BUILD)],
        check=True,
        capture_output=True,
        timeout=60,
        env={**os.environ, "DESTDIR": str(folder)},
    )
    return folder


@pytest.fixture
def prefix(image):
    return image / paths.PREFIX.lstrip("/")


@pytest.fixture
def configuration(image):
    return image / paths.SYSCONFDIR.lstrip("/") / "kestal" / "lighttpd.conf"


def test_everything_needed_at_run_time_is_installed(prefix, configuration):
    assert configuration.is_file() and configuration.with_name("firewall.nft").is_file()
    files = {str(path.relative_to(prefix)) for path in prefix.rglob("*") if path.is_file()}
    assert files >= {
        "bin/kestal-conformance",
        "bin/kestal-demo",
        "bin/kestal-record",
        "bin/kestal-sim",
        "bin/msgbus_cli",
        "bin/sysinicli",
        "bin/sysintcli",
        "bin/webui_cli",
        "lib/systemd/system/kestal.service",
        "libexec/kestal/kestal-server",
        "libexec/kestal/kestal.cgi",
        "share/doc/kestal/api/openapi.yaml",
    }
    texts = {name for name in files if name.startswith("share/locale/")}
    assert texts == {f"share/locale/{language}/LC_MESSAGES/webui.mo" for language in LANGUAGES}
    page = {name for name in files if name.startswith("share/kestal/demo/")}
    shipped = [path for path in (paths.ROOT / "demo").rglob("*") if path.is_file()]
    assert page == {f"share/kestal/{path.relative_to(paths.ROOT)}" for path in shipped}
    listed = subprocess.run(
        [prefix / "bin" / "kestal-sim", "devices"], check=True, capture_output=True, text=True, timeout=60
    )
    assert {line.split()[0] for line in listed.stdout.splitlines()} == {path.stem for path in paths.DEVICES.iterdir()}
    devices = {name for name in files if name.startswith("share/kestal/devices/")}
    assert devices == {f"share/kestal/devices/{path.name}" for path in paths.DEVICES.iterdir()}
    scenarios = {name for name in files if name.startswith("share/kestal/scenarios/")}
    assert scenarios == {f"share/kestal/scenarios/{path.name}" for path in paths.SCENARIOS.iterdir()}
    assert not [name for name in files if name.endswith((".a", ".h", ".hpp"))]


def test_the_installed_service_serves(prefix, configuration, make_server):
    server = make_server()
    server.launcher = prefix / "libexec" / "kestal" / "kestal-server"
    del server.environment["KESTAL_RESPONDER"]
    server.environment["KESTAL_CONFIGURATION"] = str(configuration)
    server.environment["KESTAL_DEVICE"] = str(prefix / "share" / "kestal" / "devices" / "default.json")
    assert server.start().ask("/srv/status").json()["statusData"]
    assert server.ask("/").body == (paths.ROOT / "demo" / "index.html").read_bytes()


def test_kestal_demo_serves_a_shipped_device_with_the_installed_files_alone(prefix, work):
    claim = Port()
    order = [prefix / "bin" / "kestal-demo", f"--port={claim.number}", "--device=roaming"]
    temporary = work / "tmp"
    temporary.mkdir()
    environment = {**paths.CLEAN_ENVIRONMENT, "TMPDIR": str(temporary)}
    output = work / "output"
    with open(output, "wb") as file:
        demo = subprocess.Popen(order, cwd="/", env=environment, stdout=file, stderr=file)
    try:
        wait_until(lambda: "Ctrl-C stops it." in output.read_text() or demo.poll() is not None, "it serves")
        assert demo.poll() is None, output.read_text()
        assert web.ask(claim.number, "/srv/status").json()["statusData"]["statusBarNetwork"] == "Velta Mobil"
        assert web.ask(claim.number, "/").body == (paths.ROOT / "demo" / "index.html").read_bytes()
    finally:
        demo.terminate()
        status = demo.wait(30)
        claim.close()
    assert status == 0 and list(temporary.iterdir()) == []


@pytest.mark.parametrize("prefix", ["usr", "usr/local", "opt/kestal"])
def test_the_installed_launcher_finds_its_configuration_by_itself(make_server, work, prefix):
    """The launcher finds the installed configuration when it is started by hand and not by the unit."""
    build, image = work / "build", work / "image"
    order = ["cmake", "-S", str(paths.ROOT), "-B", str(build), "-G", "Ninja"]
    subprocess.run([*order, f"-DCMAKE_INSTALL_PREFIX=/{prefix}"], check=True, capture_output=True, timeout=300)
    install = ["cmake", "--install", str(build / "deploy")]
    environment = {**os.environ, "DESTDIR": str(image)}
    subprocess.run(install, check=True, capture_output=True, timeout=60, env=environment)
    server = make_server()
    server.launcher = image / prefix / "libexec" / "kestal" / "kestal-server"
    assert server.start().ask("/srv/status").json()["statusData"]


def test_the_unit_names_the_folders_of_the_build(prefix):
    unit = (prefix / "lib" / "systemd" / "system" / "kestal.service").read_text()
    assert "@CMAKE" not in unit
    assert f"={paths.PREFIX}/libexec/kestal/kestal-server\n" in unit
    assert f"={paths.SYSCONFDIR}/kestal/lighttpd.conf\n" in unit


def test_the_default_prefix_is_where_the_service_looks_for_its_texts(work):
    """Unless its user wants it elsewhere."""
    for order, prefix, configuration in (
        ([], "/usr", "/etc"),
        (["-DCMAKE_INSTALL_PREFIX=/usr/local"], "/usr/local", "/usr/local/etc"),
    ):
        build = work / pathlib.Path(prefix).name
        subprocess.run(
            ["cmake", "-S", str(paths.ROOT), "-B", str(build), "-G", "Ninja", *order],
            check=True,
            capture_output=True,
            timeout=300,
        )
        unit = (build / "deploy" / "kestal.service").read_text()
        assert f"ExecStart={prefix}/libexec/kestal/kestal-server\n" in unit
        assert f"KESTAL_CONFIGURATION={configuration}/kestal/lighttpd.conf\n" in unit
