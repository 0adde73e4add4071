// page.js - the page: the program's menus, panel and display, and the files that come and go
import { Boxes } from "./boxes.js";
import { Display } from "./display.js";
import { takeWorker } from "./early.js";
import { askForFiles, downloadFiles, droppedFiles } from "./files.js";
import { givenFiles, meantFile } from "./given.js";
import { filesNow, pickFiles, pickFolder } from "./handles.js";
import { element, Menus } from "./menus.js";
import { Panel } from "./panel.js";
import { Program } from "./program.js";
import { SaveFolder } from "./save_folder.js";

/** @typedef {import("./messages").Command} Command */
/** @typedef {import("./messages").GivenFile} GivenFile */

const withControl = 1;
const withShift = 2;

/** The codes of shell/keys.h. @type {{ [name: string]: number }} */
const namedKeys = {
    Escape: 0x100,
    Home: 0x101,
    PageUp: 0x102,
    PageDown: 0x103,
    ArrowLeft: 0x104,
    ArrowRight: 0x105,
    ArrowUp: 0x106,
    ArrowDown: 0x107,
    F5: 0x108,
    "=": 0x2b,
    _: 0x2d,
};

/** @param {string} id */
const place = (id) => /** @type {HTMLElement} */ (document.getElementById(id));

/** @type {Program} */
let program;
/** @type {Menus} */
let menus;
/** @type {Panel} */
let panel;
/** @type {import("./messages").KeyRow[]} */
let keys = [];
/** @type {Command | null} */
let command = null; // the last one, which may ask for a file
/** @typedef {{ files: GivenFile[], path: string, address?: string }} Opening */
/** @type {Opening | null} */
let opening = null; // the files that were given last
/** @type {Opening | null} */
let shown = null; // those of the model that is shown; none for the built-in one
let ended = false;
let copying = false;
let renewing = false;
let begun = false; // the start, with the model of the address, is over

const boxes = new Boxes((open) => program.send({ do: "rest", on: open }), stopReading);
const saveFolder = new SaveFolder(place("save-folder"), boxes);

// ---- what the user does ----

/** @param {Command} next */
function run(next) {
    command = next;
    return program.send(next);
}

/** @param {GivenFile[]} files @param {string} [address] of a model that was fetched */
async function openFiles(files, address) {
    if (files.length === 0) return;
    opening = { files, path: meantFile(files), address };
    await program.send({ do: "open", ...opening });
}

// The program has asked for a file; the same command runs again with the answer.
/** @param {string} pattern */
async function answerWithFiles(pattern) {
    const asked = command;
    const files = await askForFiles(pattern);
    if (!asked || files.length === 0) return;
    const path = meantFile(files, pattern.toLowerCase().replaceAll("*", "").split(";"));
    opening = { files, path };
    run({ ...asked, answer: opening });
}

/** @param {string} caption @param {string} proposed */
async function answerWithName(caption, proposed) {
    const asked = command;
    const name = (await boxes.askName(caption || "Save", proposed)).replace(/[/\\]/g, "_");
    if (asked && name) run({ ...asked, answer: { name } });
}

// The files of the model that is shown may have changed since they were given.
async function renewFiles() {
    if (!shown?.files.some(({ handle }) => handle)) return;
    renewing = true;
    shown = { ...shown, files: await filesNow(shown.files) };
    program.send({ do: "renew", files: shown.files });
    renewing = false;
}

/** @param {KeyboardEvent} event */
async function takeKey(event) {
    const target = /** @type {HTMLElement} */ (event.target);
    if (event.altKey || event.metaKey || target.closest("dialog, select, [role=menu]")) return;
    const key = namedKeys[event.key] ?? (event.key.length === 1 ? event.key.toUpperCase().charCodeAt(0) : 0);
    const modifiers = (event.ctrlKey ? withControl : 0) + (event.shiftKey ? withShift : 0);
    const known = keys.some(
        (row) => row.key === key && (event.ctrlKey ? row.modifiers === modifiers : row.modifiers === 0),
    );
    if (!known) return;
    event.preventDefault();
    if (event.key === "F5" && !event.repeat) await renewFiles();
    run({ do: "key", key, modifiers, repeated: event.repeat });
}

// ---- what the program says ----

function showAbout() {
    const picture = element("img", { src: "about.bmp", alt: "The program's picture" });
    const text = element("p", {}, "Looks at 3D polygon models\nand prepares them for use elsewhere.");
    boxes.ask(boxes.dialog("About Kestrelbox", [picture, text], [["ok", "OK"]]));
}

function flash() {
    place("display").animate([{ opacity: 0.6 }, { opacity: 1 }], 150);
}

