// The text of a notification is a fragment of HTML: a translated text, then perhaps a link and
// another text. It comes from catalogues, carriers and settings and cannot be trusted, so this
// module takes only texts and links to harmless addresses from it and creates new nodes for them. It
// finds them with a few rules of its own: the browser's parser would first create all elements.

import { element } from "./dom.js";

/** Comments and tags. Everything else is text. */
const MARKUP = /<!--[^]*?(?:-->|$)|<(\/?)([a-z][a-z0-9:-]*)((?:"[^"]*"|'[^']*'|[^'">])*)>/gi;
const ADDRESS = /(?:^|[\s"'/])href\s*=\s*(?:"([^"]*)"|'([^']*)'|([^\s"'>]+))/i;

/** Elements whose content is not text to be read. */
const SILENT = new Set([
    "script",
    "style",
    "template",
    "noscript",
    "iframe",
    "object",
    "title",
    "svg",
    "math",
]);
const BREAKS = new Set([
    "p",
    "div",
    "li",
    "ul",
    "ol",
    "h1",
    "h2",
    "h3",
    "h4",
    "h5",
    "h6",
    "tr",
    "table",
    "br",
    "hr",
]);

/**
 * The address of a link if it is allowed: a page of this site or of the web; otherwise null.
 * Addresses below /srv/ are refused, because opening one can trigger an action. On this site, empty
 * and dotted parts of a path are refused, too: the web server resolves a path again after it has
 * decoded it, and a path that begins with two slashes is a link to another host.
 */
export function safeAddress(written, base = document.baseURI) {
    let url;
    let path;
    try {
        url = new URL(written, base);
        path = decodeURIComponent(url.pathname).replaceAll("\\", "/");
    } catch {
        return null;
    }
    if (
        (url.protocol !== "http:" && url.protocol !== "https:") ||
        url.username !== "" ||
        url.password !== ""
    ) {
        return null;
    }
    const isOwn = url.host === new URL(base).host;
    return isOwn && /^\/srv(\/|$)|\/\.{0,2}\//i.test(path) ? null : url;
}

/** A text without markup, with its character references resolved. */
function plain(text) {
    if (!text.includes("&")) {
        return text;
    }
    // The leading dot keeps blanks at the beginning, which the parser would drop.
    const source = new DOMParser().parseFromString(`.${text.replaceAll("<", "&lt;")}`, "text/html");
    return source.body.textContent.slice(1);
}

/**
 * The value of an attribute, with its character references resolved. Unlike in a text, "&copy=" is
 * not a reference in an attribute.
 */
function attributeValue(written) {
    const source = `<a href="${written.replaceAll('"', "&quot;")}"></a>`;
    const parsed = new DOMParser().parseFromString(source, "text/html");
    return parsed.querySelector("a").getAttribute("href");
}

/** The pieces of a fragment: texts, and links with their texts. */
function pieces(html) {
    const found = [{ text: "" }];
    let silent = null;
    let end = 0;
    const take = (text) => {
        if (silent === null) {
            found.at(-1).text += plain(text);
        }
    };
    for (const { index, 0: markup, 1: closing, 2: written, 3: attributes } of html.matchAll(
        MARKUP,
    )) {
        take(html.slice(end, index));
        end = index + markup.length;
        const name = written?.toLowerCase();
        if (silent !== null) {
            silent = closing && name === silent ? null : silent;
        } else if (SILENT.has(name)) {
            silent = closing ? null : name;
        } else if (name === "a") {
            const address = closing
                ? null
                : attributes
                      .match(ADDRESS)
                      ?.slice(1)
                      .find((value) => value !== undefined);
            found.push({
                text: "",
                address: address === undefined || address === null ? null : attributeValue(address),
            });
        } else if (BREAKS.has(name)) {
            take("\n");
        }
    }
    take(html.slice(end));
    return found;
}

function link(url, text) {
    const attributes =
        url.origin === location.origin
            ? { href: url.pathname + url.search + url.hash }
            : { href: url.href, rel: "noopener noreferrer", target: "_blank" };
    return element("a", attributes, text);
}

/** The text as nodes: texts and links, nothing else. */
export function notificationNodes(html) {
    const nodes = document.createDocumentFragment();
    for (const { text, address } of pieces(html)) {
        const url = typeof address === "string" && text.trim() !== "" ? safeAddress(address) : null;
        if (url === null) {
            nodes.append(text);
            continue;
        }
        // The text before the link is a complete sentence, so the link needs a blank before it.
        if (/[.!?:;,؟،]$/.test(nodes.textContent)) {
            nodes.append(" ");
        }
        nodes.append(link(url, text));
    }
    nodes.normalize();
    return nodes;
}
