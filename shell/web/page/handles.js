// handles.js - files by the browser's handles, where it gives them: a file with one can be read again when it has changed

/** @typedef {import("./messages").GivenFile} GivenFile */

/** @param {string} path @param {FileSystemFileHandle} handle @returns {Promise<GivenFile>} */
const fileNow = async (path, handle) => ({ path, file: await handle.getFile(), handle });

// A file, or all files of a folder, those in its folders, too.
/** @param {FileSystemHandle} handle @param {string} [path] @returns {Promise<GivenFile[]>} */
export async function filesOfHandle(handle, path = handle.name) {
    if (handle.kind === "file") return [await fileNow(path, /** @type {FileSystemFileHandle} */ (handle))];
    const files = [];
    for await (const inner of /** @type {FileSystemDirectoryHandle} */ (handle).values())
        files.push(filesOfHandle(inner, `${path}/${inner.name}`));
    return (await Promise.all(files)).flat();
}

// The files as they are now. Those that are gone are left out; those without a handle stay as they were given.
/** @param {GivenFile[]} files @returns {Promise<GivenFile[]>} */
export async function filesNow(files) {
    const now = files.map((given) =>
        given.handle ? fileNow(given.path, given.handle).catch(() => null) : Promise.resolve(given),
    );
    return (await Promise.all(now)).filter((file) => file !== null);
}

// What a picker gives: nothing when it was cancelled, null when the browser has none or refuses to show it.
/** @param {Promise<FileSystemHandle[]>} [picked] @returns {Promise<GivenFile[] | null>} */
async function filesPicked(picked) {
    if (!picked) return null;
    try {
        return (await Promise.all((await picked).map((handle) => filesOfHandle(handle)))).flat();
    } catch (error) {
        return /** @type {DOMException} */ (error).name === "AbortError" ? [] : null;
    }
}

/** @param {string[]} [endings] as ".obj"; none: any file */
export function pickFiles(endings) {
    const types = endings && [{ accept: { "application/x-model": endings } }];
    return filesPicked(window.showOpenFilePicker?.({ multiple: true, types }));
}

export const pickFolder = () => filesPicked(window.showDirectoryPicker?.().then((folder) => [folder]));
