// kestrelbox.js - <kestrelbox-view>: a model in another page, shown by the program in a worker of its own
import { Display } from "./display.js";
import { givenFiles, meantFile } from "./given.js";
import { Program } from "./program.js";

/** @typedef {import("./messages").GivenFile} GivenFile */
/** @typedef {import("./messages").ViewAnswer} ViewAnswer */
/** @typedef {import("./types").KestrelboxView} Published */
/** @typedef {import("./messages").ViewOptions} ViewOptions */
/** @typedef {{ files: GivenFile[], path: string, address?: string }} Opening no path: the built-in model */

const turning = ["rotate", "view", "zoom"];
const looking = ["preset", "texture", "lights", "shadows", "no-vertex-color", "no-backcull", "wireframe", "rough"];
const reading = ["no-keyframes", "tool", "filter", "format", "ply-list", "max-size"];
const optionNames = [...turning, ...looking, "metallic", "moon", "background", "size", ...reading];
const sideLeast = 10; // of the size, as for kbx
const sideLimit = 16384;
const builtInTextures = ["wood", "metal", "pattern"];

/** The keys of the page that turn and zoom, with the codes of shell/keys.h. @type {{ [name: string]: number }} */
const keys = {
    Escape: 0x100,
    ArrowLeft: 0x104,
    ArrowRight: 0x105,
    ArrowUp: 0x106,
    ArrowDown: 0x107,
    "+": 0x2b,
    "=": 0x2b,
    "-": 0x2d,
    _: 0x2d,
};

const style = new CSSStyleSheet();
style.replaceSync(`
    :host { display: inline-block; position: relative; width: 620px; height: 520px; }
    :host([hidden]) { display: none; }
    div { width: 100%; height: 100%; touch-action: none; }
    div:focus-visible { outline: 2px solid Highlight; outline-offset: 1px; }
    canvas { display: block; width: 100%; height: 100%; visibility: hidden; }
    .shown canvas { visibility: visible; }
    button { position: absolute; inset: 0; width: fit-content; height: fit-content; margin: auto; padding: 0.5em 1em; }
    button[hidden] { display: none; }
`);

/** @param {string} address */
async function fetchFile(address) {
    const response = await fetch(address).catch(() => null);
    if (!response?.ok) throw new Error(`Error: failed to open ${address}`);
    const name = decodeURIComponent(new URL(address).pathname.split("/").pop() || "model");
    return { path: name, file: await response.blob() };
}

/** @implements {Published} */
export class KestrelboxView extends HTMLElement {
    static observedAttributes = ["src", "aria-label", ...optionNames];

    /** @type {Program | null} */
    #program = null;
    /** @type {Opening | null} */
    #shown = null;
    #facts = null;
    /** What is done one after the other. */
    #last = Promise.resolve();
    /** @type {Set<string>} */
    #changed = new Set();
    #steps = 0; // of the progress
    #textureAddress = ""; // of the one that the program has
    #ending = ""; // why there is no program
    #place = document.createElement("div");
    #again = document.createElement("button"); // for a program that has stopped
    #sizeStyle = new CSSStyleSheet();

