"""scripts/run as a user runs it: one command starts it, Ctrl-C ends it, and nothing is left behind."""

import fcntl
import json
import os
import pty
import re
import signal
import socket
import subprocess
import termios
import threading

import pytest

from support import paths, processes, web
from support.device import Device
from support.ports import Port
from support.waiting import wait_until

RUN = paths.ROOT / "scripts" / "run"


class Run:
    """scripts/run on a terminal of its own."""

    def __init__(self, work, *options, **environment):
        self.temporary = work / "tmp"
        self.temporary.mkdir()
        self.claim = Port()
        self.port = self.claim.number
        self.output = ""
        terminal, theirs = pty.openpty()
        self.terminal = terminal
        self.process = subprocess.Popen(
            [str(RUN), *options],
            stdin=theirs,
            stdout=theirs,
            stderr=theirs,
            cwd=work,
            env={
                **paths.CLEAN_ENVIRONMENT,
                "TMPDIR": str(self.temporary),
                "KESTAL_BUILD": str(paths.BUILD),
                "PORT": str(self.port),
                **environment,
            },
            start_new_session=True,
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0),
        )
        os.close(theirs)
        self.reader = threading.Thread(target=self._read)
        self.reader.start()

    def _read(self):
        try:
            while piece := os.read(self.terminal, 4096):
                self.output += piece.decode(errors="replace").replace("\r\n", "\n")
        except OSError:
            # The script has closed its end of the terminal.
            pass

    def wait_for(self, text):
        def is_there():
            assert self.process.poll() is None or text in self.output, self.output
            return text in self.output

        wait_until(is_there, f"{text!r} on the terminal")

    def press_control_c(self):
        os.write(self.terminal, b"\x03")

    def press_control_backslash(self):
        os.write(self.terminal, b"\x1c")

    def end(self):
        status = self.process.wait(30)
        self.reader.join(20)
        return status

    def left_behind(self):
        """The files that are left, and the processes that use them or run in their folders."""
        files = [str(path) for path in self.temporary.rglob("*")]
        return files, processes.mentioning(str(self.temporary))

    def close(self):
        if self.process.poll() is None:
            self.process.terminate()
        self.end()
        os.close(self.terminal)
        self.claim.close()


@pytest.fixture
def run(work):
    runs = []

    def start(*options, **environment):
        runs.append(Run(work, *options, **environment))
        return runs[-1]

    yield start
    for started in runs:
        started.close()


def fake_tools(work, **scripts):
    """A PATH on which the named tools are replaced."""
    folder = work / "bin"
    folder.mkdir()
    for name, script in scripts.items():
        (folder / name).write_text(f"#!/bin/sh\n{script}\n")
        (folder / name).chmod(0o755)
    return f"{folder}:{paths.CLEAN_ENVIRONMENT['PATH']}"


def wait_for_end(*pids):
    """Waits, because a process may need a moment to end after a signal or after it has closed its files."""
    wait_until(lambda: not any(processes.is_alive(pid) for pid in pids), "the processes have ended")


def server_of(script):
    """Process id of the web server."""
    files, _ = script.left_behind()
    with open(next(path for path in files if path.endswith("server.pid"))) as pid:
        return int(pid.read())


@pytest.mark.parametrize("stop", ["Ctrl-C", "Ctrl-\\", "SIGTERM"])
def test_it_serves_until_it_is_stopped_and_leaves_nothing_behind(run, stop):
    script = run()
    script.wait_for("Ctrl-C stops it.")
    assert web.ask(script.port, "/srv/status").json()["statusData"]
    lighttpd = server_of(script)
    responders = processes.children(lighttpd)
    assert processes.is_alive(lighttpd) and responders

    if stop == "Ctrl-C":
        script.press_control_c()
    elif stop == "Ctrl-\\":
        script.press_control_backslash()
    else:
        script.process.terminate()
    assert script.end() == (131 if stop == "Ctrl-\\" else 0)
    assert script.left_behind() == ([], [])
    assert not processes.is_alive(lighttpd)
    wait_for_end(*responders)


