// views.js - views in a page of somebody else, on a server of its own with a strict security policy
//
// A function about one view takes its id. What a view answers or rejects with comes back as { value } or { refused }.
import fs from "node:fs";
import http from "node:http";
import path from "node:path";

const waitLimitMs = 20000;
const policy =
    "default-src 'none'; script-src 'self' 'wasm-unsafe-eval'; worker-src 'self'; style-src 'self'; connect-src 'self'";
const types = { ".html": "text/html", ".js": "text/javascript", ".css": "text/css", ".wasm": "application/wasm" };

let modelFolder = "/";
const requests = [];

// The package at /view/, models at /models/, and the page.
function fileOf(name, viewFolder) {
    if (name.startsWith("/view/")) return path.join(viewFolder, name.slice(6));
    if (name.startsWith("/models/")) return path.join(modelFolder, name.slice(8));
    return path.join(import.meta.dirname ?? path.dirname(new URL(import.meta.url).pathname), name);
}

function serve(viewFolder) {
    const server = http.createServer((request, response) => {
        const name = decodeURIComponent(new URL(request.url, "http://host").pathname);
        const file = fileOf(name, viewFolder);
        requests.push(name);
        if (!fs.existsSync(file) || fs.statSync(file).isDirectory()) {
            response.writeHead(404).end();
            return;
        }
        const type = types[path.extname(file)] ?? "application/octet-stream";
        response.writeHead(200, { "content-type": type, "content-security-policy": policy });
        fs.createReadStream(file).pipe(response);
    });
    server.unref();
    return new Promise((resolve) => server.listen(0, "127.0.0.1", () => resolve(server.address().port)));
}

