"""kestal-conformance finds nothing in bindings that are right, and each fault in one that is wrong."""

import os
import pathlib
import re
import subprocess

import pytest

ROOT = pathlib.Path(os.environ["KESTAL_ROOT"])
CONFORMANCE = os.environ["KESTAL_CONFORMANCE"]
ON_ALONE = os.environ["KESTAL_CONFORMANCE_ON_ALONE"]
ON_LIBRARIES = os.environ["KESTAL_CONFORMANCE_ON_LIBRARIES"]
ON_TEMPLATE = os.environ["KESTAL_CONFORMANCE_ON_TEMPLATE"]
ON_REPLACED = os.environ["KESTAL_CONFORMANCE_ON_REPLACED"]
ON_RECORDING = os.environ["KESTAL_CONFORMANCE_ON_RECORDING"]
ON_WRONG = os.environ["KESTAL_CONFORMANCE_ON_WRONG"]
SIM = os.environ["KESTAL_SIM"]
SHORT_DEADLINE = ["--deadline", "1"]
CALLER = ["--address", "192.0.2.7", "--agent", "A browser"]

# Each fault: the parts that are run, the call that the finding must name, and words of its reason.
FAULTS = {
    "level-without-name": (["log"], "toru_dbg_get_level_name", "returns null"),
    "one-round-only": (["sysint"], "sys_sdkInitialize", "can be opened once only"),
    "result-too-long": (["sysint"], "sys_getGPSStatus", "bytes behind the 4 of its buffer"),
    "before-result": (["sysint"], "sys_getSMSUnreadCount", "bytes before the 4 of its buffer"),
    "success-without-result": (["sysint"], "sys_getNumSims", "succeeds, but has not written value"),
    "failure-with-result": (["sysint"], "sys_getActiveSimSlot", "fails with 5, but has written"),
    "field-left-out": (["sysint"], "sys_getBatteryStatus", "has not written detection"),
    "text-not-terminated": (["sysint"], "sys_getCellularServiceStats", "networkName is not term"),
    "unknown-enumerator": (["sysint"], "sys_getSIMStatus", "value is 42"),
    "too-many-slots": (["sysint"], "sys_getAllSimSlotsInfo", "count is 3"),
    "identifier-too-long": (["sysint"], "sys_getSIMCarrierGID", "behind the 256 of its buffer"),
    "identifier-without-length": (["sysint"], "sys_getSIMCarrierGID", "has not written length"),
    "hang": (["sysint"], "sys_getCellularBand", "has not returned within 1 s"),
    "crash": (["sysint"], "sys_getCABandWidth", "has ended the process by SIGSEGV"),
    "stack-overflow": (["sysint"], "sys_getCABandWidth", "has ended the process by SIGSEGV"),
    "stack-overflow-in-thread": (["sysint", "threads"], "sys_getCABandWidth", "by SIGSEGV"),
    "broken-pipe": (["sysint"], "sys_getCABandWidth", "has ended the process by SIGPIPE"),
    "exits": (["sysint"], "sys_getCABandWidth", "has ended the process by exit"),
    "exits-quickly": (["sysint"], "sys_getCABandWidth", "has ended the process by exit"),
    "asks-for-no-devices": (["sysint"], "sys_getConnectedDeviceList", "although it has no records"),
    "list-without-count": (["sysint"], "sys_getConnectedDeviceList", "the count that it is given"),
    "list-beyond-room": (["sysint"], "sys_getConnectedDeviceList", "bytes behind"),
    "list-cut-off": (["sysint"], "sys_getConnectedDeviceList", "one record less than it has"),
    "language-not-terminated": (["webui"], "webui_get_i18n_settings", "language is not terminated"),
    "list-success-without-buffer": (["webui"], "webui_get_common_features", "succeeds although"),
    "list-of-changing-length": (["webui"], "webui_get_common_features", "another number"),
    "list-of-enormous-length": (["webui"], "webui_get_common_features", "more than 16 MiB"),
    "list-counts-room": (["webui"], "webui_get_common_features", "more room than it needs"),
    "list-counts-one-less": (["webui"], "webui_get_common_features", "the room that it asked for"),
    "list-too-small-fails": (["webui"], "webui_get_common_features", "one record less than it has"),
    "record-not-terminated": (["webui"], "webui_get_common_configurations", "record 0: the text"),
    "record-left-out": (["webui"], "webui_get_common_configurations", "record 1: name has not"),
    "failure-with-count": (["webui"], "webui_get_app_features", "has written to its buffer or its"),
    "unknown-name-succeeds": (["webui"], "webui_get_uri_data", "has not written address"),
    "client-throws": (["msgbus"], "MsgbusHandler::MsgbusHandler", "has left it: no bus"),
    "second-client-crashes": (["msgbus"], "MsgbusHandler::MsgbusHandler", "the process by SIGSEGV"),
    "client-end-crashes": (["msgbus"], "MsgbusHandler::~MsgbusHandler", "the process by SIGSEGV"),
    "bus-answers-all": (["msgbus"], "MsgbusHandler::GetData", "a client that has not joined"),
    "bus-answers-after-leaving": (["msgbus"], "MsgbusHandler::GetData", "a client that has left"),
    "bus-failure-with-size": (["msgbus"], "MsgbusHandler::GetData", "written to its buffer or its"),
    "bus-throws": (["msgbus"], "MsgbusHandler::GetData", "an exception has left it: no such"),
    "bus-keeps-size": (["msgbus"], "MsgbusHandler::GetData", "more room than it needs"),
    "block-counts-too-many": (["msgbus"], "MsgbusHandler::GetData", "is not that of 3 records"),
    "block-without-terminators": (["msgbus"], "MsgbusHandler::GetData", "category is not"),
    "block-of-no-bytes": (["msgbus"], "MsgbusHandler::GetData", "the block of 0 bytes has no count"),
    "live-block-torn-later": (["msgbus", "threads"], "MsgbusHandler::GetData", "of 3 records"),
    "block-left-out": (["msgbus"], "MsgbusHandler::GetData", "record 5: byte has not been written"),
    "block-of-unknown-severity": (["msgbus"], "MsgbusHandler::GetData", "severity is 9"),
    "session-throws": (["session"], "AuthSession::AuthSession", "has left it: no sessions"),
    "session-end-crashes": (["session"], "AuthSession::~AuthSession", "the process by SIGSEGV"),
    "session-for-anybody": (["session"], "AuthSession::Init", "a caller with session"),
    "session-for-other-address": (["session"], "AuthSession::Init", "with another address"),
    "session-for-other-family": (["session"], "AuthSession::Init", "with an address of another"),
    "session-for-other-agent": (["session"], "AuthSession::Init", "with another user agent"),
    "logged-on-fails": (["session"], "AuthSession::LoggedOn", "fails with 7 after a successful"),
    "logged-on-with-result": (["session"], "AuthSession::LoggedOn", "but has written to its result"),
    "logged-on-without-result": (["session"], "AuthSession::LoggedOn", "has not written its result"),
    "family-of-short-address": (["cgi"], "GetIPAddressFamily", '"192.0.2" is no address'),
    "failure-with-family": (["cgi"], "GetIPAddressFamily", "but has written to its result"),
    "two-writers": (["cgi"], "CgiHelper::GetInstance", "more than one writer"),
    "header-lost": (["cgi"], "CgiHelper::SetHeader", "not in the next response"),
    "header-not-replaced": (["cgi"], "CgiHelper::SetHeader", "that was replaced is still there"),
    "response-without-status": (["cgi"], "CgiHelper::SendResponse", "does not begin with"),
    "response-without-empty-line": (["cgi"], "CgiHelper::SendResponse", "has no empty line"),
    "body-ends-at-zero": (["cgi"], "CgiHelper::SendResponse", "has not written the body"),
    "address-made-up": (["cgi"], "CgiHelper::GetIp", 'returns "0.0.0.0"'),
    "cookie-without-default": (["cgi"], "CgiHelper::GetCookie", 'in place of "none"'),
    "last-cookie": (["cgi"], "CgiHelper::GetCookie", 'returns "second"'),
    "thread-throws": (["maintenance"], "MaintenanceThread::MaintenanceThread", "left it: no thread"),
    "thread-end-hangs": (["maintenance"], "MaintenanceThread::~MaintenanceThread", "within 1 s"),
    "no-callback": (["maintenance"], "MaintenanceThread::Run", "makes 0 callbacks in 3 s"),
    "no-interval": (["maintenance"], "MaintenanceThread::Run", "the second callback comes"),
    "mask-not-inherited": (["maintenance"], "MaintenanceThread::Run", "the signal mask"),
    "end-not-waited-for": (["maintenance"], "MaintenanceThread::Shutdown", "before the callback"),
    "shutdown-fails": (["maintenance"], "MaintenanceThread::Shutdown", "returns 3"),
    "code-set-left-out": (["language"], "LanguageSupport::SetTextDomain", "the code set"),
    "directory-left-out": (["language"], "LanguageSupport::SetTextDomain", "the directory"),
    "domain-not-current": (["language"], "LanguageSupport::SetTextDomain", "the current domain"),
    "ready-not-sent": (["watchdog"], "watchdog_application_register", "does not say READY=1"),
    "keep-alive-not-sent": (["watchdog"], "watchdog_application_send_k", "does not say WATCHDOG=1"),
    "keep-alive-fails": (["watchdog"], "watchdog_application_send_k", "fails with 5 for a registered"),
    "not-for-threads": (["sysint", "threads"], "sys_getCellularServiceStatus", "from two threads"),
    "values-not-for-threads": (["sysint", "threads"], "sys_getCellularServiceStatus", "from two"),
    "interrupted": (["sysint", "signals"], "sys_getWiFiEnabled", "answers 4 while signals arrive"),
}

