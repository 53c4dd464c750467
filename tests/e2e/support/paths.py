"""Paths of the files under test. CTest passes them; the defaults are for a run by hand."""

import os
import pathlib

ROOT = pathlib.Path(os.environ.get("KESTAL_ROOT", pathlib.Path(__file__).parents[3]))
BUILD = pathlib.Path(os.environ.get("KESTAL_BUILD", ROOT / "build" / "debug"))
SERVICE = pathlib.Path(os.environ.get("KESTAL_SERVICE", BUILD / "service" / "kestal.cgi"))
# Texts, and locales that the machine itself may lack.
CATALOGUE = BUILD / "catalogue"
LOCALES = BUILD / "locales"
# Where the build will be installed.
PREFIX = os.environ.get("KESTAL_PREFIX", "/usr")
SYSCONFDIR = os.environ.get("KESTAL_SYSCONFDIR", "/etc")
SIM = pathlib.Path(os.environ.get("KESTAL_SIM", BUILD / "tools" / "kestal-sim"))
# The sanitizers the build has, if any.
SANITIZERS = os.environ.get("KESTAL_SANITIZE", "")
# Which answer tree the build uses: our own (compat) or an installed CTPP2 (system).
CTPP2 = os.environ.get("KESTAL_CTPP2", "compat")
LAUNCHER = ROOT / "deploy" / "kestal-server"
DEVICES = ROOT / "devices"
SCENARIOS = ROOT / "scenarios"
DEFAULT_DEVICE = DEVICES / "default.json"

# The environment of every process under test, which gets nothing else of the caller's environment.
CLEAN_ENVIRONMENT = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin"}