def test_it_prints_what_to_try_and_each_line_works(run):
    script = run(KESTAL_SCENARIO="none")
    script.wait_for("Ctrl-C stops it.")
    url = f"http://127.0.0.1:{script.port}"
    assert f"\n  {url}/\n" in script.output
    page = web.ask(script.port, "/")
    assert (page.status, page.headers["content-type"]) == (200, "text/html; charset=utf-8")
    for name in ("status", "notification", "connect", "disconnect"):
        assert f"curl {url}/srv/{name}\n" in script.output

    device = re.search(r"^  (/.*\.json)$", script.output, re.MULTILINE)[1]
    with open(device) as file:
        text = file.read()
    with open(device, "w") as file:
        file.write(text.replace('"chargePercent": 84', '"chargePercent": 21'))
    assert web.ask(script.port, "/srv/status").json()["statusData"]["statusBarBatteryPercent"] == "21"

    session = re.search(r"^  (export KESTAL_SESSIONS=.*\n  curl .*)$", script.output, re.MULTILINE)[1]
    answer = subprocess.run(["/bin/sh", "-c", session], capture_output=True, text=True, timeout=20)
    assert answer.stdout.startswith('{"loginStatus":1,'), answer.stderr

    changes = re.search(
        r"^  (export KESTAL_DEVICE=.*\n(?:  .*/kestal-sim .*\n)+)", script.output, re.MULTILINE
    )[1]
    quick = changes.replace(" play ", " play --quiet --speed 1000000 ")
    assert quick != changes
    subprocess.run(["/bin/sh", "-ec", quick], check=True, timeout=60)
    assert web.ask(script.port, "/srv/status").json()["statusData"]["statusBarBatteryPercent"] == "9"


def players(device):
    return [pid for pid in processes.mentioning(device) if processes.field(pid, "Name") == "kestal-sim"]


def device_of(script):
    return re.search(r"^  (/.*\.json)$", script.output, re.MULTILINE)[1]


def test_the_device_changes_until_the_script_is_stopped(run):
    script = run()
    script.wait_for("Ctrl-C stops it.")
    (player,) = wait_until(lambda: players(device_of(script)), "the scenario plays")
    before = web.ask(script.port, "/srv/status").json()["statusData"]
    wait_until(
        lambda: web.ask(script.port, "/srv/status").json()["statusData"] != before,
        "the status changes by itself",
    )
    script.press_control_c()
    assert script.end() == 0
    assert not processes.is_alive(player)
    assert script.left_behind() == ([], [])


def test_the_service_runs_on_when_the_player_dies(run):
    script = run()
    script.wait_for("Ctrl-C stops it.")
    (player,) = wait_until(lambda: players(device_of(script)), "the scenario plays")
    os.kill(player, signal.SIGKILL)
    wait_until(lambda: not processes.is_alive(player), "the player has ended")
    assert web.ask(script.port, "/srv/status").json()["statusData"]
    script.press_control_c()
    assert script.end() == 0
    assert script.left_behind() == ([], [])


def test_the_scenario_can_be_chosen(run, work):
    (work / "quick.json").write_text(
        '{"duration": 100, "events": [{"at": 0, "say": "a", "set": '
        '{"sys.getBatteryStatus.chargePercent": 33}}]}'
    )
    (work / "mine.json").write_bytes(paths.DEFAULT_DEVICE.read_bytes())
    script = run(KESTAL_SCENARIO="quick.json", KESTAL_DEVICE="mine.json")
    script.wait_for("Ctrl-C stops it.")
    wait_until(
        lambda: web.ask(script.port, "/srv/status").json()["statusData"]["statusBarBatteryPercent"]
        == "33",
        "the scenario is played",
    )


def test_a_users_own_device_is_not_changed_unless_a_scenario_is_chosen(run, work):
    (work / "mine.json").write_bytes(paths.DEFAULT_DEVICE.read_bytes())
    script = run(KESTAL_DEVICE="mine.json")
    script.wait_for("Ctrl-C stops it.")
    assert players(str(work / "mine.json")) == []
    script.press_control_c()
    assert script.end() == 0
    assert (work / "mine.json").read_bytes() == paths.DEFAULT_DEVICE.read_bytes()


