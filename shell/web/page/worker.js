// worker.js - the program: messages of the page become calls of shell/web/program.cpp
//
// The page sends { do, ... }. What the program has to say goes back as { what, id, value, text }, in its order, and every
// message is answered by { what: "done" } when the program has drawn what it asked for.
import { forgetAddress, lookBeside, setAddress, wasFetched } from "./beside.js";
import createProgram from "./core.js";
import { readInPieces } from "./pieces.js";

/** @typedef {import("./messages").Request} Request */
/** @typedef {import("./messages").GivenFile} GivenFile */
/** @typedef {{ width: number, height: number }} Sizes */

export const outputFolder = "/out";

/** @type {import("./messages").Core} */
export let core;
/** @type {OffscreenCanvas} */
let canvas;
/** @type {OffscreenCanvasRenderingContext2D} */
let context;
let nextFrame = 0;
let resting = false; // a box is open on the page
let mounts = 0;

/** @param {object} message @param {Transferable[]} [transfer] */
function post(message, transfer = []) {
    self.postMessage(message, { transfer });
}

export const host = {
    /** @param {string} what @param {number} id @param {number} value @param {string} text */
    tell: (what, id, value, text) => post({ what, id, value, text }),

    /** @param {Uint8Array} pixels @param {number} x @param {number} y @param {number} width @param {number} height */
    show(pixels, x, y, width, height) {
        const memory = /** @type {ArrayBuffer} */ (pixels.buffer);
        const clamped = new Uint8ClampedArray(memory, pixels.byteOffset, pixels.length);
        context.putImageData(new ImageData(clamped, width, height), x, y);
    },

    /** @param {Uint8Array} pixels @param {number} width @param {number} height */
    copy: (pixels, width, height) => post({ what: "copy", pixels, width, height }, [pixels.buffer]),
};

// Fetches the pictures that the program puts on models, while it goes on. One that does not come is asked for again when
// the program needs it.
async function fetchAhead() {
    for (const name of ["wood.jpg", "metal.jpg", "pattern.jpg", "reflect.jpg"]) {
        const response = await fetch(new URL(name, import.meta.url)).catch(() => null);
        if (response?.ok) core.filesAhead[name] = new Uint8Array(await response.arrayBuffer());
    }
}

export function draw() {
    clearTimeout(nextFrame);
    const wait = core._drawIfDue();
    if (wait >= 0 && !resting) nextFrame = setTimeout(draw, wait);
}

// ---- files ----

/** @param {string} path */
const folderOf = (path) => path.slice(0, path.lastIndexOf("/"));

/** @param {GivenFile[]} files @param {string} source a folder */
function mount(files, source) {
    const { FS, WORKERFS } = core;
    const root = FS.mount(WORKERFS, { blobs: files.map(({ path, file }) => ({ name: path, data: file })) }, source);
    // emscripten makes the nodes before their mount is known, and would keep them when it is taken away.
    /** @param {any} node */
    const enter = (node) => {
        node.mount = root.mount;
        if (FS.isDir(node.mode)) Object.values(node.contents).forEach(enter);
    };
    enter(root);
}

// Puts files where the program finds them, without reading them: each is a link to the browser's file, so that what the
// program writes beside a model has a place, too. Returns their folder.
/** @param {GivenFile[]} files @param {string} [address] where the model lies, for files that are beside it */
export function give(files, address) {
    const { FS } = core;
    const source = `/in/${++mounts}`;
    const folder = `/files/${mounts}`;
    FS.mkdirTree(source);
    FS.mkdirTree(folder);
    mount(files, source);
    for (const { path } of files) {
        FS.mkdirTree(folderOf(`${folder}/${path}`));
        FS.symlink(`${source}/${path}`, `${folder}/${path}`);
    }
    if (address) setAddress(folder, address);
    return folder;
}

/** @param {string} folder @returns {string[]} */
const namesIn = (folder) =>
    core.FS.readdir(folder).filter((/** @type {string} */ name) => name !== "." && name !== "..");

// All paths below a folder that are neither folders nor links nor fetched.
/** @param {string} folder @returns {string[]} */
export function writtenBelow(folder) {
    const { FS } = core;
    return namesIn(folder).flatMap((name) => {
        const path = `${folder}/${name}`;
        const { mode } = FS.lstat(path);
        if (FS.isDir(mode)) return writtenBelow(path);
        return FS.isFile(mode) && !wasFetched(path) ? [path] : [];
    });
}

/** @param {string} folder */
export function removeBelow(folder) {
    const { FS } = core;
    for (const name of namesIn(folder)) {
        const path = `${folder}/${name}`;
        if (FS.isDir(FS.lstat(path).mode)) {
            removeBelow(path);
            FS.rmdir(path);
        } else FS.unlink(path);
    }
}

// Gives the files of the model that is shown again, as they are now; the links stay.
/** @param {GivenFile[]} files */
function renew(files) {
    const number = /^\/files\/(\d+)\//.exec(core.UTF8ToString(core._pathOfModel()))?.[1];
    if (!number) return;
    core.FS.unmount(`/in/${number}`);
    mount(files, `/in/${number}`);
}