/** @param {{ pixels: Uint8Array, width: number, height: number }} picture */
async function copyPicture({ pixels, width, height }) {
    copying = true;
    const canvas = document.createElement("canvas");
    canvas.width = width;
    canvas.height = height;
    const data = new ImageData(new Uint8ClampedArray(/** @type {ArrayBuffer} */ (pixels.buffer)), width, height);
    canvas.getContext("2d")?.putImageData(data, 0, 0);
    /** @type {Promise<Blob>} */
    const blob = new Promise((resolve) => canvas.toBlob((made) => resolve(/** @type {Blob} */ (made))));
    await navigator.clipboard.write([new ClipboardItem({ "image/png": blob })]).catch(() => {
        boxes.message("The clipboard cannot be written", "Error", true);
    });
    copying = false;
}

function endProgram() {
    ended = true;
    program.end();
    place("display").replaceChildren(
        element("p", { class: "ended" }, "The program has ended. Reload the page to start it again."),
    );
}

/** @param {string} text */
async function showFault(text) {
    if (ended) return;
    ended = true;
    program.end();
    const again = await boxes.confirm("Kestrelbox", `The program has stopped: ${text}`, "Start anew", "Close");
    if (again) await startProgram();
}

/** @type {{ [what: string]: (said: any) => void }} */
const heard = {
    tables: ({ text }) => makeControls(JSON.parse(text)),
    title({ text }) {
        document.title = text;
        place("title").textContent = text;
    },
    "focus-display": () => place("display").focus(),
    "ask-open": ({ text }) => answerWithFiles(text.split("\n")[2]),
    "ask-save": ({ text }) => answerWithName(text.split("\n")[0], text.split("\n")[3]),
    opened() {
        shown = opening;
    },
    saved: async ({ files }) => (await saveFolder.save(files)) || downloadFiles(files),
    copy: copyPicture,
    about: showAbout,
    beep: flash,
    end: endProgram,
    fault: ({ text }) => showFault(text),
};

/** @param {any} said */
function hear(said) {
    heard[said.what]?.(said);
    menus?.hear(said);
    panel?.hear(said);
    boxes.hear(said);
}

/** @param {import("./messages").Tables} tables */
function makeControls(tables) {
    keys = tables.keys;
    menus = new Menus(place("menus"), tables.menus, (id) => run({ do: "menu", id }));
    panel = new Panel(place("panel"), tables.panel, (id, value) => program.send({ do: "panel", id, value }));
}

// ---- start ----

async function startProgram() {
    ended = false;
    program = new Program(hear, takeWorker());
    opening = shown;
    await program.start(place("display"));
}

// A reader cannot be interrupted: the program starts anew, with the model that was shown.
async function stopReading() {
    program.end();
    boxes.hear({ what: "progress-close", id: 0, value: 0, text: "" });
    await startProgram();
    if (!shown) return;
    opening = { ...shown, files: await filesNow(shown.files) };
    await program.send({ do: "open", ...opening });
}

// A model may be named in the page's address. It has to lie on the page's own server.
async function openAddressed() {
    const address = new URLSearchParams(location.search).get("model");
    if (!address) return;
    const response = await fetch(address).catch(() => null);
    if (!response?.ok) {
        boxes.message("Error: failed to open", address, true);
        return;
    }
    const name = decodeURIComponent(new URL(address, location.href).pathname.split("/").pop() || "model");
    await openFiles([{ path: name, file: await response.blob() }], new URL(address, location.href).href);
}

// What the first picture does not need: the service worker, and the pictures that the program puts on models.
async function keepPage() {
    await navigator.serviceWorker?.register("./service-worker.js").catch(() => {});
    await program.send({ do: "fetchAhead" });
}

function listen() {
    document.addEventListener("keydown", takeKey);
    document.addEventListener("visibilitychange", () =>
        program.send({ do: "show", visible: document.visibilityState === "visible" }),
    );
    document.addEventListener("dragover", (event) => event.preventDefault());
    document.addEventListener("drop", async (event) => {
        event.preventDefault();
        if (event.dataTransfer) await openFiles(await droppedFiles(event.dataTransfer));
    });
    document.addEventListener("paste", (event) => openFiles(givenFiles(event.clipboardData?.files ?? [])));
    listenToChooser("choose-files", window.showOpenFilePicker && pickFiles);
    listenToChooser("choose-folder", window.showDirectoryPicker && pickFolder);
}

// A chooser of files asks by the browser's picker where it has one, since that gives handles, and else by itself.
/** @param {string} id @param {(() => Promise<GivenFile[] | null>) | undefined} pick */
function listenToChooser(id, pick) {
    const input = /** @type {HTMLInputElement} */ (place(id));
    input.addEventListener("change", async () => {
        await openFiles(givenFiles(input.files ?? []));
        input.value = "";
    });
    input.addEventListener("click", async (event) => {
        if (!pick) return;
        event.preventDefault();
        const files = await pick();
        if (files) await openFiles(files);
        else {
            pick = undefined; // it is refused here
            input.click();
        }
    });
}

// For scripts on this page: the program that runs now, whether it has done everything that it was asked for, and its state.
Object.assign(window, {
    kestrelbox: {
        program: () => program,
        isIdle: () => begun && program.isIdle() && !copying && !renewing,
        state: () => program.state(),
    },
});

listen();
await startProgram();
new Display(place("display"), () => program);
await openAddressed();
await keepPage();
begun = true;
