// save_folder.js - a folder of the user that saved files go into, where the browser lets one be chosen

/** @typedef {import("./messages").SavedFile} SavedFile */

/** @param {FileSystemDirectoryHandle} folder @param {string} name */
const isThere = (folder, name) =>
    folder.getFileHandle(name).then(
        () => true,
        () => false,
    );

// Writes a set of files, which replace earlier ones only when every one is written. Rejects when that fails, and then
// leaves the folder as it was.
/** @param {FileSystemDirectoryHandle} folder @param {SavedFile[]} files */
async function writeSet(folder, files) {
    /** @type {string[]} */
    const made = [];
    /** @type {FileSystemWritableFileStream[]} */
    const writers = [];
    try {
        for (const { name, bytes } of files) {
            const isNew = !(await isThere(folder, name));
            const file = await folder.getFileHandle(name, { create: true });
            if (isNew) made.push(name);
            const writer = await file.createWritable();
            writers.push(writer);
            await writer.write(/** @type {BufferSource} */ (bytes));
        }
        for (const writer of writers) await writer.close();
    } catch (error) {
        await Promise.allSettled(writers.map((writer) => writer.abort()));
        await Promise.allSettled(made.map((name) => folder.removeEntry(name)));
        throw error;
    }
}

export class SaveFolder {
    /** @param {HTMLElement} button chooses the folder, and goes back to downloads @param {import("./boxes").Boxes} boxes */
    constructor(button, boxes) {
        this.button = button;
        this.boxes = boxes;
        /** @type {FileSystemDirectoryHandle | null} */
        this.folder = null;
        button.hidden = !window.showDirectoryPicker;
        button.addEventListener("click", () => this.choose());
    }

    async choose() {
        const wanted = this.folder ? null : window.showDirectoryPicker?.({ id: "save", mode: "readwrite" });
        this.folder = (await wanted?.catch(() => null)) ?? null;
        this.button.setAttribute("aria-pressed", String(this.folder !== null));
        const name = this.folder?.name;
        this.button.textContent = name ?? "Save folder";
        this.button.title = name ? `Saved files go into ${name}` : "Choose a folder that saved files go into";
        this.button.setAttribute("aria-label", name ? `Save folder ${name}` : "Save folder");
    }

    // Asks before it replaces files. Returns whether nothing is left to do: the files are written, or are not wanted.
    /** @param {SavedFile[]} files */
    async save(files) {
        const { folder, boxes } = this;
        if (!folder) return false;
        const there = [];
        for (const { name } of files) if (await isThere(folder, name)) there.push(name);
        const question = `${there.join(", ")}: already in the folder ${folder.name}`;
        if (there.length > 0 && !(await boxes.confirm("Replace files", question, "Replace", "Cancel"))) return true;
        try {
            await writeSet(folder, files);
        } catch {
            await boxes.message(
                `The folder ${folder.name} cannot be written. The files are downloaded.`,
                "Error",
                true,
            );
            return false;
        }
        boxes.notice(`Saved into ${folder.name}`);
        return true;
    }
}
