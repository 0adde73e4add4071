// bridge.js PAGE-FOLDER NODE-MODULES - the page in Chromium, operated as by a hand
//
// Each line of standard input is a request, { "do": NAME, ... }. Its answer is a line of standard output: what the function
// of that name returns, or { "error": TEXT }.
import fs from "node:fs";
import http from "node:http";
import os from "node:os";
import path from "node:path";
import readline from "node:readline";
import { handleFunctions, withoutPickers } from "./handles.js";
import { viewFunctions } from "./views.js";
import { gzipSync } from "node:zlib";

const [, , pageFolder, modules] = process.argv;
const { default: puppeteer } = await import(path.join(modules, "puppeteer-core/lib/esm/puppeteer/puppeteer-core.js"));
const { unzipSync } = await import(path.join(modules, "fflate/esm/index.mjs"));

const waitLimitMs = 20000;
const types = { ".html": "text/html", ".js": "text/javascript", ".css": "text/css", ".wasm": "application/wasm" };
const requests = []; // the addresses that the page has asked for
let memoryLimit = 0; // bytes that the program may have of the browser; 0: any number
let moduleType = types[".wasm"]; // what the server says that the program's module is

// Goes before the worker's own lines when there is a limit.
const limitMemory = (bytes) => `
const grow = WebAssembly.Memory.prototype.grow;
WebAssembly.Memory.prototype.grow = function (pages) {
    if (this.buffer.byteLength + pages * 65536 > ${bytes}) throw new RangeError("the test's limit");
    return grow.call(this, pages);
};
`;

const server = http.createServer((request, response) => {
    const name = new URL(request.url, "http://page").pathname.replace(/\/$/, "/index.html");
    const isExample = name.startsWith("/examples/");
    const file = path.join(isExample ? path.join(import.meta.url.slice(7), "../../..") : pageFolder, name);
    requests.push(name);
    if (!fs.existsSync(file)) {
        response.writeHead(404).end();
        return;
    }
    const type = name.endsWith(".wasm") ? moduleType : types[path.extname(file)];
    response.writeHead(200, { "content-type": type ?? "application/octet-stream" });
    if (memoryLimit && name === "/worker.js") response.write(limitMemory(memoryLimit));
    fs.createReadStream(file).pipe(response);
});
await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
const address = `http://127.0.0.1:${server.address().port}/`;

const downloads = fs.mkdtempSync(path.join(os.tmpdir(), "page-downloads-"));
const chromiumArguments = ["--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage"];
const launchOptions = { executablePath: "/usr/bin/chromium", args: chromiumArguments, protocolTimeout: 60000 };
const browser = await puppeteer.launch({ ...launchOptions, userDataDir: path.join(downloads, "profile") });
const page = await browser.newPage();
const faults = [];
page.on("pageerror", (error) => faults.push(error.message));
const devtools = await page.createCDPSession();
await devtools.send("Emulation.setFocusEmulationEnabled", { enabled: true });
await devtools.send("Browser.setDownloadBehavior", {
    behavior: "allow",
    downloadPath: downloads,
    eventsEnabled: true,
});
const loads = { begun: 0, completed: 0 };
devtools.on("Browser.downloadWillBegin", () => ++loads.begun);
devtools.on("Browser.downloadProgress", ({ state }) => (loads.completed += state === "completed" ? 1 : 0));
await browser.defaultBrowserContext().overridePermissions(address, ["clipboard-read", "clipboard-sanitized-write"]);

let viewport = { width: 830, height: 700 };
let answers = [];
const menuEntry = (id) => `#menus [data-id="${id}"]`;
const panelControl = (id) => `#panel [data-id="${id}"]`;

// Waits until the program has done everything that it was asked to, and has drawn.
async function settle() {
    const settled = await page.evaluate(async (limitMs) => {
        const end = Date.now() + limitMs;
        while (!window.kestrelbox?.isIdle()) {
            if (Date.now() > end) return false;
            await new Promise((resolve) => setTimeout(resolve, 1));
        }
        await window.kestrelbox.state();
        return true;
    }, waitLimitMs);
    if (!settled) throw new Error("the page does not come to rest");
}