// Takes away the files of earlier openings, but for those of the model that is shown, and tells the page when that is the
// one that was given last.
export function forgetOldFiles() {
    const { FS } = core;
    const shown = core.UTF8ToString(core._pathOfModel());
    if (shown.startsWith(`/files/${mounts}/`)) post({ what: "opened" });
    for (const name of namesIn("/files")) {
        const folder = `/files/${name}`;
        if (shown.startsWith(`${folder}/`)) continue;
        removeBelow(folder);
        FS.rmdir(folder);
        forgetAddress(folder);
        FS.unmount(`/in/${name}`);
        FS.rmdir(`/in/${name}`);
    }
}

// Sends the page what the program has written. A set of files goes together.
function deliver() {
    const { FS } = core;
    const besides = writtenBelow("/files");
    const paths = [...writtenBelow(outputFolder), ...besides];
    if (paths.length === 0) return;
    const files = paths.map((path) => ({ name: path.slice(path.lastIndexOf("/") + 1), bytes: FS.readFile(path) }));
    for (const path of besides) FS.unlink(path);
    post({ what: "saved", files }, [...new Set(files.map(({ bytes }) => bytes.buffer))]);
}

// ---- the page's messages ----

// Runs a command with the answer to its dialog: the path of an opened file, or that under which a file is saved.
/** @param {import("./messages").Answer | undefined} answer @param {(path: string) => void} run */
function runWith(answer, run) {
    if (answer && "name" in answer) {
        removeBelow(outputFolder);
        run(`${outputFolder}/${answer.name}`);
        deliver();
    } else if (answer) {
        run(`${give(answer.files)}/${answer.path}`);
        forgetOldFiles();
    } else run("");
}

/** @param {string} text @param {(pointer: number) => void} use */
export function withText(text, use) {
    const bytes = new TextEncoder().encode(text);
    const pointer = core._malloc(bytes.length + 1) >>> 0;
    core.HEAPU8.set(bytes, pointer);
    core.HEAPU8[pointer + bytes.length] = 0;
    use(pointer);
    core._free(pointer);
}

/** @param {number} width @param {number} height */
function sizeCanvas(width, height) {
    canvas.width = width;
    canvas.height = height;
}

/** What an action returns goes back with the answer. @type {{ [name: string]: (request: any) => any }} */
export const actions = {
    menu: ({ id, answer }) => runWith(answer, (path) => withText(path, (text) => core._runMenu(id, text))),
    key: ({ key, modifiers, repeated, answer }) =>
        runWith(answer, (path) => withText(path, (text) => core._pressKey(key, modifiers, repeated ? 1 : 0, text))),
    panel({ id, value }) {
        core._runPanel(id, value);
        deliver();
    },
    open({ files, path, address }) {
        withText(`${give(files, address)}/${path}`, core._openPath);
        forgetOldFiles();
    },
    renew: ({ files }) => renew(files),
    leftButton: ({ code, x, y }) => core._leftButton(code, x, y),
    rightButton: ({ code, y }) => core._rightButton(code, y),
    move: ({ left, right, x, y }) => core._movePointer(left ? 1 : 0, right ? 1 : 0, x, y),
    endDrags: () => core._letGo(),
    wheel: ({ notches }) => core._turnWheel(notches),
    resize({ width, height }) {
        sizeCanvas(width, height);
        core._resizeDisplay(width, height);
    },
    rest({ on }) {
        resting = on;
    },
    state: () => core._describeState(),
    show: ({ visible }) => core._showPage(visible ? 1 : 0),
    refreshRate: ({ rate }) => core._setRefreshRate(rate),
};

/** How the program begins. @type {{ begin(request: Sizes): void }} */
export const starting = {
    begin({ width, height }) {
        core._describeControls();
        core._beginProgram(width, height);
    },
};

// How emscripten's part gets the module that the page has compiled.
/** @param {WebAssembly.Module} module */
function instantiate(module) {
    /** @param {WebAssembly.Imports} imports @param {(instance: WebAssembly.Instance) => void} receive */
    return (imports, receive) => {
        WebAssembly.instantiate(module, imports).then(receive);
        return {};
    };
}

/** @param {Sizes & { canvas: OffscreenCanvas, core: WebAssembly.Module | null }} request */
async function start(request) {
    canvas = request.canvas;
    context = /** @type {OffscreenCanvasRenderingContext2D} */ (canvas.getContext("2d", { alpha: false }));
    sizeCanvas(request.width, request.height);
    core = await createProgram({
        host,
        filesAhead: {},
        ...(request.core && { instantiateWasm: instantiate(request.core) }),
    });
    for (const folder of ["/in", "/files", outputFolder]) core.FS.mkdir(folder);
    core.FS.chdir(outputFolder);
    lookBeside(core.FS);
    readInPieces(core);
    starting.begin(request);
}

/** @param {Request} request */
async function handle(request) {
    if (request.do === "start") await start(request);
    const result = ["start", "fetchAhead"].includes(request.do) ? undefined : await actions[request.do](request);
    draw();
    const done = () => post({ what: "done", id: request.number, result });
    if (request.do === "fetchAhead") fetchAhead().then(done);
    else done();
}

let handled = Promise.resolve();

/** @param {MessageEvent<Request>} event */
self.onmessage = ({ data }) => {
    handled = handled.then(() => handle(data));
};

// A fault ends the program, and the page says so.
self.onunhandledrejection = (event) => {
    event.preventDefault();
    post({ what: "fault", id: 0, value: 0, text: String(event.reason) });
};