def test_it_answers_in_the_language_of_the_device_whatever_locales_the_machine_has(run, work):
    device = Device(work / "device.json")
    script = run(KESTAL_DEVICE=str(device.path), KESTAL_BUILD=os.path.relpath(paths.BUILD, work))
    script.wait_for("Ctrl-C stops it.")
    device.change(
        webui={"i18nSettings": {"language": "de_DE"}},
        msgbus={"zelt.ans.notifications": [{"id": "PCO5", "textId": "notification_pco_5_text"}]},
    )
    (shown,) = web.ask(script.port, "/srv/notification").json()["notificationsList"]
    assert shown["text"].startswith("Ihr Konto ist nicht aktiv. <a ")
    (service,) = processes.children(server_of(script), "kestal.cgi")
    environment = processes.environment(service)
    assert environment["LOCPATH"].startswith("/") and environment["KESTAL_LOCALEDIR"].startswith("/")
    assert os.path.samefile(environment["LOCPATH"], paths.LOCALES)
    assert os.path.samefile(environment["KESTAL_LOCALEDIR"], paths.CATALOGUE)


def test_a_users_own_texts_are_used(run, work):
    device = Device(work / "device.json")
    device.change(msgbus={"zelt.ans.notifications": [{"id": "PCO5", "titleId": "notification_pco_5_title"}]})
    script = run(KESTAL_DEVICE=str(device.path), KESTAL_LOCALEDIR=str(work / "none"))
    script.wait_for("Ctrl-C stops it.")
    (shown,) = web.ask(script.port, "/srv/notification").json()["notificationsList"]
    assert shown["title"] == "notification_pco_5_title"


def test_a_users_own_device_is_used_in_place_and_no_file_is_added_beside_it(run, work):
    folder = work / "own"
    folder.mkdir()
    (folder / "mine.json").write_bytes(paths.DEFAULT_DEVICE.read_bytes())
    script = run(KESTAL_DEVICE="own/mine.json")
    script.wait_for("Ctrl-C stops it.")
    assert web.ask(script.port, "/srv/disconnect").status == 200
    script.press_control_c()
    assert script.end() == 0
    assert '"getCellularDataConnectionStatus": "ready"' in (folder / "mine.json").read_text()
    assert [path.name for path in folder.iterdir()] == ["mine.json"]


def test_a_users_own_session_store_is_used_and_stays(run, work):
    script = run(KESTAL_SESSIONS="own.sessions")
    script.wait_for("Ctrl-C stops it.")
    assert f"export KESTAL_SESSIONS={work}/own.sessions\n" in script.output
    session = re.search(r"^  (export KESTAL_SESSIONS=.*\n  curl .*)$", script.output, re.MULTILINE)[1]
    answer = subprocess.run(["/bin/sh", "-c", session], capture_output=True, text=True, timeout=20)
    assert answer.stdout.startswith('{"loginStatus":1,'), answer.stderr
    script.press_control_c()
    assert script.end() == 0
    assert (work / "own.sessions").exists()


def test_a_build_for_a_devices_own_libraries_does_not_mention_the_simulator(run, work):
    """A build for a device's own libraries has neither the tools nor the locales of the simulator."""
    build = work / "vendor"
    (build / "service").mkdir(parents=True)
    # In this test, the device's libraries answer from this document.
    device = Device(work / "device.json")
    (build / "service" / "kestal.cgi").symlink_to(paths.SERVICE)
    (build / "CMakeCache.txt").write_text("KESTAL_PLATFORM:STRING=vendor\n")
    script = run(KESTAL_BUILD=str(build), KESTAL_DEVICE=str(device.path))
    script.wait_for("Ctrl-C stops it.")
    assert f"  curl http://127.0.0.1:{script.port}/srv/status\n" in script.output
    assert web.ask(script.port, "/srv/status").json()["statusData"]
    for word in ("simulat", "kestal-sim", "export ", str(device.path)):
        assert word not in script.output.replace(str(build), "")
    (service,) = processes.children(server_of(script), "kestal.cgi")
    assert not processes.environment(service).keys() & {"LOCPATH", "KESTAL_SESSIONS"}


@pytest.mark.parametrize("option", ["--device=roaming", "--scenario=commute", "--control"])
def test_a_build_for_a_devices_own_libraries_refuses_what_only_a_simulated_device_has(run, work, option):
    build = work / "vendor"
    build.mkdir()
    (build / "CMakeCache.txt").write_text("KESTAL_PLATFORM:STRING=vendor\n")
    script = run(option, KESTAL_BUILD=str(build))
    assert script.end() == 1
    assert f"scripts/run: {option.partition('=')[0]} needs a simulated device\n" in script.output