async function whenReady() {
    await page.waitForSelector("#panel output:not(:empty)", { timeout: waitLimitMs });
    await settle();
}

async function start() {
    await page.evaluateOnNewDocument(withoutPickers); // whose dialogs no test can answer
    await page.setViewport(viewport);
    await page.goto(address);
    await whenReady();
    const width = await page.$eval("#display", (display) => display.clientWidth);
    await enlarge({ width: 620 - width, height: 0 });
}

async function enlarge({ width, height }) {
    viewport = { width: viewport.width + width, height: viewport.height + height };
    await page.setViewport(viewport);
    await page.evaluate(() => new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(resolve))));
    await settle();
}

const chosenBefore = new Set();

// A click with the mouse, which lets the page open the browser's dialogs. What was clicked once is clicked by a script
// later, in a tenth of the time; the browser takes that for the user's, too.
async function choose(id) {
    if (chosenBefore.has(id)) {
        await page.evaluate((selector) => document.querySelector(selector).click(), `[data-id="${id}"]`);
        return;
    }
    chosenBefore.add(id);
    const entry = await page.$(menuEntry(id));
    if (entry) {
        const title = await entry.evaluateHandle((button) => button.closest(".menu").querySelector("button"));
        await title.click();
        await entry.click();
    } else await page.click(panelControl(id));
}

// What a folder holds that may belong to a model, the chosen file first.
function filesBeside(chosen) {
    const folder = path.dirname(chosen);
    const others = fs.readdirSync(folder, { withFileTypes: true }).filter((entry) => entry.isFile());
    const names = others.map(({ name }) => path.join(folder, name)).filter((name) => name !== chosen);
    return [chosen, ...names.filter((name) => /\.(obj|off|ply|3ds|mtl|jpg)$/i.test(name))];
}

// A download that goes on has an ending of its own, also before the browser has told of it.
const downloadedNames = () =>
    fs.readdirSync(downloads).filter((found) => found !== "profile" && !found.endsWith(".crdownload"));

// Moves what was downloaded to a folder, sets unpacked, as soon as there is a file whose name begins so.
async function takeDownloads(folder, stem) {
    const isThere = () => loads.completed === loads.begun && downloadedNames().some((name) => name.startsWith(stem));
    for (let waited = 0; !isThere(); waited += 10) {
        if (waited > waitLimitMs) throw new Error(`${stem} was not downloaded`);
        await new Promise((resolve) => setTimeout(resolve, 10));
    }
    for (const name of downloadedNames()) {
        const file = path.join(downloads, name);
        const bytes = fs.readFileSync(file);
        const files = name.endsWith(".zip") ? unzipSync(bytes) : { [name]: bytes };
        for (const [inner, contents] of Object.entries(files)) fs.writeFileSync(path.join(folder, inner), contents);
        fs.unlinkSync(file);
    }
}

const savers = new Set([108, 109, 111, 113]);

// Chooses an entry whose dialog is answered with a path.
async function answer(id, chosen) {
    if (savers.has(id)) {
        await choose(id);
        const field = await page.waitForSelector("dialog input", { timeout: waitLimitMs });
        await field.evaluate((input) => (input.value = ""));
        await field.type(path.basename(chosen));
        await page.keyboard.press("Enter");
        await takeDownloads(path.dirname(chosen), path.parse(chosen).name);
        return;
    }
    const [chooser] = await Promise.all([page.waitForFileChooser({ timeout: waitLimitMs }), choose(id)]);
    await chooser.accept(filesBeside(chosen));
}

async function command({ id }) {
    const chosen = answers.shift();
    if (chosen) await answer(id, chosen);
    else await choose(id);
    await settle();
}

const text = (selector) => page.$eval(selector, (found) => found.textContent);

async function readPixels(selector) {
    return page.$eval(selector, (canvas) => {
        const copy = document.createElement("canvas");
        copy.width = canvas.width;
        copy.height = canvas.height;
        const context = copy.getContext("2d", { willReadFrequently: true });
        context.drawImage(canvas, 0, 0);
        const { data, width, height } = context.getImageData(0, 0, copy.width, copy.height);
        let bytes = "";
        for (let i = 0; i < data.length; i += 4) bytes += String.fromCharCode(data[i + 2], data[i + 1], data[i]);
        return { width, height, bytes: btoa(bytes) };
    });
}

