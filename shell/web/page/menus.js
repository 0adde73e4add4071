// menus.js - the menu bar, made from the program's table

// An "&" stands before the letter that chooses an entry; "&&" is one "&".
/** @param {string} text */
export function splitText(text) {
    const letter = /&([^&])/.exec(text)?.[1]?.toLowerCase() ?? text[0].toLowerCase();
    return { text: text.replace(/&(.)/g, "$1"), letter };
}

/** @param {string} tag @param {{ [name: string]: string }} attributes @param {string} [text] */
export function element(tag, attributes = {}, text = "") {
    const made = document.createElement(tag);
    for (const [name, value] of Object.entries(attributes)) made.setAttribute(name, value);
    if (text) made.textContent = text;
    return made;
}

export class Menus {
    /**
     * @param {HTMLElement} bar
     * @param {import("./messages").Tables["menus"]} tables
     * @param {(id: number) => void} run
     */
    constructor(bar, tables, run) {
        this.bar = bar;
        this.run = run;
        /** @type {Map<number, HTMLElement>} */
        this.entries = new Map();
        bar.replaceChildren(...tables.map((menu) => this.makeMenu(menu)));
        bar.addEventListener("keydown", (event) => this.key(event));
        document.addEventListener("pointerdown", (event) => {
            if (!bar.contains(/** @type {Node} */ (event.target))) this.close();
        });
        this.titles().forEach((title, index) => (title.tabIndex = index === 0 ? 0 : -1));
    }

    /** @param {import("./messages").Tables["menus"][0]} menu */
    makeMenu(menu) {
        const { text, letter } = splitText(menu.text);
        const title = element("button", { role: "menuitem", "aria-haspopup": "true", "aria-expanded": "false" }, text);
        Object.assign(title.dataset, { letter, text: menu.text });
        const list = element("div", { role: "menu", "aria-label": text });
        list.hidden = true;
        list.append(...menu.entries.map((entry) => this.makeEntry(entry)));
        title.addEventListener("click", () => (list.hidden ? this.open(title) : this.close()));
        title.addEventListener("pointerenter", () => {
            if (this.openTitle() && this.openTitle() !== title) this.open(title);
        });
        const menuElement = element("div", { class: "menu", role: "none" });
        menuElement.append(title, list);
        return menuElement;
    }

    /** @param {import("./messages").MenuEntry} entry */
    makeEntry(entry) {
        if (entry.text === undefined) return element("hr", { role: "separator" });
        const { text, letter } = splitText(entry.text);
        const made = element("button", { role: "menuitemcheckbox", "aria-checked": "false", tabindex: "-1" }, text);
        Object.assign(made.dataset, { id: entry.id, letter, text: entry.text });
        this.enable(made, !entry.disabled);
        made.addEventListener("click", () => {
            if (made.getAttribute("aria-disabled") === "true") return;
            this.close();
            this.run(entry.id);
        });
        this.entries.set(entry.id, made);
        return made;
    }

    /** @param {HTMLElement} entry @param {boolean} on */
    enable(entry, on) {
        entry.setAttribute("aria-disabled", String(!on));
    }

    /** @param {import("./messages").Said} said */
    hear({ what, id, value, text }) {
        const entry = this.entries.get(id);
        if (!entry) return;
        if (what === "menu-tick") entry.setAttribute("aria-checked", String(value !== 0));
        if (what === "menu-enable") this.enable(entry, value !== 0);
        if (what === "menu-text") {
            entry.textContent = text;
            entry.dataset.text = text.replaceAll("&", "&&");
        }
    }

    titles() {
        return /** @type {HTMLElement[]} */ ([...this.bar.querySelectorAll(":scope > .menu > button")]);
    }

    openTitle() {
        return this.titles().find((title) => title.getAttribute("aria-expanded") === "true");
    }

    /** @param {HTMLElement} title */
    listOf(title) {
        return /** @type {HTMLElement} */ (title.nextElementSibling);
    }

    /** @param {HTMLElement} title */
    entriesOf(title) {
        return /** @type {HTMLElement[]} */ ([...this.listOf(title).querySelectorAll("button")]);
    }

    /** @param {HTMLElement} title */
    open(title) {
        this.close();
        title.setAttribute("aria-expanded", "true");
        this.listOf(title).hidden = false;
        this.entriesOf(title)[0]?.focus();
    }

    close() {
        const title = this.openTitle();
        if (!title) return;
        title.setAttribute("aria-expanded", "false");
        this.listOf(title).hidden = true;
    }

    /** @param {KeyboardEvent} event */
    key(event) {
        const titles = this.titles();
        const focused = /** @type {HTMLElement} */ (document.activeElement);
        const title = titles.find((candidate) => candidate.parentElement?.contains(focused));
        if (!title || event.ctrlKey || event.altKey || event.metaKey) return;
        if (this.moveBy(event.key, title, focused)) {
            event.preventDefault();
            event.stopPropagation();
        }
    }

    // Returns whether the key meant something.
    /** @param {string} key @param {HTMLElement} title @param {HTMLElement} focused */
    moveBy(key, title, focused) {
        const titles = this.titles();
        const isOpen = !this.listOf(title).hidden;
        const step = key === "ArrowRight" || key === "ArrowDown" ? 1 : -1;
        if (key === "ArrowLeft" || key === "ArrowRight") {
            const next = titles[(titles.indexOf(title) + step + titles.length) % titles.length];
            if (isOpen) this.open(next);
            else next.focus();
            return true;
        }
        if (key === "ArrowDown" || key === "ArrowUp") {
            if (!isOpen) this.open(title);
            else {
                const entries = this.entriesOf(title);
                entries[(entries.indexOf(focused) + step + entries.length) % entries.length].focus();
            }
            return true;
        }
        if (key === "Escape" && isOpen) {
            this.close();
            title.focus();
            return true;
        }
        const choices = isOpen ? this.entriesOf(title) : titles;
        const chosen = key.length === 1 && choices.find(({ dataset }) => dataset.letter === key.toLowerCase());
        if (!chosen) return isOpen && key.length === 1;
        if (isOpen) chosen.click();
        else this.open(chosen);
        return true;
    }
}