def test_a_build_for_a_devices_own_libraries_has_a_preset_and_leaves_the_release_alone(work):
    source = work / "source"
    source.mkdir()
    for file in paths.ROOT.iterdir():
        if file.name not in ("build", ".git"):
            (source / file.name).symlink_to(file)

    def configure(preset, *options):
        order = ["cmake", "--preset", preset, *options, "-DKESTAL_VENDOR_LIBRARIES=none"]
        subprocess.run(order, cwd=source, check=True, capture_output=True, timeout=300)

    def platforms():
        return {
            cache.parent.name: re.findall(r"(?m)^KESTAL_PLATFORM:\w+=(.*)$", cache.read_text())
            for cache in source.glob("build/*/CMakeCache.txt")
        }

    # Configure the build as a user may have done by hand.
    configure("release", "-DKESTAL_PLATFORM=vendor")
    assert platforms() == {"release": ["vendor"]}
    configure("release")
    configure("vendor")
    assert platforms() == {"release": ["simulator"], "vendor": ["vendor"]}


def test_a_port_in_use_is_reported(run):
    with socket.socket() as other:
        other.bind(("127.0.0.1", 0))
        other.listen()
        script = run(PORT=str(other.getsockname()[1]))
        assert script.end() != 0
    assert "Address already in use" in script.output
    assert "--port chooses another" in script.output
    assert script.left_behind() == ([], [])


@pytest.mark.parametrize(
    ("variable", "value", "message"),
    [
        ("KESTAL_SCENARIO", "nowhere", "the device cannot play nowhere"),
        ("PORT", "web", "not a port from 1 to 65535: web"),
        ("KESTAL_DEVICE", "/nowhere.json", "cannot read the device's file /nowhere.json"),
        ("KESTAL_BUILD", "/nowhere", "no such program: /nowhere/service/kestal.cgi"),
    ],
)
def test_invalid_settings_are_reported(run, variable, value, message):
    script = run(**{variable: value})
    assert script.end() != 0
    assert message in script.output
    assert script.left_behind() == ([], [])


@pytest.mark.parametrize(
    ("arguments", "status", "message"),
    [
        (("--device", "roming"), 1, "cannot read the device's file roming, and devices/ has only 3g-old-sim "),
        (("--scenario", "comute"), 1,
         "the device cannot play comute: there is no such file, and scenarios/ has only battery "),
        (("--page", "nowhere"), 1, "no folder of static files: nowhere"),
        (("--port", "65536"), 2, "not a port from 1 to 65535: 65536"),
        (("--port", "0"), 2, "not a port from 1 to 65535: 0"),
        (("--origin", "http://localhost:"), 2, "not an origin, such as http://localhost:5173: http://localhost:"),
        (("--control=yes",), 2, "--control needs no value"),
    ],
)
def test_what_cannot_work_is_refused_before_anything_is_built(run, arguments, status, message):
    script = run(*arguments, KESTAL_BUILD="", PORT="")
    assert script.end() == status
    assert script.output.startswith(f"scripts/run: {message}") and script.output.count("\n") == 1


def test_options_choose_device_scenario_and_page(run, work):
    (work / "page").mkdir()
    (work / "page" / "index.html").write_text("my own page")
    script = run("--device", "roaming", "--scenario=battery", "--page", "page")
    script.wait_for("Ctrl-C stops it.")
    assert web.ask(script.port, "/").body == b"my own page"
    assert web.ask(script.port, "/srv/status").json()["statusData"]["statusBarRoaming"] != "NotRoaming"
    assert players(device_of(script))
    assert f"What it does by itself: {paths.SCENARIOS}/battery.json" in script.output
    # The named device is a copy, so that what happens to it does not change the shipped one.
    assert device_of(script).startswith(str(script.temporary))


def test_an_option_says_that_it_takes_the_place_of_a_variable(run):
    script = run("--scenario", "none", KESTAL_SCENARIO="gentle")
    script.wait_for("Ctrl-C stops it.")
    assert "scripts/run: --scenario none takes the place of KESTAL_SCENARIO=gentle\n" in script.output
    assert "What it does by itself: none" in script.output


