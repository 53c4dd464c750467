// The notice about values that the device does not provide.

import { element, setText } from "./dom.js";
import { t } from "./language.js";
import { untold } from "./status.js";

export class UntoldNotice {
    #node;
    #title;
    #list;
    #told = new Set();

    constructor(node) {
        this.#node = node;
        this.#title = node.querySelector("#untold-title");
        this.#list = node.querySelector("ul");
    }

    /** Shows what is missing in an answer. Returns whether it has no values at all. */
    show(data) {
        const { nothing, told, missing } = untold(data, this.#told);
        told.forEach((name) => this.#told.add(name));
        this.#node.hidden = missing.length === 0;
        setText(this.#title, t(nothing ? "untold.nothing" : "untold.some"));
        const names = missing.map((name) => t(name));
        if (this.#list.textContent !== names.join("")) {
            this.#list.replaceChildren(...names.map((name) => element("li", {}, name)));
        }
        return nothing;
    }
}
