// boxes.js - message boxes, notices, the progress bar, and the question for a name
import { element } from "./menus.js";

const noticeMs = 1300;
const stepMs = 100; // painting the page more often takes time from the program

export class Boxes {
    /**
     * @param {(open: boolean) => void} rest called when the first box opens and when the last one has closed
     * @param {() => void} stop what the progress bar's button does
     */
    constructor(rest, stop) {
        this.rest = rest;
        this.openBoxes = 0;
        this.last = Promise.resolve();
        this.stepped = 0; // when the progress bar moved last
        this.bar = /** @type {HTMLDialogElement} */ (document.getElementById("progress"));
        this.bar.querySelector("button")?.addEventListener("click", stop);
        this.bar.addEventListener("cancel", (event) => event.preventDefault());
    }

    // Shows a dialog when those before it have closed, and gives what it returns.
    /** @param {HTMLDialogElement} dialog @returns {Promise<string>} */
    ask(dialog) {
        const answer = this.last.then(
            () =>
                new Promise((resolve) => {
                    document.body.append(dialog);
                    dialog.addEventListener("close", () => {
                        dialog.remove();
                        if (--this.openBoxes === 0) this.rest(false);
                        resolve(dialog.returnValue);
                    });
                    if (this.openBoxes++ === 0) this.rest(true);
                    dialog.showModal();
                }),
        );
        this.last = answer.then(() => undefined);
        return answer;
    }

    /** @param {string} caption @param {Node[]} contents @param {[string, string][]} buttons value and text of each */
    dialog(caption, contents, buttons) {
        const dialog = /** @type {HTMLDialogElement} */ (element("dialog", { "aria-label": caption }));
        const form = element("form", { method: "dialog" });
        const row = element("div", { class: "buttons" });
        row.append(...buttons.map(([value, text]) => element("button", { value }, text)));
        form.append(...(caption ? [element("h2", {}, caption)] : []), ...contents, row);
        dialog.append(form);
        return dialog;
    }

    /** @param {string} text @param {string} caption @param {boolean} stop with the icon of a failure */
    message(text, caption, stop) {
        const said = element("p", { class: stop ? "stop" : "plain" }, text);
        return this.ask(this.dialog(caption, [said], [["ok", "OK"]]));
    }

    /** @param {string} caption @param {string} text @param {string} yes @param {string} no */
    async confirm(caption, text, yes, no) {
        const dialog = this.dialog(
            caption,
            [element("p", {}, text)],
            [
                ["yes", yes],
                ["", no],
            ],
        );
        return (await this.ask(dialog)) === "yes";
    }

    // Asks for the name of a file to save. Empty: cancelled.
    /** @param {string} caption @param {string} proposed */
    async askName(caption, proposed) {
        const field = /** @type {HTMLInputElement} */ (
            element("input", { type: "text", "aria-label": "File name", value: proposed, required: "" })
        );
        const dialog = this.dialog(
            caption,
            [field],
            [
                ["save", "Save"],
                ["", "Cancel"],
            ],
        );
        dialog.querySelector(".buttons")?.lastElementChild?.setAttribute("formnovalidate", "");
        const answer = this.ask(dialog);
        await Promise.resolve();
        field.setSelectionRange(0, Math.max(0, proposed.lastIndexOf(".")));
        return (await answer) === "save" ? field.value : "";
    }

    /** @param {string} text */
    notice(text) {
        const notice = element("div", { class: "notice", role: "status" }, text);
        document.body.append(notice);
        setTimeout(() => notice.remove(), noticeMs);
    }

    /** @param {import("./messages").Said} said */
    hear({ what, value, text }) {
        const bar = /** @type {HTMLProgressElement} */ (this.bar.querySelector("progress"));
        if (what === "progress") {
            /** @type {HTMLElement} */ (this.bar.querySelector("p")).textContent = text;
            bar.max = value;
            bar.value = 0;
            this.stepped = 0;
            if (!this.bar.open) this.bar.showModal();
        }
        if (what === "progress-steps" && performance.now() - this.stepped >= stepMs) {
            bar.value = value;
            this.stepped = performance.now();
        }
        if (what === "progress-close" && this.bar.open) this.bar.close();
        if (what === "notice") this.notice(text);
        if (what === "box") {
            const [caption, ...lines] = text.split("\n");
            this.message(lines.join("\n"), caption, value !== 0);
        }
    }
}
