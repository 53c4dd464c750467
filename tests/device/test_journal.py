"""What the service logs can be searched by fields in the journal."""

import json


def test_the_journal_has_structured_fields(box, hotspot):
    entry = json.loads(box.get("journalctl -b -u kestal SYSLOG_IDENTIFIER=kestal.cgi -o json -n 1"))
    # Critical lines of the facility local1, of the service itself and not of its web server.
    assert entry["PRIORITY"] == "2" and entry["SYSLOG_FACILITY"] == "17", entry
    assert entry["SYSLOG_PID"] == entry["_PID"] != box.property("MainPID"), entry
    assert entry["_SYSTEMD_UNIT"] == "kestal.service" and entry["_COMM"] == "kestal.cgi", entry
    assert entry["MESSAGE"].startswith("[KESTAL_CGI]:["), entry


def test_lines_of_the_debug_log_have_their_own_level_in_the_journal(box, hotspot):
    settings = box.get("cat /etc/kestal/device.json")
    try:
        box.write("/etc/kestal/device.json", "{")
        box.wait(lambda: "keeping the last good document" in box.get("journalctl -b -u kestal -o cat"),
                 "the service has complained")
    finally:
        box.write("/etc/kestal/device.json", settings + "\n")
    lines = box.get("journalctl -b -u kestal _TRANSPORT=stdout -o json --output-fields=MESSAGE,PRIORITY").splitlines()
    logged = [(entry["MESSAGE"], entry["PRIORITY"]) for entry in map(json.loads, lines)
              if "kestal.cgi[" in entry["MESSAGE"]]
    assert {priority for message, priority in logged if "]:[NOTICE] - " in message} == {"5"}, logged
    assert {priority for message, priority in logged if "]:[ERROR] - " in message} == {"3"}, logged
    # The journal has taken the level off.
    assert all(message.startswith("20") for message, _ in logged), logged