def test_the_environment_of_web_server_and_service_is_kept(run, work):
    (work / "page").mkdir()
    (work / "page" / "index.html").write_text("a page of the environment")
    script = run(KESTAL_DOCUMENT_ROOT="page", KESTAL_RUN_DIRECTORY=str(work / "mine"), KESTAL_ADDRESS="127.0.0.2")
    script.wait_for("Ctrl-C stops it.")
    assert f"\n  http://127.0.0.2:{script.port}/\n" in script.output
    assert web.ask(script.port, "/", address="127.0.0.2").body == b"a page of the environment"
    assert (work / "mine" / "server.pid").exists()
    script.press_control_c()
    assert script.end() == 0
    assert not (work / "mine" / "server.pid").exists()


def test_help_lists_the_options_and_starts_nothing(run):
    script = run("--help", PATH="/nowhere:/usr/bin:/bin")
    assert script.end() == 0
    assert "usage: scripts/run [OPTION]..." in script.output
    for option in ("--port", "--device", "--scenario", "--page", "--origin", "--help"):
        assert f"\n  {option} " in script.output


@pytest.mark.parametrize(
    ("options", "message"),
    [
        (["--prot", "1"], "unknown option --prot; --help tells what there is"),
        (["roaming"], "unknown argument roaming"),
        (["--port"], "--port needs a value"),
        (["--origin", "http://localhost:5173/page"], "not an origin"),
        (["--origin", 'http://a"b'], "not an origin"),
        (["--origin", "localhost:5173"], "not an origin"),
    ],
)
def test_wrong_options_are_refused(run, options, message):
    script = run(*options)
    assert script.end() == 2
    assert message in script.output
    assert script.left_behind() == ([], [])


def test_a_page_of_the_origin_that_was_named_may_call_and_read_and_no_other(run):
    script = run("--origin", "http://localhost:5173", "--scenario", "none")
    script.wait_for("Ctrl-C stops it.")
    browser = [("User-Agent", "Mozilla/5.0"), ("Sec-Fetch-Site", "same-site")]

    def ask(target, origin, **arguments):
        return web.ask(script.port, target, [*browser, ("Origin", origin)], **arguments)

    for target in ("/srv/status", "/srv/connect"):
        answer = ask(target, "http://localhost:5173")
        assert answer.status == 200
        assert answer.headers["access-control-allow-origin"] == "http://localhost:5173"
        assert answer.headers["access-control-allow-credentials"] == "true"
        assert answer.headers["vary"] == "Origin"
    for origin in ("http://localhost:5174", "http://localhost:51730", "https://localhost:5173", "null", ""):
        assert ask("/srv/connect", origin).status == 403
        assert "access-control-allow-origin" not in ask("/srv/status", origin).headers
    # What is refused to everybody is refused to this page, too.
    assert ask("/srv/connect", "http://localhost:5173", method="POST", body=b"x").status == 403
    assert ask("/srv/connect", "http://localhost:5173", method="DELETE").status == 403


def test_the_printed_link_logs_the_browser_in_that_opens_it(run):
    script = run()
    script.wait_for("Ctrl-C stops it.")
    link = re.search(rf"^  http://127\.0\.0\.1:{script.port}(/sign-in/[0-9a-f]{{32}})$", script.output, re.MULTILINE)[1]
    browser = ("User-Agent", 'a browser\'s "name"; $(false)')
    answer = web.ask(script.port, link, [browser])
    assert (answer.status, answer.headers["location"]) == (303, "/")
    cookie = ("Cookie", answer.headers["set-cookie"].partition(";")[0])
    assert web.ask(script.port, "/srv/status", [browser, cookie]).json()["loginStatus"] == 1
    assert web.ask(script.port, "/srv/status", [("User-Agent", "another"), cookie]).json()["loginStatus"] == 0
    for wrong in ("/sign-in/", "/sign-in/" + "0" * 32, link + "/x"):
        answer = web.ask(script.port, wrong, [browser])
        assert (answer.status, "set-cookie" in answer.headers) == (404, False)
    assert web.ask(script.port, link, [browser, ("Content-Length", "0")], method="POST").status == 405


JSON = ("Content-Type", "application/json")


def control(script, request, headers=(JSON,), **arguments):
    return web.ask(script.port, "/control", headers, method="POST", body=request.encode(), **arguments)


