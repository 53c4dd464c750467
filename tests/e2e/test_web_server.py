"""How the web server starts, ends and restarts its responder."""

import fcntl
import json
import os
import pathlib
import shutil
import signal
import subprocess
import threading

from support import paths, processes
from support.load import Callers
from support.waiting import DEADLINE, wait_until


def kill_web_server(server):
    os.kill(server.process.pid, signal.SIGKILL)
    server.process.wait()


def wait_for_end(pid):
    """Waits, because the socket of an ended process disappears a moment before the process does."""
    wait_until(lambda: not processes.is_alive(pid), "the responder has ended")


def test_one_responder_serves_everything(server):
    assert len(processes.children(server.process.pid)) == 1
    for _ in range(20):
        assert server.ask("/srv/status").status == 200
    assert len(processes.children(server.process.pid)) == 1


def test_stopping_the_web_server_ends_the_responder(server):
    responder = server.responder()
    server.process.terminate()
    assert server.process.wait(DEADLINE) == 0
    wait_for_end(responder)
    assert server.log.count("KESTAL_CGI Server Terminating") == 1
    assert server.log.count("watchdog: kestal.cgi unregistered") == 1
    assert not list(server.run.glob("responder.sock*"))


def test_a_responder_that_dies_is_started_again(server):
    # A web server that is still starting ends when its responder dies.
    assert server.ask("/srv/status").status == 200
    for signo in (signal.SIGKILL, signal.SIGSEGV, signal.SIGTERM):
        dead = server.responder()
        os.kill(dead, signo)
        # Until it handles the signal, the responder still answers requests.
        wait_for_end(dead)
        wait_until(lambda: server.ask("/srv/status").status == 200, "the service is back")
        assert server.responder() != dead


class Browsers(Callers):
    """Browsers that send requests without pause; every answer must be complete."""

    def __init__(self, server, count=4):
        super().__init__(count)
        self.server = server
        self.answers = []
        self.problems = []

    def call(self):
        try:
            answer = self.server.ask("/srv/status")
            assert len(answer.body) == int(answer.headers["content-length"]), "cut short"
            if answer.status == 200:
                json.loads(answer.body)
            self.answers.append(answer)
        except Exception as error:  # pylint: disable=broad-except
            self.problems.append(repr(error))

    def right(self):
        return sum(answer.status == 200 for answer in self.answers)


def test_a_responder_that_dies_under_load_is_started_again_and_answers_the_same(server):
    with Browsers(server) as browsers:
        for signo in (signal.SIGKILL, signal.SIGABRT, signal.SIGTERM):
            wait_until(lambda enough=browsers.right() + 20: browsers.right() > enough, "answers before")
            dead = server.responder()
            os.kill(dead, signo)
            wait_for_end(dead)
            wait_until(lambda enough=browsers.right() + 20: browsers.right() > enough, "answers after")
            assert server.responder() != dead
    assert browsers.problems == []
    assert {answer.status for answer in browsers.answers} <= {200, 500, 503}
    assert len({answer.body for answer in browsers.answers if answer.status == 200}) == 1
    assert server.log.count("KESTAL_CGI Server Terminating") == 1
    assert server.log.count("watchdog: kestal.cgi unregistered") == 1


def test_stopping_the_web_server_under_load_leaves_no_half_answers(server):
    responder = server.responder()
    with Browsers(server) as browsers:
        wait_until(lambda: browsers.right() > 50, "answers")
        server.process.terminate()
        # lighttpd exits with status 1 if connections are open.
        assert server.process.wait(DEADLINE) in (0, 1)
        browsers.ended = True
    wait_for_end(responder)
    assert {answer.status for answer in browsers.answers} <= {200, 500, 503}
    # A client either gets a complete answer or none at all.
    assert not [problem for problem in browsers.problems if "cut short" in problem or "JSON" in problem]
    assert server.log.count("watchdog: kestal.cgi unregistered") == 1


