// Building the page through nodes. Nothing here, or anywhere on the page, parses a text as markup
// of the page.

const SVG = "http://www.w3.org/2000/svg";

function fill(node, attributes, children) {
    for (const [name, value] of Object.entries(attributes)) {
        if (value !== null && value !== undefined && value !== false) {
            node.setAttribute(name, value === true ? "" : String(value));
        }
    }
    node.append(...children.flat().filter((child) => child !== null && child !== undefined));
    return node;
}

export function element(name, attributes = {}, ...children) {
    return fill(document.createElement(name), attributes, children);
}

export function svg(name, attributes = {}, ...children) {
    return fill(document.createElementNS(SVG, name), attributes, children);
}

/** A text of its own direction that leaves the one around it alone. */
export function isolated(text) {
    return element("bdi", {}, text);
}

/** Text for screen readers only. */
export function hiddenText(text) {
    return element("span", { class: "hidden-text" }, text);
}

/** Leaves a node alone that shows the text already. */
export function setText(node, text) {
    if (node.textContent !== text) {
        node.textContent = text;
    }
}
