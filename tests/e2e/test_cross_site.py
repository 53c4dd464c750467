"""A page of another site must not act on the device in the name of whoever looks at it."""

import pytest

UNTOUCHED = 1

ACTING = [
    "/srv/connect",
    "/srv/disconnect",
    "/srv/xconnectx",
    "/srv/x?connect",
    "/srv/?connect",
    "/srv/status?x",
    "/srv/stat%75s?connect",
    "/srv/notificatio%6e?disconnect",
    "/srv/x/status/../connect",
    "/srv/connect/../stat%75s",
    "/srv/conn%65ct",
    "/srv/connect/status%2e",
    "/srv/connect#status",
    "/srv/x#connect",
    "/%73rv/connect",
    "/srv%2fconnect",
    "/srv/;connect",
    "/srv/connect/",
    "/srv/status/connect",
    "//srv/connect",
    "http://127.0.0.1/srv/connect",
]

BROWSER = ("User-Agent", "Mozilla/5.0 (X11; Linux x86_64; rv:128.0) Gecko/20100101 Firefox/128.0")

FOREIGN = {
    "fetched by another site": [("Sec-Fetch-Site", "cross-site")],
    "fetched by a neighbour": [("Sec-Fetch-Site", "same-site")],
    "fetched by something unknown": [("Sec-Fetch-Site", "x")],
    "written in capitals": [("SEC-FETCH-SITE", "CROSS-SITE")],
    "claimed twice": [("Sec-Fetch-Site", "same-origin"), ("Sec-Fetch-Site", "cross-site")],
    "of another origin": [("Origin", "https://example.com")],
    "of a hidden origin": [("Origin", "null")],
    "of the host by another port": [("Origin", "http://127.0.0.1:1")],
    "of the host by another scheme": [("Origin", "https://127.0.0.1:{port}")],
    "of an origin that begins alike": [("Origin", "http://127.0.0.1:{port}.example.com")],
    "of an origin that ends alike": [("Origin", "http://example.com/http://127.0.0.1:{port}")],
    "of an origin that looks alike": [("Origin", "http://127x0x0x1:{port}")],
    "of two origins": [("Origin", "http://127.0.0.1:{port}"), ("Origin", "https://example.com")],
    "of our origin by another site": [
        ("Origin", "http://127.0.0.1:{port}"),
        ("Sec-Fetch-Site", "cross-site"),
    ],
    "of a page of another site": [("Referer", "https://example.com/page")],
    "of a page of another site, in a browser": [BROWSER, ("Referer", "https://example.com/")],
    "of another site that tells its origin": [("Referer", "https://example.com")],
    "of a page of the host by another port": [("Referer", "http://127.0.0.1:1/")],
    "of a page of an origin that begins alike": [("Referer", "http://127.0.0.1:{port}.example.com/")],
    "of a page of a port that begins alike": [("Referer", "http://127.0.0.1:{port}0/")],
    "of a page that names us": [("Referer", "http://example.com/http://127.0.0.1:{port}/")],
    "of another page as if of our origin": [
        ("Origin", "http://127.0.0.1:{port}"),
        ("Referer", "https://example.com/"),
    ],
    "of a browser that tells nothing": [BROWSER],
    "of a browser that tells empty things": [
        BROWSER,
        ("Sec-Fetch-Site", ""),
        ("Origin", ""),
        ("Referer", ""),
    ],
    "of a name pointed at us": [("Host", "example.com:{port}")],
    "of a name like an address": [("Host", "127.0.0.1.example.com")],
}

