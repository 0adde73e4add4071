// panel.js - the tool panel, made from the program's table
import { element } from "./menus.js";

export class Panel {
    /**
     * @param {HTMLElement} place
     * @param {import("./messages").PanelGroup[]} groups
     * @param {(id: number, value: number) => void} run
     */
    constructor(place, groups, run) {
        this.place = place;
        this.run = run;
        /** @type {Map<number, HTMLElement>} */
        this.controls = new Map();
        this.list = /** @type {HTMLSelectElement} */ (element("select", { "aria-label": "Group or material" }));
        place.replaceChildren(...groups.map((group) => this.makeGroup(group)));
    }

    /** @param {import("./messages").PanelGroup} group */
    makeGroup(group) {
        const made = element("fieldset", { class: group.kind });
        made.append(element("legend", {}, group.text));
        if (group.listId) {
            this.list.addEventListener("change", () => this.run(group.listId, this.list.selectedIndex));
            made.append(this.list);
        }
        for (const control of group.controls) made.append(this.makeControl(group.kind, control));
        return made;
    }

    /** @param {string} kind @param {{ text: string, id: number }} control */
    makeControl(kind, { text, id }) {
        if (kind === "box") {
            const label = element("label");
            const box = /** @type {HTMLInputElement} */ (element("input", { type: "checkbox" }));
            box.addEventListener("change", () => this.run(id, box.checked ? 1 : 0));
            this.enter(id, box);
            label.append(box, text);
            return label;
        }
        if (kind === "button") {
            const button = element("button", { type: "button" }, text);
            button.addEventListener("click", () => this.run(id, 0));
            this.enter(id, button);
            return button;
        }
        const row = element("label");
        const count = element("output", {});
        this.enter(id, count);
        row.append(text, count);
        return row;
    }

    /** @param {number} id @param {HTMLElement} control */
    enter(id, control) {
        control.dataset.id = String(id);
        this.controls.set(id, control);
    }

    /** @param {import("./messages").Said} said */
    hear({ what, id, value, text }) {
        const control = this.controls.get(id);
        if (what === "panel-tick" && control instanceof HTMLInputElement) control.checked = value !== 0;
        if (what === "panel-text" && control) control.textContent = text;
        if (what === "list-clear") this.list.replaceChildren();
        if (what === "list-add") this.list.append(element("option", {}, text));
        if (what === "list-select") this.list.selectedIndex = value;
        if (what === "focus-panel") this.list.focus();
    }
}