def test_a_responder_whose_web_server_was_killed_goes_on_until_it_is_swept(server):
    responder = server.responder()
    # What is left of an answer that was being sent.
    (server.run / "lighttpd-upload-ab12CD").write_text("rest")
    kill_web_server(server)
    assert processes.is_alive(responder)
    subprocess.run([str(paths.LAUNCHER), "sweep"], env=server.environment, check=True)
    wait_for_end(responder)
    assert server.log.count("KESTAL_CGI Server Terminating") == 1
    assert not list(server.run.glob("responder.sock*")) + list(server.run.glob("lighttpd-upload-*"))


def test_a_new_web_server_ends_a_stray_responder_and_starts_its_own(server):
    stray = server.responder()
    kill_web_server(server)
    server.start()
    wait_for_end(stray)
    own = server.responder()
    assert server.ask("/srv/status").status == 200

    # The responder belongs to the new web server, which starts it again when it dies.
    os.kill(own, signal.SIGKILL)
    wait_for_end(own)
    wait_until(lambda: server.ask("/srv/status").status == 200, "the service is back")


def test_a_stray_responder_that_hangs_is_ended_too(server):
    stray = server.responder()
    kill_web_server(server)
    os.kill(stray, signal.SIGSTOP)
    server.start()
    wait_for_end(stray)
    assert server.ask("/srv/status").status == 200


def test_stray_responders_of_other_servers_are_left_alone(make_server):
    first, second = make_server("a").start(), make_server("b").start()
    stray = second.responder()
    kill_web_server(first)
    kill_web_server(second)
    first.start()
    assert processes.is_alive(stray)
    second.start()
    wait_for_end(stray)


def test_a_second_server_on_the_same_run_directory_is_refused(server):
    responder = server.responder()
    second = server.launch()
    assert second.wait(DEADLINE) == 1
    assert f"in use by the web server with process id {server.process.pid}" in second.stderr.read().decode()
    second.stderr.close()
    assert server.responder() == responder
    assert server.ask("/srv/status").status == 200


def test_only_one_of_two_servers_that_start_at_once_on_one_run_directory_serves(make_server, work):
    # Neither launcher has a responder yet when the other one looks for it.
    slow = work / "bin"
    slow.mkdir()
    (slow / "lighttpd").write_text('#!/bin/sh\nsleep 1\nexec /usr/sbin/lighttpd "$@"\n')
    (slow / "lighttpd").chmod(0o755)
    servers = [make_server(), make_server()]
    for server in servers:
        server.environment["PATH"] = f"{slow}:{paths.CLEAN_ENVIRONMENT['PATH']}"
    for server in servers:
        server.process = server.launch()
    wait_until(lambda: any(server.process.poll() is not None for server in servers), "one launcher has given up")
    second, first = sorted(servers, key=lambda server: server.process.poll() is None)
    assert second.process.returncode == 1
    # The launcher either sees the other one, or has waited a second for its lock.
    messages = (
        f"is in use by the web server with process id {first.process.pid}\n",
        f"another kestal-server is starting or sweeping in {first.run}\n",
    )
    assert second.process.stderr.read().decode().endswith(messages)
    wait_until(first.is_up, "the other launcher serves")
    assert first.ask("/srv/status").status == 200
    second.process.stderr.close()
    second.process = None


def test_a_start_waits_for_another_one_and_gives_up_before_it_touches_anything(make_server):
    server = make_server()
    server.run.mkdir()
    (server.run / "responder.sock-0").touch()
    with open(server.run / "lock", "w") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        launcher = server.launch()
        assert launcher.wait(DEADLINE) == 1
        message = f"another kestal-server is starting or sweeping in {server.run}\n"
        assert message in launcher.stderr.read().decode()
        launcher.stderr.close()
        assert (server.run / "responder.sock-0").exists()
    assert server.start().ask("/srv/status").status == 200


def test_a_sweep_does_not_touch_a_running_web_server(server):
    sweep = server.launch("sweep")
    assert sweep.wait(DEADLINE) == 1
    assert f"in use by the web server with process id {server.process.pid}" in sweep.stderr.read().decode()
    sweep.stderr.close()
    assert server.ask("/srv/status").status == 200