async function at(x, y) {
    const box = await page.$eval("#display", (display) => {
        const { left, top } = display.getBoundingClientRect();
        return { left, top };
    });
    return [box.left + x, box.top + y];
}

const buttons = ["left", "right"];
const keyNames = {
    0x100: "Escape",
    0x101: "Home",
    0x102: "PageUp",
    0x103: "PageDown",
    0x104: "ArrowLeft",
    0x105: "ArrowRight",
    0x106: "ArrowUp",
    0x107: "ArrowDown",
    0x108: "F5",
};

const functions = {
    settle,
    command,
    async answers({ paths }) {
        answers = paths;
    },
    async panel({ id }) {
        await page.click(panelControl(id));
        await settle();
    },
    async list({ index }) {
        const value = await page.$eval("#panel select", (list, chosen) => list.options[chosen].value, index);
        await page.select("#panel select", value);
        await settle();
    },
    menuText: ({ id }) => page.$eval(menuEntry(id), (entry) => entry.dataset.text),
    menuEnabled: ({ id }) => page.$eval(menuEntry(id), (entry) => entry.getAttribute("aria-disabled") !== "true"),
    menuTicked: ({ id }) => page.$eval(menuEntry(id), (entry) => entry.getAttribute("aria-checked") === "true"),
    panelTicked: ({ id }) => page.$eval(panelControl(id), (box) => box.checked),
    panelText: ({ id }) => text(panelControl(id)),
    listEntries: () => page.$$eval("#panel option", (options) => options.map((option) => option.textContent)),
    menuLines: () =>
        page.$$eval("#menus .menu", (menus) =>
            menus.flatMap((menu) => [
                menu.querySelector("button").dataset.text,
                ...[...menu.querySelector("[role=menu]").children].map((entry) =>
                    entry.dataset.id ? `${entry.dataset.id} ${entry.dataset.text}` : "-",
                ),
            ]),
        ),
    panelLines: () =>
        page.$$eval("#panel fieldset", (groups) =>
            groups.flatMap((group) => [
                group.querySelector("legend").textContent,
                ...(group.querySelector("select") ? ["list"] : []),
                ...[...group.querySelectorAll("[data-id]")].map(
                    (control) =>
                        `${control.dataset.id} ${(control.closest("label")?.firstChild.nodeType === 3 ? control.closest("label").firstChild : (control.closest("label") ?? control)).textContent}`,
                ),
            ]),
        ),
    title: () => page.title(),
    objects: () => page.$$eval("*", (all) => all.length),
    state: () => page.evaluate(() => window.kestrelbox.state()),
    async notice({ id }) {
        await choose(id);
        await page.waitForSelector(".notice", { timeout: waitLimitMs });
        const shownText = await text(".notice");
        const begin = Date.now();
        await page.waitForSelector(".notice", { hidden: true, timeout: waitLimitMs });
        const shownMs = Date.now() - begin;
        await settle();
        return { text: shownText, shownMs };
    },
    async openBox({ id }) {
        const chosen = answers.shift();
        if (chosen) await answer(id, chosen);
        else await choose(id);
        await page.waitForSelector("dialog[open] .buttons", { timeout: waitLimitMs });
        const [shownText, caption] = [await text("dialog[open] p"), await text("dialog[open] h2")];
        return { text: shownText, caption };
    },
    async closeBox({ folder, saves }) {
        await page.click("dialog[open] .buttons button");
        await page.waitForSelector("dialog[open]", { hidden: true, timeout: waitLimitMs });
        await settle();
        if (saves) await takeDownloads(folder, "");
    },
    async press({ button, x, y }) {
        await page.mouse.move(...(await at(x, y)));
        await page.mouse.down({ button: buttons[button] });
        await settle();
    },
    async move({ x, y }) {
        await page.mouse.move(...(await at(x, y)));
        await settle();
    },
    async release({ button, x, y }) {
        await page.mouse.move(...(await at(x, y)));
        await page.mouse.up({ button: buttons[button] });
        await settle();
    },
    async wheel({ notches }) {
        await page.mouse.move(...(await at(100, 100)));
        await page.mouse.wheel({ deltaY: -100 * notches });
        await page.evaluate(() => new Promise((resolve) => requestAnimationFrame(() => setTimeout(resolve, 20))));
        await settle();
    },
    async key({ key, modifiers }) {
        const held = [...(modifiers & 1 ? ["Control"] : []), ...(modifiers & 2 ? ["Shift"] : [])];
        for (const name of held) await page.keyboard.down(name);
        await page.keyboard.press(keyNames[key] ?? String.fromCharCode(key).toLowerCase());
        for (const name of held.reverse()) await page.keyboard.up(name);
        await settle();
    },
    async drop({ paths, waits = true }) {
        const input = await page.evaluateHandle(() => {
            const field = document.createElement("input");
            field.type = "file";
            field.multiple = true;
            return field;
        });
        await input.uploadFile(...paths);
        await input.evaluate((field) => {
            const transfer = new DataTransfer();
            for (const file of field.files) transfer.items.add(file);
            document.dispatchEvent(new DragEvent("drop", { dataTransfer: transfer, cancelable: true }));
        });
        await page.evaluate(() => new Promise((resolve) => setTimeout(resolve, 50)));
        if (waits) await settle();
    },
    enlarge,
    shown: () => readPixels("#display canvas"),
    async clipboard() {
        await settle();
        await page.bringToFront();
        await page.evaluate(async (limitMs) => {
            let [item] = await navigator.clipboard.read();
            for (let waited = 0; waited < limitMs && !item?.types.includes("image/png"); waited += 50) {
                await new Promise((resolve) => setTimeout(resolve, 50));
                [item] = await navigator.clipboard.read();
            }
            const picture = await createImageBitmap(await item.getType("image/png"));
            const canvas = document.createElement("canvas");
            canvas.id = "pasted";
            canvas.width = picture.width;
            canvas.height = picture.height;
            canvas.getContext("2d").drawImage(picture, 0, 0);
            document.body.append(canvas);
        }, waitLimitMs);
        const picture = await readPixels("#pasted");
        await page.$eval("#pasted", (canvas) => canvas.remove());
        return picture;
    },
    async screenshot({ name }) {
        await page.screenshot({ path: name });
    },
    requests: () => requests,
    downloadCount: () => loads.begun,
    takeDownloads: ({ folder }) => takeDownloads(folder, ""),

    // What was asked for until the first picture was there; the page asks for its service worker next. Bytes as gzip -9.
    firstLoad() {
        const names = [...new Set(requests.slice(0, requests.indexOf("/service-worker.js")))];
        const compressed = (name) => gzipSync(fs.readFileSync(path.join(pageFolder, name)), { level: 9 }).length;
        const files = names.filter((name) => fs.existsSync(path.join(pageFolder, name)));
        return { names, bytes: files.map(compressed).reduce((sum, bytes) => sum + bytes, 0) };
    },

    // The service worker has kept the page's files.
    whenKept: () => page.evaluate(() => navigator.serviceWorker.ready.then(() => undefined)),
    cutNetwork: ({ cut }) => page.setOfflineMode(cut),
    async reload() {
        await page.reload();
        await whenReady();
    },
    async visit({ search }) {
        await page.goto(address + search);
        await whenReady();
    },
    whenReady,
    policy: () => page.$eval("meta[http-equiv]", (meta) => meta.content),
    async readBox() {
        await page.waitForSelector("dialog[open] .buttons", { timeout: waitLimitMs });
        return { text: await text("dialog[open] p"), caption: await text("dialog[open] h2") };
    },
    // The program runs into a trap of WebAssembly.
    async breakProgram() {
        await page.workers()[0].evaluate(async (scripts) => {
            const { actions, core } = await import(`${scripts}worker.js`);
            actions.beep = () => core._openPath(-16); // a path at the end of all addresses
        }, address);
        await page.evaluate(() => window.kestrelbox.program().worker.postMessage({ do: "beep", number: 0 }));
    },

    async pinch({ from, to }) {
        const touch = (type, points) => devtools.send("Input.dispatchTouchEvent", { type, touchPoints: points });
        const [x, y] = await at(300, 250);
        const two = (distance) => [
            { x: x - distance / 2, y, id: 1 },
            { x: x + distance / 2, y, id: 2 },
        ];
        await touch("touchStart", [two(from)[0]]);
        await touch("touchStart", two(from));
        for (let i = 1; i <= 10; ++i) await touch("touchMove", two(from + ((to - from) * i) / 10));
        await touch("touchEnd", []);
        await settle();
    },
    async touchDrag({ fromX, toX, y }) {
        const touch = (type, points) => devtools.send("Input.dispatchTouchEvent", { type, touchPoints: points });
        for (let i = 0; i <= 10; ++i) {
            const [pageX, pageY] = await at(fromX + ((toX - fromX) * i) / 10, y);
            await touch(i === 0 ? "touchStart" : "touchMove", [{ x: pageX, y: pageY, id: 1 }]);
            await settle();
        }
        await new Promise((resolve) => setTimeout(resolve, 150));
        await touch("touchEnd", []);
        await settle();
    },
    async keys({ names }) {
        for (const name of names) {
            if (name.startsWith("focus:")) await page.focus(name.slice(6));
            else await page.keyboard.press(name);
        }
        await settle();
    },
    openMenus: () => page.$$eval("#menus [aria-expanded=true]", (open) => open.length),
    nameless: () =>
        page.$$eval("button, input, select, [tabindex], dialog, canvas", (controls) =>
            controls
                .filter((control) => !control.closest("dialog:not([open])") && control.tagName !== "CANVAS")
                .filter(
                    (control) =>
                        !(
                            control.getAttribute("aria-label") ||
                            control.textContent ||
                            control.labels?.[0]?.textContent
                        ),
                )
                .map((control) => control.outerHTML),
        ),
    async tabThrough() {
        const reached = [];
        await page.evaluate(() => document.activeElement?.blur());
        for (let i = 0; i < 60; ++i) {
            await page.keyboard.press("Tab");
            reached.push(
                await page.evaluate(() => document.activeElement?.dataset.id || document.activeElement?.id || ""),
            );
        }
        return reached;
    },
    async viewport({ width, height }) {
        await page.setViewport({ width: width ?? viewport.width, height: height ?? viewport.height });
        await page.evaluate(() => new Promise((resolve) => setTimeout(resolve, 200)));
        await settle();
    },

    // The page on a screen of its own, with so many pixels to a unit.
    async fineScreen({ scale }) {
        const fine = await puppeteer.launch({
            ...launchOptions,
            args: [...chromiumArguments, `--force-device-scale-factor=${scale}`],
            defaultViewport: null,
        });
        const finePage = await fine.newPage();
        await finePage.goto(address);
        await finePage.waitForSelector("#panel output:not(:empty)", { timeout: waitLimitMs });
        await finePage.waitForFunction(() => window.kestrelbox.isIdle(), { timeout: waitLimitMs });
        const state = await finePage.evaluate(() => window.kestrelbox.state());
        const size = await finePage.$eval("#display", ({ clientWidth, clientHeight }) => ({
            clientWidth,
            clientHeight,
        }));
        await fine.close();
        return { ...state, ...size };
    },
    scrollWidth: () => page.evaluate(() => document.documentElement.scrollWidth),
    async background({ theme }) {
        await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: theme }]);
        return page.evaluate(() => getComputedStyle(document.body).backgroundColor);
    },
    // The contrast between the mark of a failure and its box, from 1 to 21 (WCAG 2).
    async contrastOfFailure({ theme }) {
        await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: theme }]);
        return page.evaluate(() => {
            const brightness = (colour) => {
                const [red, green, blue] = colour.match(/[\d.]+/g).map((part) => {
                    const share = Number(part) / 255;
                    return share <= 0.04045 ? share / 12.92 : ((share + 0.055) / 1.055) ** 2.4;
                });
                return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
            };
            const box = document.querySelector("dialog[open]:not(#progress)");
            const mark = brightness(getComputedStyle(box.querySelector(".stop"), "::before").color);
            const back = brightness(getComputedStyle(box).backgroundColor);
            return (Math.max(mark, back) + 0.05) / (Math.min(mark, back) + 0.05);
        });
    },
    async folder({ path: folder }) {
        const input = await page.$("#choose-folder");
        await input.uploadFile(folder);
        await new Promise((resolve) => setTimeout(resolve, 100));
        await settle();
    },
    faults: () => faults,

    // Closes the boxes that are open, one after another. Returns the text and the caption of each.
    closeBoxes: () =>
        page.evaluate(async () => {
            const boxes = [];
            for (;;) {
                await new Promise((resolve) => setTimeout(resolve, boxes.length && 40)); // the next opens after the last
                const box = document.querySelector("dialog[open]:not(#progress)");
                if (!box) return boxes;
                boxes.push([box.querySelector("p").textContent, box.querySelector("h2")?.textContent ?? ""]);
                box.querySelector("button").click();
            }
        }),

    // Drops a file on the page, which reads it. Returns the boxes that it shows, and closes them.
    async boxesOf({ name, bytes }) {
        await page.evaluate(
            async (fileName, base64) => {
                const contents = Uint8Array.from(atob(base64), (letter) => letter.charCodeAt(0));
                const transfer = new DataTransfer();
                transfer.items.add(new File([contents], fileName));
                document.dispatchEvent(new DragEvent("drop", { dataTransfer: transfer, cancelable: true }));
                await new Promise((resolve) => setTimeout(resolve));
            },
            name,
            bytes,
        );
        await settle();
        return functions.closeBoxes();
    },

    // Starts the page on a screen that shows no frames and where no time passes that is worth mentioning.
    async startWithoutFrames() {
        const { identifier } = await page.evaluateOnNewDocument(() => {
            const { setTimeout: later } = window;
            window.requestAnimationFrame = () => 0;
            window.setTimeout = (call, ms = 0, ...rest) => (ms < 100 ? later(call, ms, ...rest) : 0);
        });
        await page.goto(address);
        await whenReady();
        await page.removeScriptToEvaluateOnNewDocument(identifier);
    },

    // Starts the page from a server that says something else of the program's module.
    async serveModuleAs({ type }) {
        moduleType = type ?? types[".wasm"];
        await page.setBypassServiceWorker(type !== null);
        await page.goto(address);
        await whenReady();
    },

    // The bytes that the scripts of the page and of its worker have.
    async scriptMemory() {
        const sessions = [devtools, ...page.workers().map(({ client }) => client)];
        const uses = await Promise.all(sessions.map((session) => session.send("Runtime.getHeapUsage")));
        return uses.map(({ usedSize }) => usedSize).reduce((sum, bytes) => sum + bytes, 0);
    },

    // Starts the page again with so much memory; the worker that the browser has kept does not come then.
    async limitMemory({ bytes }) {
        memoryLimit = bytes;
        await page.setBypassServiceWorker(bytes !== 0);
        await page.goto(address);
        await whenReady();
    },

    // Drops a large file, and stops its reading when the bar has moved. Returns how far it was.
    async stopReading({ path: file }) {
        await functions.drop({ paths: [file], waits: false });
        const bar = await page.waitForFunction(
            () => {
                const shown = document.querySelector("#progress[open] progress");
                return shown?.value > 0 ? shown.value / shown.max : 0;
            },
            { timeout: waitLimitMs, polling: 5 },
        );
        await page.click("#progress button");
        await whenReady();
        return bar.jsonValue();
    },
};
Object.assign(
    functions,
    handleFunctions({ page, address, whenReady, settle }),
    viewFunctions(() => puppeteer.launch(launchOptions), path.join(pageFolder, "../view")),
);

await start();
process.stdout.write("{}\n");
for await (const line of readline.createInterface({ input: process.stdin })) {
    const request = JSON.parse(line);
    const answered = await Promise.resolve(functions[request.do](request)).then(
        (result) => result ?? {},
        (error) => ({ error: String(error) }),
    );
    process.stdout.write(`${JSON.stringify(answered)}\n`);
}
await functions.viewEnd();
await browser.close();
server.close();
fs.rmSync(downloads, { recursive: true, force: true });