# What a right binding may do, however unusual, and the parts that must find nothing in it.
RIGHTS = {
    "live-values": ["sysint", "webui", "msgbus", "threads", "signals"],
    "device-comes-and-goes": ["sysint", "threads", "signals"],
    "empty-list-needs-buffer": ["webui", "threads"],
    "own-watchdog": ["watchdog"],
    # These end the process when they are called as platform/ does not allow.
    "takes-declared-profiles": ["sysint", "threads"],
    "takes-declared-families": ["session"],
    "asked-after-success": ["session"],
}

# These are found when time is up.
WITH_SHORT_DEADLINE = {"hang", "no-callback", "thread-end-hangs"}


def run(program, *arguments, device="default", **environment):
    return subprocess.run(
        [program, *arguments],
        env={
            "PATH": "/usr/bin:/bin",
            "LC_ALL": "C.UTF-8",
            "KESTAL_DEVICE": str(ROOT / "devices" / f"{device}.json"),
            **environment,
        },
        stdin=subprocess.DEVNULL,
        capture_output=True,
        text=True,
        timeout=300,
    )


def findings(done):
    return [line for line in done.stdout.splitlines() if line.startswith("FAIL")]


@pytest.fixture(scope="module")
def session(tmp_path_factory):
    """The arguments that pass a live session, and the environment in which the simulator finds it."""
    store = {"KESTAL_SESSIONS": str(tmp_path_factory.mktemp("sessions") / "store")}
    opened = run(SIM, "session", "open", "--address", CALLER[1], "--user-agent", CALLER[3], **store)
    assert opened.returncode == 0, opened.stderr
    identifier = opened.stdout.strip().partition("=")[2]
    return ["--session", identifier, *CALLER], store