OWN = {
    "no browser": [],
    "curl": [("User-Agent", "curl/7.88.1"), ("Accept", "*/*")],
    "a program that names browsers": [("User-Agent", "fetcher (unlike Mozilla/5.0)")],
    "our page in a browser": [BROWSER, ("Referer", "http://127.0.0.1:{port}/index.html?x=1")],
    "our site in a browser": [BROWSER, ("Referer", "http://localhost:{port}")],
    "our page that hides itself": [BROWSER, ("Sec-Fetch-Site", "same-origin")],
    "our form in a browser": [BROWSER, ("Origin", "http://127.0.0.1:{port}")],
    "typed by the user in a browser": [BROWSER, ("Sec-Fetch-Site", "none")],
    "our page": [("Sec-Fetch-Site", "same-origin"), ("Origin", "http://127.0.0.1:{port}")],
    "our page by name": [("Sec-Fetch-Site", "same-origin"), ("Origin", "http://localhost:{port}")],
    "our page by IPv6": [("Origin", "http://[::1]:{port}")],
    "typed by the user": [("Sec-Fetch-Site", "none")],
    "a host without a domain": [("Host", "hotspot")],
    "a host of the local domain": [("Host", "hotspot.local:{port}")],
    "an IPv6 host": [("Host", "[::1]:{port}")],
}


def headers(server, template):
    return [(name, value.format(port=server.port)) for name, value in template]


@pytest.fixture
def armed(server):
    server.device.set(getCellularDataConnectionStatus=UNTOUCHED)
    return server


def connection_status(server):
    return server.device.get("getCellularDataConnectionStatus")


def test_no_target_gets_past_the_guard(armed):
    for target in ACTING:
        for method in ("GET", "POST"):
            extra = [("Sec-Fetch-Site", "cross-site"), ("Content-Length", "0")]
            assert armed.ask(target, extra, method=method).status in (400, 403), target
    assert connection_status(armed) == UNTOUCHED
    assert armed.log.count("request received") == 0


@pytest.mark.parametrize("template", FOREIGN.values(), ids=FOREIGN.keys())
def test_a_request_of_another_site_does_not_act(armed, template):
    for target in ("/srv/connect", "/srv/disconnect"):
        assert armed.ask(target, headers(armed, template)).status == 403
    assert connection_status(armed) == UNTOUCHED


@pytest.mark.parametrize("template", OWN.values(), ids=OWN.keys())
def test_our_own_pages_and_callers_that_are_no_browsers_act(armed, template):
    assert armed.ask("/srv/connect", headers(armed, template)).body == b'{"loginStatus":0}'
    assert connection_status(armed) == 2
    assert armed.ask("/srv/disconnect", headers(armed, template)).status == 200
    assert connection_status(armed) == 0


@pytest.mark.parametrize("template", FOREIGN.values(), ids=FOREIGN.keys())
def test_what_only_tells_is_open_to_all(armed, template):
    for target in ("/srv/status", "/srv/notification"):
        assert armed.ask(target, headers(armed, template)).status == 200
    assert connection_status(armed) == UNTOUCHED


def test_a_fragment_is_not_seen_by_the_guard(armed):
    """A known limit. The web server drops the fragment before any of its rules, the service searches
    it for an action. No browser sends one, so no page can make a browser pass here."""
    assert armed.ask("/srv/stat%75s#connect", [("Sec-Fetch-Site", "cross-site")]).status == 200
    assert connection_status(armed) == 2


def test_further_origins_can_be_named(make_server):
    server = make_server()
    server.environment["KESTAL_ORIGINS"] = "http://my.hotspot https://admin.example.com:8443"
    server.start()
    for origin in ("http://my.hotspot", "https://admin.example.com:8443"):
        host = origin.partition("://")[2]
        assert server.ask("/srv/connect", [("Origin", origin), ("Host", host)]).status == 200
        page = [BROWSER, ("Referer", origin + "/page"), ("Host", host)]
        assert server.ask("/srv/connect", page).status == 200
    for origin in ("https://my.hotspot", "http://my.hotspot:80", "http://myxhotspot", "http://other.hotspot"):
        assert server.ask("/srv/connect", [("Origin", origin)]).status == 403
        assert server.ask("/srv/connect", [("Referer", origin + "/page")]).status == 403
    assert server.ask("/srv/connect", [("Host", "other.hotspot")]).status == 403


def test_a_refusal_has_the_headers_of_an_answer(server):
    answer = server.ask("/srv/connect", [("Sec-Fetch-Site", "cross-site")])
    assert answer.status == 403
    assert answer.headers["x-content-type-options"] == "nosniff"
    assert answer.headers["cache-control"] == "no-store"
