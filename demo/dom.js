// Builds the page from nodes. For safety, no code of the page parses a text as markup of the page.

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

/** A text with its own writing direction, which does not affect the text around it. */
export function isolated(text) {
    return element("bdi", {}, text);
}

/** Text for screen readers only. */
export function hiddenText(text) {
    return element("span", { class: "hidden-text" }, text);
}

/** Sets the text of a node, but does not touch a node that already shows it. */
export function setText(node, text) {
    if (node.textContent !== text) {
        node.textContent = text;
    }
}