@pytest.mark.parametrize("device", ["default", "every-group-failing"])
def test_the_simulator_has_no_findings(device, session):
    arguments, store = session
    done = run(CONFORMANCE, *arguments, device=device, **store)
    assert (done.returncode, findings(done)) == (0, []), done.stdout
    assert done.stdout.endswith("\nno findings\n")
    assert 'AuthSession::Init(the session given) -> 0, ' in done.stdout


def test_systemd_gets_the_messages_of_the_posix_watchdog():
    done = run(CONFORMANCE, "--only", "watchdog")
    assert done.returncode == 0, done.stdout
    lines = [line.rpartition(", ")[0] for line in done.stdout.splitlines()]
    assert lines[1:4] == [
        'watchdog_application_register(register) -> 0, systemd hears "READY=1\\x0aSTATUS=kestal-conformance registered"',
        'watchdog_application_send_keep_alive() -> 0, systemd hears "WATCHDOG=1"',
        'watchdog_application_send_keep_alive() -> 0, systemd hears "WATCHDOG=1"',
    ]


def test_calls_that_are_left_out_by_default_are_made_on_request(tmp_path):
    device = tmp_path / "device.json"
    device.write_bytes((ROOT / "devices" / "default.json").read_bytes())
    done = run(CONFORMANCE, "--only", "actions", "--actions", KESTAL_DEVICE=str(device))
    assert done.returncode == 0, done.stdout
    lines = [line.rpartition(", ")[0] for line in done.stdout.splitlines()]
    assert lines[1:7] == [
        "sys_cellularDataDisconnect(0) -> 0",
        "sys_getCellularDataConnectionStatus() -> 0, value 0",
        "sys_getCellularDataConnectionStatus() again -> 0, value 0",
        "sys_cellularDataConnect(0) -> 0",
        "sys_getCellularDataConnectionStatus() -> 0, value 2",
        "sys_getCellularDataConnectionStatus() again -> 0, value 2",
    ]


def test_calls_that_are_not_scripted_fail_properly():
    """The recording binding fails all of these calls and writes nothing. The other parts are left out, because its
    threads do not run and its responses have no header."""
    parts = ["sysint", "webui", "msgbus", "session", "threads", "signals"]
    done = run(ON_RECORDING, *[word for part in parts for word in ("--only", part)])
    assert (done.returncode, findings(done)) == (0, []), done.stdout
    assert "sys_getSIMStatus() -> 90001, " in done.stdout


def test_the_template_has_no_findings(session):
    arguments, store = session
    done = run(ON_TEMPLATE, *arguments, **store)
    assert (done.returncode, findings(done)) == (0, []), done.stdout
    assert "sys_getSIMStatus() -> 9900, " in done.stdout
    assert "CgiHelper::GetInstance() -> a writer, " in done.stdout