def test_commands_over_http_change_the_device_and_answer_like_a_shell(run, work):
    script = run("--control", "--scenario", "none")
    script.wait_for("Ctrl-C stops it.")

    def command(*words):
        answer = control(script, json.dumps({"command": words}))
        assert (answer.status, answer.headers["content-type"]) == (200, "application/json")
        return answer.json()

    done = {"exitCode": 0, "output": "", "error": ""}
    assert command("set", "sys.getBatteryStatus.chargePercent", 9) == done
    assert web.ask(script.port, "/srv/status").json()["statusData"]["statusBarBatteryPercent"] == "9"
    assert command("set", "sys.getCellularServiceStats.networkName", 'a "name" $(false)') == done
    assert web.ask(script.port, "/srv/status").json()["statusData"]["statusBarNetwork"] == 'a "name" $(false)'
    assert command("show", "sys.getBatteryStatus.chargePercent") == {**done, "output": "9\n"}
    cookie = command("session", "open", "--user-agent", "a test")["output"].strip()
    headers = [("User-Agent", "a test"), ("Cookie", cookie)]
    assert web.ask(script.port, "/srv/status", headers).json()["loginStatus"] == 1

    wrong = command("set", "sys.getBatteryStatus.chargePercnt", 9)
    assert wrong["exitCode"] == 1 and "did you mean sys.getBatteryStatus.chargePercent?" in wrong["error"]
    assert command("sett")["exitCode"] == 2
    assert command("control")["exitCode"] == 2
    assert command("--device", str(work / "other.json"), "load", "roaming")["exitCode"] == 2
    assert not (work / "other.json").exists()
    for request in (" ", "[]", "{}", '{"command": []}', '{"command": "show"}', '{"command": ["show"], "more": 1}', "{"):
        refused = control(script, request).json()
        assert refused["exitCode"] == 1 and refused["error"].startswith("kestal-sim: the request"), request
    assert control(script, " " * 1_200_000).status == 413


def test_commands_over_http_are_accepted_only_from_this_machine_and_its_own_pages(run):
    script = run("--control", "--scenario", "none", KESTAL_ADDRESS="0.0.0.0")
    script.wait_for("Ctrl-C stops it.")
    clear = '{"command": ["notify", "--clear", "all"]}'
    assert control(script, clear, [JSON, ("Origin", f"http://127.0.0.1:{script.port}")]).status == 200
    for headers in (
        [JSON, ("Origin", "http://localhost:5173")],
        [JSON, ("Host", "rebound.example.com")],
        [("Content-Type", "text/plain")],
        [],
    ):
        assert control(script, clear, headers).status == 403, headers
    assert web.ask(script.port, "/control", [JSON]).status == 403
    own = subprocess.run(["hostname", "-I"], capture_output=True, text=True, check=True).stdout.split()
    for address in own:
        if "." in address and not address.startswith("127."):
            assert control(script, clear, address=address).status == 403


def test_commands_over_http_are_off_unless_asked_for(run):
    script = run("--scenario", "none")
    script.wait_for("Ctrl-C stops it.")
    assert control(script, '{"command": ["notify", "--clear", "all"]}').status == 403
    assert web.ask(script.port, "/control").status == 404


def test_a_web_server_that_dies_ends_it_with_an_error(run):
    script = run()
    script.wait_for("Ctrl-C stops it.")
    os.kill(server_of(script), signal.SIGKILL)
    assert script.end() != 0
    assert "the web server has ended with status" in script.output
    assert script.left_behind() == ([], [])


def test_a_failing_build_is_reported(run, work):
    script = run(KESTAL_BUILD="", PATH=fake_tools(work, cmake="echo broken; exit 1"))
    assert script.end() != 0
    assert "scripts/run: the build failed" in script.output
    assert script.left_behind() == ([], [])


def test_a_build_is_stopped_with_all_its_processes(run, work):
    # This duration is unique on the machine, so that the process can be recognised.
    duration = f"600.{os.getpid()}"
    path = fake_tools(work, cmake=f"echo building; exec sleep {duration} # {work}")
    script = run(KESTAL_BUILD="", PATH=path)
    script.wait_for("building")
    builders = wait_until(lambda: processes.mentioning(f"sleep\x00{duration}"), "the build sleeps")
    script.press_control_c()
    assert script.end() == 130
    wait_for_end(*builders)
    assert script.left_behind() == ([], [])
