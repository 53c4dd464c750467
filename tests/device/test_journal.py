"""What the service logs can be searched by fields in the journal."""

import json


def test_the_journal_has_structured_fields(box, hotspot):
    entry = json.loads(box.get("journalctl -b -u kestal SYSLOG_IDENTIFIER=kestal.cgi -o json -n 1"))
    # Critical lines of the facility local1, of the service itself and not of its web server.
    assert entry["PRIORITY"] == "2" and entry["SYSLOG_FACILITY"] == "17", entry
    assert entry["SYSLOG_PID"] == entry["_PID"] != box.property("MainPID"), entry
    assert entry["_SYSTEMD_UNIT"] == "kestal.service" and entry["_COMM"] == "kestal.cgi", entry
    assert entry["MESSAGE"].startswith("[KESTAL_CGI]:["), entry