/** launch: starts a browser of its own, lest the page with views take the front from another one */
export function viewFunctions(launch, viewFolder) {
    let port, browser, page;
    const complaints = []; // of the browser, such as about the policy

    async function begin() {
        if (browser) return;
        port = await serve(viewFolder);
        browser = await launch();
        page = await browser.newPage();
        page.on("console", (message) => complaints.push(message.text()));
        page.on("pageerror", (error) => complaints.push(error.message));
        const devtools = await page.createCDPSession();
        await devtools.send("Emulation.setFocusEmulationEnabled", { enabled: true });
    }

    // Calls a method of a view. Bytes come back as texts of base 64.
    const call = (id, method, ...parameters) =>
        page.evaluate(
            async (name, called, given) => {
                const encode = async (blob) => {
                    const bytes = new Uint8Array(await blob.arrayBuffer());
                    let text = "";
                    for (let i = 0; i < bytes.length; i += 8192)
                        text += String.fromCharCode(...bytes.subarray(i, i + 8192));
                    return { name: blob.name ?? "", type: blob.type, bytes: btoa(text) };
                };
                const view = document.getElementById(name);
                try {
                    const value = await view[called](...given);
                    if (value instanceof Blob) return { value: await encode(value) };
                    if (Array.isArray(value)) return { value: await Promise.all(value.map(encode)) };
                    return { value: value ?? null };
                } catch (error) {
                    return { refused: error.message };
                }
            },
            id,
            method,
            parameters,
        );

    const write = (file, { bytes }) => fs.writeFileSync(file, Buffer.from(bytes, "base64"));
    const eventsOf = (id) => page.evaluate((name) => document.getElementById(name).said, id);

    // Waits until the view has had so many loads and errors since it was added.
    const whenSaid = async (id, count) => {
        await page.waitForFunction(
            (name, least) =>
                document.getElementById(name).said.filter(({ type }) => type !== "progress").length >= least,
            { timeout: waitLimitMs, polling: 5 },
            id,
            count,
        );
        return eventsOf(id);
    };

    return {
        async viewHost({ models }) {
            await begin();
            modelFolder = models;
            await page.setViewport({ width: 700, height: 400 });
            await page.goto(`http://127.0.0.1:${port}/host.html`);
        },
        async viewAdd({ id, attributes, size }) {
            await page.evaluate(
                (name, given, box) => {
                    const view = document.createElement("kestrelbox-view");
                    view.id = name;
                    view.said = [];
                    for (const type of ["load", "error", "progress"])
                        view.addEventListener(type, ({ message, loaded, total }) =>
                            view.said.push({ type, message, loaded, total }),
                        );
                    for (const [attribute, value] of Object.entries(given)) view.setAttribute(attribute, value);
                    if (box) [view.style.width, view.style.height] = box;
                    document.body.append(view);
                },
                id,
                attributes,
                size ?? null,
            );
            return whenSaid(id, 1);
        },
        viewSay: ({ id, count }) => whenSaid(id, count),
        viewSet: ({ id, attributes }) =>
            page.evaluate(
                (name, given) => {
                    const view = document.getElementById(name);
                    for (const [attribute, value] of Object.entries(given))
                        if (value === null) view.removeAttribute(attribute);
                        else view.setAttribute(attribute, value);
                },
                id,
                attributes,
            ),
        viewRemove: ({ id }) => page.evaluate((name) => document.getElementById(name).remove(), id),
        async viewMove({ id }) {
            await page.evaluate((name) => document.body.prepend(document.getElementById(name)), id);
        },
        async viewWorkers() {
            await new Promise((resolve) => setTimeout(resolve, 100));
            return page.workers().length;
        },
        viewInfo: ({ id }) => call(id, "info"),
        viewTool: ({ id, name }) => call(id, "tool", name),
        async viewPicture({ id, path: file }) {
            const { value, refused } = await call(id, "picture");
            if (value) write(file, value);
            return { refused: refused ?? null, type: value?.type ?? null };
        },
        async viewSave({ id, kind, folder }) {
            const { value, refused } = await call(id, "save", kind);
            for (const file of value ?? []) write(path.join(folder, file.name), file);
            return { refused: refused ?? null, names: (value ?? []).map(({ name }) => name) };
        },

        // Takes files in, which viewOpen then chooses from.
        async viewFiles({ paths }) {
            const input = await page.evaluateHandle(() => {
                const field = document.createElement("input");
                field.type = "file";
                field.multiple = true;
                window.taken = field;
                return field;
            });
            await input.uploadFile(...paths);
        },
        viewOpen: ({ id, names }) =>
            page.evaluate(
                (name, chosen) => {
                    const files = [...window.taken.files];
                    const given = chosen.map((wanted) => files.find((file) => file.name === wanted));
                    return document
                        .getElementById(name)
                        .open(given)
                        .then(
                            () => ({ refused: null }),
                            ({ message }) => ({ refused: message }),
                        );
                },
                id,
                names,
            ),
        async viewKeys({ id, names }) {
            await page.evaluate((name) => document.getElementById(name).focus(), id);
            for (const name of names) await page.keyboard.press(name);
        },
        async viewDrag({ id, dx, wheel }) {
            const view = await page.$(`#${id}`);
            const box = await view.boundingBox();
            const [x, y] = [box.x + box.width / 2, box.y + box.height / 2];
            await page.mouse.move(x, y);
            if (wheel) await page.mouse.wheel({ deltaY: -100 * wheel });
            if (!dx) return;
            await page.mouse.down();
            await page.mouse.move(x + dx, y);
            await new Promise((resolve) => setTimeout(resolve, 150)); // a pointer that rests flings nothing
            await page.mouse.up();
        },
        // The program of the view that was added last meets a fault.
        viewBreak: () =>
            page
                .workers()
                .at(-1)
                .evaluate(() => {
                    self.onmessage({ data: { do: "nothing", number: 0 } });
                }),
        // The program of the view that was added last runs into a trap of WebAssembly at the next tool.
        viewTrap: () =>
            page
                .workers()
                .at(-1)
                .evaluate(async (scripts) => {
                    const { actions, core } = await import(`${scripts}worker.js`);
                    actions.tool = () => core._runToolInView(-16); // a name at the end of all addresses
                }, `http://127.0.0.1:${port}/view/`),
        async viewClickAgain({ id }) {
            const view = await page.$(`#${id}`);
            const button = await view.evaluateHandle((element) => element.shadowRoot.querySelector("button"));
            const shown = await button.evaluate((element) => element.checkVisibility() && element.textContent);
            await button.click();
            return shown;
        },

        // Opens a file of these bytes. Returns the message of a refusal, that of the last error event, and the facts.
        viewOpenBytes: ({ id, name, bytes }) =>
            page.evaluate(
                async (viewId, file, text) => {
                    const view = document.getElementById(viewId);
                    const contents = Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0));
                    view.said.length = 0;
                    const refused = await view.open([new File([contents], file)]).then(
                        () => null,
                        ({ message }) => message,
                    );
                    const errors = view.said.filter(({ type }) => type === "error");
                    return { refused, said: errors.at(-1)?.message ?? null, info: view.info() };
                },
                id,
                name,
                bytes,
            ),

        // Opens the taken files one after another, in so many rounds. Returns what the program has then: bytes from the
        // browser, files and folders, and bytes of its worker's scripts.
        async viewOpenInARow({ id, names, rounds }) {
            await page.evaluate(
                async (viewId, chosen, count) => {
                    const files = [...window.taken.files];
                    const others = files.filter((file) => /mtl$|jpg$/.test(file.name));
                    const view = document.getElementById(viewId);
                    for (let i = 0; i < count * chosen.length; ++i) {
                        const wanted = files.find((file) => file.name === chosen[i % chosen.length]);
                        await view.open([wanted, ...others]).catch(() => {});
                    }
                },
                id,
                names,
                rounds,
            );
            const worker = page.workers().at(-1);
            const [memory, nodes] = await worker.evaluate(async (scripts) => {
                const { core } = await import(`${scripts}worker.js`);
                let count = 0;
                for (let node of core.FS.nameTable) for (; node; node = node.name_next) ++count;
                return [core.HEAPU8.length, count];
            }, `http://127.0.0.1:${port}/view/`);
            await worker.client.send("HeapProfiler.collectGarbage");
            const { usedSize } = await worker.client.send("Runtime.getHeapUsage");
            return { memory, nodes, scripts: usedSize };
        },
        async viewName({ id }) {
            const view = await page.$(`#${id}`);
            const inner = await view.evaluateHandle((element) => element.shadowRoot.querySelector("div"));
            const { role, name } = await page.accessibility.snapshot({ root: inner.asElement() });
            return { role, name };
        },
        async viewScreenshot({ name }) {
            await page.screenshot({ path: name });
        },
        async viewEnd() {
            await browser?.close();
            browser = undefined;
        },
        viewRequests: () => requests.splice(0),
        viewComplaints: () => complaints.splice(0),
    };
}