def test_another_process_with_the_id_of_a_dead_web_server_is_not_taken_for_it(make_server):
    server = make_server()
    server.run.mkdir()
    (server.run / "owner").write_text(f"{os.getpid()} 1\n")
    assert server.start().ask("/srv/status").status == 200


def test_neither_web_server_nor_responder_holds_the_lock(server):
    for pid in (server.process.pid, server.responder()):
        files = {os.path.realpath(file) for file in pathlib.Path(f"/proc/{pid}/fd").iterdir()}
        assert str(server.run / "lock") not in files


def test_without_flock_the_service_starts_and_says_so(make_server, work):
    tools = work / "bin"
    tools.mkdir()
    for tool in "cat chmod dirname lighttpd ln ls mkdir printenv rm sed sleep".split():
        (tools / tool).symlink_to(shutil.which(tool, path=paths.CLEAN_ENVIRONMENT["PATH"]))
    server = make_server()
    server.environment["PATH"] = str(tools)
    assert server.start().ask("/srv/status").status == 200
    second = server.launch()
    assert second.wait(DEADLINE) == 1
    messages = second.stderr.read().decode()
    second.stderr.close()
    assert "flock is not installed" in messages
    assert f"in use by the web server with process id {server.process.pid}" in messages


def test_two_servers_do_not_disturb_each_other(make_server):
    first, second = make_server("a").start(), make_server("b").start()
    first.ask("/srv/disconnect")
    assert first.device.get("getCellularDataConnectionStatus") == "ready"
    assert second.device.get("getCellularDataConnectionStatus") == "connected"
    first.stop()
    assert second.ask("/srv/status").status == 200


def test_a_device_that_hangs_gives_a_timeout_and_service_goes_on_afterwards(make_server):
    server = make_server()
    server.environment["KESTAL_TIMEOUT"] = "1"
    server.start()
    responder = server.responder()
    os.kill(responder, signal.SIGSTOP)
    assert server.ask("/srv/status").status == 504
    os.kill(responder, signal.SIGCONT)
    wait_until(lambda: server.ask("/srv/status").status == 200, "the service answers again")
    assert server.responder() == responder


def test_many_browsers_at_once_are_all_answered(server):
    statuses = []

    def browse():
        for _ in range(25):
            statuses.append(server.ask("/srv/status").status)

    browsers = [threading.Thread(target=browse) for _ in range(16)]
    for browser in browsers:
        browser.start()
    for browser in browsers:
        browser.join()
    assert statuses == [200] * 400


def test_the_responder_gets_only_the_variables_of_a_fixed_list(make_server, work):
    server = make_server()
    server.environment |= {"LANGUAGE": "de", "LC_ALL": "de_DE", "SECRET": "x", "KESTAL_LOCALEDIR": str(work)}
    server.start()
    environment = processes.environment(server.responder())
    assert environment["LOCPATH"] == str(paths.LOCALES)
    assert environment.keys() - {"PHP_FCGI_CHILDREN"} == {
        "PATH",
        "KESTAL_DEVICE",
        "KESTAL_SESSIONS",
        "KESTAL_LOG",
        "KESTAL_LOG_LEVEL",
        "KESTAL_LOCALEDIR",
        "KESTAL_TIMEOUT",
        "LOCPATH",
        "CGICC_MAX_CONTENTLENGTH",
        "LIBFCGI_OS_CLOSE_POLL_TIMEOUT",
        "GLIBC_TUNABLES",
    }


def test_the_locales_of_the_machine_are_used_if_no_others_are_named(make_server):
    server = make_server()
    del server.environment["LOCPATH"], server.environment["KESTAL_LOCALEDIR"]
    server.start()
    assert not processes.environment(server.responder()).keys() & {"LOCPATH", "KESTAL_LOCALEDIR"}
    assert server.ask("/srv/status").status == 200
