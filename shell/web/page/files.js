// files.js - files that come in by a dialog, a drop or the clipboard, and files that go out as downloads
import { givenFiles } from "./given.js";
import { filesOfHandle, pickFiles } from "./handles.js";

/** @typedef {import("./messages").GivenFile} GivenFile */
/** @typedef {import("./messages").SavedFile} SavedFile */

const companions = [".mtl", ".jpg", ".jpeg"];

/** @param {FileSystemEntry} entry @returns {Promise<GivenFile[]>} */
async function filesOfEntry(entry) {
    const path = entry.fullPath.replace(/^\//, "");
    if (entry.isFile) {
        const file = await new Promise((resolve, reject) =>
            /** @type {FileSystemFileEntry} */ (entry).file(resolve, reject),
        );
        return [{ path, file }];
    }
    const reader = /** @type {FileSystemDirectoryEntry} */ (entry).createReader();
    const files = [];
    for (;;) {
        /** @type {FileSystemEntry[]} */
        const entries = await new Promise((resolve, reject) => reader.readEntries(resolve, reject));
        if (entries.length === 0) return files;
        for (const child of entries) files.push(...(await filesOfEntry(child)));
    }
}

// All files of a drop, those in its folders, too. The items are there only until the first promise is waited for.
/** @param {DataTransfer} transfer @returns {Promise<GivenFile[]>} */
export async function droppedFiles(transfer) {
    const items = [...transfer.items];
    const files = givenFiles(transfer.files);
    const entries = items.map((item) => item.webkitGetAsEntry()).filter((entry) => entry !== null);
    const asked = items.map((item) => item.getAsFileSystemHandle?.().catch(() => null));
    const handles = (await Promise.all(asked)).filter((handle) => handle !== null && handle !== undefined);
    if (handles.length > 0 && handles.length === items.length)
        return (await Promise.all(handles.map((handle) => filesOfHandle(handle)))).flat();
    if (entries.length === 0) return files;
    return (await Promise.all(entries.map(filesOfEntry))).flat();
}

// Asks the user for files. Several may be chosen, so that a model's library and pictures can come with it.
/** @param {string} pattern as "*.obj;*.3ds" @returns {Promise<GivenFile[]>} none: cancelled */
export async function askForFiles(pattern) {
    const asked = pattern.toLowerCase().replaceAll("*", "").split(";");
    const endings = [...asked, ...(asked.includes(".obj") ? companions : [])];
    return (await pickFiles(endings)) ?? askByInput(endings);
}

/** @param {string[]} endings @returns {Promise<GivenFile[]>} */
function askByInput(endings) {
    const input = document.createElement("input");
    input.type = "file";
    input.multiple = true;
    input.accept = endings.join(",");
    return new Promise((resolve) => {
        input.addEventListener("change", () => resolve(givenFiles(input.files ?? [])));
        input.addEventListener("cancel", () => resolve([]));
        input.click();
    });
}

/** @param {string} name @param {BlobPart} bytes */
function download(name, bytes) {
    const link = document.createElement("a");
    link.href = URL.createObjectURL(new Blob([bytes], { type: "application/octet-stream" }));
    link.download = name;
    link.click();
    setTimeout(() => URL.revokeObjectURL(link.href), 60000);
}

// One file as it is, a set of files in one archive.
/** @param {SavedFile[]} files */
export async function downloadFiles(files) {
    if (files.length === 1) {
        download(files[0].name, /** @type {BlobPart} */ (files[0].bytes));
        return;
    }
    const { zipSync } = await import("./fflate.js"); // not part of the first load
    const archive = zipSync(Object.fromEntries(files.map(({ name, bytes }) => [name, bytes])));
    download(files[0].name.replace(/\.[^.]*$/, "") + ".zip", /** @type {BlobPart} */ (archive));
}