@pytest.mark.parametrize("program", [ON_REPLACED, ON_ALONE])
def test_every_piece_of_the_template_can_be_replaced(program):
    done = run(program)
    # A call may answer "not supported", with the exception of these two.
    assert {line.split(": ")[0] for line in findings(done)} == {
        "FAIL GetIPAddressFamily",
        "FAIL LanguageSupport::SetTextDomainProperties",
    }
    for answer in (
        'toru_dbg_get_level_name(3) -> "", ',
        "AuthSession::Init(session \"\") -> 9900, ",
        "CgiHelper::GetInstance() -> null, ",
        "MaintenanceThread::Run() -> 9900, ",
        "watchdog_application_send_keep_alive() -> 9900, ",
    ):
        assert answer in done.stdout


def test_a_query_comes_from_a_library_of_the_vendor_unless_no_library_has_it(session):
    arguments, store = session
    done = run(ON_LIBRARIES, *arguments, **store)
    assert (done.returncode, findings(done)) == (0, []), done.stdout
    for answer in (
        "sys_getSMSUnreadCount() -> 0, value 7, ",  # the static library's
        "sys_getWiFiMaxClients() -> 0, value 31, ",  # the shared one's
        "sys_getGPSStatus() -> 9900, ",
        'sys_getUIFieldShowEnabled("sms") -> 9900, ',
    ):
        assert answer in done.stdout


def test_the_wrong_binding_without_a_fault_has_no_findings(session):
    arguments, store = session
    done = run(ON_WRONG, *arguments, **store)
    assert (done.returncode, findings(done)) == (0, []), done.stdout


@pytest.mark.parametrize("right", RIGHTS)
def test_what_is_unusual_is_not_wrong(right, session):
    arguments, store = session
    only = [word for part in RIGHTS[right] for word in ("--only", part)]
    done = run(ON_WRONG, *only, *arguments, KESTAL_FAULT=right, **store)
    assert (done.returncode, findings(done)) == (0, []), done.stdout


def test_a_single_finding_and_a_single_call_are_counted_so():
    done = run(ON_WRONG, "--only", "language", KESTAL_FAULT="directory-left-out")
    assert re.search(r"\n1 call, the slowest .*\n1 finding\n$", done.stdout), done.stdout


def test_a_session_that_is_refused_is_one_finding():
    done = run(CONFORMANCE, "--session", "no such session")
    assert findings(done) == ["FAIL AuthSession::Init: refuses the session given with --session"]


def test_a_short_deadline_holds_for_calls_but_not_for_intervals():
    """The arguments with which the faults of WITH_SHORT_DEADLINE are found."""
    done = run(ON_WRONG, *SHORT_DEADLINE, "--only", "sysint", "--only", "maintenance")
    assert (done.returncode, findings(done)) == (0, []), done.stdout
    assert "two callbacks within" in done.stdout


@pytest.mark.parametrize("fault", FAULTS)
def test_the_fault_is_found(fault, session):
    parts, call, reason = FAULTS[fault]
    arguments, store = session
    only = [word for part in parts for word in ("--only", part)]
    limit = SHORT_DEADLINE if fault in WITH_SHORT_DEADLINE else []
    done = run(ON_WRONG, *limit, *only, *arguments, KESTAL_FAULT=fault, **store)
    assert done.returncode == 1, done.stdout
    found = [line for line in findings(done) if line.startswith(f"FAIL {call}") and reason in line]
    assert found, findings(done)
    others = [line for line in findings(done) if not line.startswith(f"FAIL {call}")]
    assert others == []


def test_each_variant_of_the_binding_is_tried():
    sources = "".join(path.read_text() for path in pathlib.Path(__file__).parent.glob("wrong_*"))
    names = "".join(re.findall(r"Has\(([^)]*)\)", sources))
    assert set(re.findall(r'"([a-z-]+)"', names)) == {*FAULTS, *RIGHTS}


def test_wrong_usage_exits_with_2():
    for arguments in (["--only", "nothing"], ["more"], ["--deadline", "0"]):
        done = run(CONFORMANCE, *arguments)
        assert (done.returncode, done.stdout) == (2, "")
        assert done.stderr.endswith("\nTry 'kestal-conformance --help'.\n")


def test_help_and_man_page_describe_all_options_and_parts():
    done = run(CONFORMANCE, "--help")
    assert done.returncode == 0
    page = (ROOT / "docs" / "man" / "kestal-conformance.1.scd").read_text()
    options = set(re.findall(r"--[a-z]+", done.stdout))
    parts = done.stdout.partition("Parts:")[2].splitlines()[0].split()
    assert len(options) == 10 and len(parts) == 12
    assert options <= set(re.findall(r"--[a-z]+", page))
    assert re.findall(r"^\*([a-z]+)\*$", page.partition("# PARTS")[2].partition("# OPT")[0], re.M) == parts
