// handles.js - the browser's pickers and handles for the page, over files that the browser keeps for it
//
// A picker's dialog cannot be answered by a script. Here it is replaced by one that gives handles of the folder "chosen" in
// the browser's own files, which are read and written as those of a disk are.

// Runs in the page before its own scripts: a browser without pickers.
export function withoutPickers() {
    delete window.showOpenFilePicker;
    delete window.showDirectoryPicker;
}

// The same with pickers that give what window.picks names; null: the user cancels.
function withPickers() {
    const cancelled = () => new DOMException("The user aborted a request.", "AbortError");
    window.chosenFolder = async () =>
        (await navigator.storage.getDirectory()).getDirectoryHandle("chosen", { create: true });
    window.picks = null;
    window.showDirectoryPicker = async () => window.chosenFolder();
    window.showOpenFilePicker = async () => {
        if (!window.picks) throw cancelled();
        const folder = await window.chosenFolder();
        return Promise.all(window.picks.map((name) => folder.getFileHandle(name)));
    };
}

export function handleFunctions({ page, address, whenReady, settle }) {
    let script;

    return {
        async handlesBegin() {
            script = (await page.evaluateOnNewDocument(withPickers)).identifier;
            await page.goto(address);
            await page.evaluate(async () => {
                const root = await navigator.storage.getDirectory();
                await root.removeEntry("chosen", { recursive: true }).catch(() => {});
            });
            await whenReady();
        },
        async handlesEnd() {
            await page.removeScriptToEvaluateOnNewDocument(script);
            await page.goto(address);
            await whenReady();
        },
        handlesPick: ({ names }) => page.evaluate((chosen) => (window.picks = chosen), names),
        handlesWrite: ({ name, bytes }) =>
            page.evaluate(
                async (file, text) => {
                    const handle = await (await window.chosenFolder()).getFileHandle(file, { create: true });
                    const writer = await handle.createWritable();
                    await writer.write(Uint8Array.from(atob(text), (letter) => letter.charCodeAt(0)));
                    await writer.close();
                },
                name,
                bytes,
            ),
        handlesRemove: ({ name }) =>
            page.evaluate(async (file) => (await window.chosenFolder()).removeEntry(file), name),
        handlesMakeFolder: ({ name }) =>
            page.evaluate(async (inner) => {
                await (await window.chosenFolder()).getDirectoryHandle(inner, { create: true });
            }, name),

        whenNoticed: ({ text }) =>
            page
                .waitForFunction(
                    (wanted) =>
                        [...document.querySelectorAll(".notice")].some((notice) => notice.textContent === wanted),
                    { timeout: 20000 },
                    text,
                )
                .then(() => undefined),

        // Every file of the folder, with its bytes, as { name: bytes }; folders end with "/".
        handlesFiles: () =>
            page.evaluate(async () => {
                const files = {};
                for await (const handle of (await window.chosenFolder()).values()) {
                    if (handle.kind !== "file") {
                        files[`${handle.name}/`] = "";
                        continue;
                    }
                    const bytes = new Uint8Array(await (await handle.getFile()).arrayBuffer());
                    files[handle.name] = btoa(String.fromCharCode(...bytes));
                }
                return files;
            }),

        // Drops files and folders as the browser hands them over from outside.
        async handlesDrop({ names }) {
            await page.evaluate(async (chosen) => {
                const folder = await window.chosenFolder();
                const handles = chosen.map((name) => (name ? folder.getFileHandle(name) : Promise.resolve(folder)));
                const items = handles.map((handle) => ({
                    webkitGetAsEntry: () => null,
                    getAsFileSystemHandle: () => handle,
                }));
                const drop = new Event("drop", { cancelable: true });
                Object.defineProperty(drop, "dataTransfer", { value: { items, files: [] } });
                document.dispatchEvent(drop);
                await new Promise((resolve) => setTimeout(resolve, 100));
            }, names);
            await settle();
        },
        async clickOn({ selector }) {
            await page.click(selector);
            await page.evaluate(() => new Promise((resolve) => setTimeout(resolve, 100)));
            await settle();
        },
        isShown: ({ selector }) => page.$eval(selector, (found) => found.checkVisibility()),
        textOf: ({ selector }) => page.$eval(selector, (found) => found.textContent),

        // Chooses an entry of the menu that saves, and gives a name for the file.
        async saveAs({ id, name }) {
            await page.$eval(`#menus [data-id="${id}"]`, (entry) => entry.click());
            const field = await page.waitForSelector("dialog input");
            await field.evaluate((input) => (input.value = ""));
            await field.type(name);
            await page.keyboard.press("Enter");
            await page.waitForSelector("dialog input", { hidden: true });
            await settle();
        },
        async pressButton({ number }) {
            await page.waitForSelector("dialog[open] .buttons");
            const buttons = await page.$$("dialog[open] .buttons button");
            await buttons[number].click();
            await settle();
        },
    };
}