    constructor() {
        super();
        const root = this.attachShadow({ mode: "open", delegatesFocus: true });
        root.adoptedStyleSheets = [style, this.#sizeStyle];
        root.append(this.#place, this.#again);
        this.#again.textContent = "Start anew";
        this.#again.hidden = true;
        this.#again.addEventListener("click", () => this.restart().catch(() => undefined));
        this.#place.setAttribute("role", "img");
        this.#place.tabIndex = 0;
        this.#place.addEventListener("keydown", (event) => this.#takeKey(event));
        new Display(this.#place, () => this.#program ?? { send: () => Promise.resolve() });
    }

    get src() {
        return this.getAttribute("src") ?? "";
    }

    set src(address) {
        this.setAttribute("src", address);
    }

    connectedCallback() {
        this.#name();
        if (this.#program) return;
        this.#start();
        this.#openQuietly(this.#shown ?? this.#addressed());
    }

    // A view that is only moved in its document comes back at once.
    disconnectedCallback() {
        queueMicrotask(() => {
            if (!this.isConnected) this.#end("The view is not in a document");
        });
    }

    /** @param {string} name */
    attributeChangedCallback(name) {
        if (name === "src") this.#shown = null;
        if (name === "size") this.#takeSize();
        if (name === "aria-label") this.#name();
        else if (this.#program && this.#changed.add(name).size === 1) queueMicrotask(() => this.#follow());
    }

    // ---- for the page ----

    /** @param {Iterable<File>} files */
    async open(files) {
        const given = givenFiles(files);
        if (given.length === 0) return;
        await this.#open({ files: given, path: meantFile(given) });
    }

    info() {
        return this.#facts;
    }

    /** @param {string} name */
    async tool(name) {
        return (await this.#ask({ do: "tool", name })).notice;
    }

    async picture() {
        const [picture] = await this.save("png");
        return new Blob([picture], { type: "image/png" });
    }

    /** @param {string} kind */
    async save(kind) {
        const stem = (this.#fileName() || "teapot").replace(/\.[^.]*$/, "");
        const { files } = await this.#ask({ do: "save", name: `${stem}.${kind}` });
        return files.map(({ name, bytes }) => new File([/** @type {BlobPart} */ (bytes)], name));
    }

    async restart() {
        this.#end("The program was started anew");
        await this.#open(this.#shown ?? this.#addressed());
    }

    // ---- the program ----

    #start() {
        const worker = new Worker(new URL("./view_worker.js", import.meta.url), { type: "module" });
        const program = new Program((said) => this.#hear(program, said), worker);
        this.#program = program;
        this.#again.hidden = true;
        this.#textureAddress = "";
        program.start(this.#place);
    }

    /** @param {string} reason */
    #end(reason) {
        this.#ending = reason;
        this.#program?.end();
        this.#program = null;
        this.#place.replaceChildren();
        this.#place.classList.remove("shown");
    }

    /** @param {Program} program @param {any} said */
    #hear(program, { what, value, text }) {
        if (program !== this.#program) return;
        if (what === "fault") {
            this.#end(`The program has stopped: ${text}`);
            this.#again.hidden = false;
            this.#fail(this.#ending);
        }
        if (what === "progress") this.#steps = value;
        const known = new Map([
            ["progress", 0],
            ["progress-steps", value],
            ["progress-close", this.#steps],
        ]);
        const loaded = known.get(what);
        if (loaded === undefined) return;
        this.dispatchEvent(
            new ProgressEvent("progress", { lengthComputable: true, loaded, total: Math.max(1, this.#steps) }),
        );
    }

    // Sends an action after all earlier ones, and takes its answer.
    /** @param {import("./messages").ViewAction | Promise<import("./messages").ViewAction>} action */
    #ask(action) {
        Promise.resolve(action).catch(() => undefined); // it may fail before its turn has come
        const answered = this.#last.then(async () => {
            const request = await action;
            /** @type {ViewAnswer | undefined} */
            const answer = await this.#program?.send(request);
            if (!answer) throw new DOMException(this.#ending || "The view is not in a document", "AbortError");
            if (answer.facts) this.#facts = JSON.parse(answer.facts);
            for (const message of answer.refused) this.#fail(message);
            if (answer.refused.length > 0) this.#textureAddress = ""; // it may be the one that cannot be read
            if (answer.error !== undefined) throw new Error(answer.error);
            return answer;
        });
        this.#last = answered.then(
            () => undefined,
            () => undefined,
        );
        return answered;
    }

    // ---- models and options ----

    /** @returns {Promise<ViewOptions>} */
    async #options() {
        const given = optionNames.filter((name) => this.hasAttribute(name));
        /** @type {[string, string][]} */
        const options = given.map((name) => [name, this.getAttribute(name) ?? ""]);
        const texture = this.getAttribute("texture");
        if (texture === null || builtInTextures.includes(texture)) return { options };
        const address = new URL(texture, document.baseURI).href;
        if (address === this.#textureAddress) return { options, texture: { path: address } };
        const file = await fetchFile(address);
        this.#textureAddress = address;
        return { options, texture: file };
    }

    /** @returns {Promise<Opening>} */
    async #addressed() {
        if (!this.src) return { files: [], path: "" };
        const address = new URL(this.src, document.baseURI).href;
        const file = await fetchFile(address);
        return { files: [file], path: file.path, address };
    }

    /** @param {Opening | Promise<Opening>} opening */
    async #open(opening) {
        if (!this.#program && this.isConnected) this.#start();
        const request = async () => {
            const { files, path, address } = await opening;
            return /** @type {const} */ ({ do: "openView", files, path, address, options: await this.#options() });
        };
        try {
            await this.#ask(request());
        } catch (error) {
            this.#report(error);
            throw error;
        }
        this.#shown = await opening;
        this.#place.classList.add("shown");
        this.#name();
        this.dispatchEvent(new Event("load"));
    }

    // The page hears of a failure by the event.
    /** @param {Opening | Promise<Opening>} opening */
    #openQuietly(opening) {
        this.#open(opening).catch(() => undefined);
    }

    // Follows the attributes that have changed.
    #follow() {
        const changed = [...this.#changed];
        this.#changed.clear();
        if (!this.#program) return;
        if (changed.includes("src")) this.#openQuietly(this.#addressed());
        else if (changed.some((name) => reading.includes(name))) this.#openQuietly(this.#shown ?? this.#addressed());
        else this.#look(changed.some((name) => turning.includes(name)));
    }

    /** @param {boolean} turned */
    #look(turned) {
        const request = this.#options().then((options) => /** @type {const} */ ({ do: "look", options, turned }));
        this.#ask(request).catch((error) => this.#report(error));
    }

    // A program that has ended has said so itself, or was ended by who removed the view.
    /** @param {any} error */
    #report(error) {
        if (error.name !== "AbortError") this.#fail(error.message);
    }

    /** @param {string} message */
    #fail(message) {
        this.dispatchEvent(new ErrorEvent("error", { message }));
    }

    // The size is that of the element where the page's own styles give none; the program says when it is wrong.
    #takeSize() {
        const [, width, height] = /^(\d+)x(\d+)$/.exec(this.getAttribute("size") ?? "") ?? [];
        const isOne = (/** @type {string} */ side) => Number(side) >= sideLeast && Number(side) <= sideLimit;
        const rule = isOne(width) && isOne(height) ? `:host { width: ${width}px; height: ${height}px; }` : "";
        this.#sizeStyle.replaceSync(rule);
    }

    #fileName() {
        return this.#shown?.path.split("/").pop();
    }

    #name() {
        const name = this.#fileName();
        this.#place.setAttribute("aria-label", this.getAttribute("aria-label") ?? (name ? `Model ${name}` : "Model"));
    }

    /** @param {KeyboardEvent} event */
    #takeKey(event) {
        const key = keys[event.key];
        if (event.altKey || event.metaKey || event.ctrlKey || (key === undefined && event.key !== "Home")) return;
        if (event.key !== "Escape") event.preventDefault();
        if (key === undefined) this.#look(true);
        else this.#program?.send({ do: "key", key, modifiers: 0, repeated: event.repeat });
    }
}

customElements.define("kestrelbox-view", KestrelboxView);
