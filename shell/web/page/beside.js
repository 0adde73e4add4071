// beside.js - the files beside a model that was fetched, such as its library and its pictures
//
// Which files a model names shows only while it is read. A file that the program looks for in the model's folder and that
// was not given is asked for then, relative to the model's address, and the program waits for it.

/** The address of the model in each folder. @type {Map<string, string>} */
const addresses = new Map();
/** The paths that were asked for. @type {Set<string>} */
const asked = new Set();

/** @param {string} folder @param {string} address */
export const setAddress = (folder, address) => addresses.set(folder, address);

/** @param {string} folder */
export const forgetAddress = (folder) => addresses.delete(folder);

/** @param {string} path */
export const wasFetched = (path) => asked.has(path);

// Null for what is not there. A server that answers with a page of text has no such file.
/** @param {URL} address @returns {Uint8Array | null} */
function fetchNow(address) {
    const request = new XMLHttpRequest();
    request.open("GET", address, false);
    request.responseType = "arraybuffer";
    try {
        request.send();
    } catch {
        return null;
    }
    const isPage = request.getResponseHeader("content-type")?.startsWith("text/html");
    return request.status === 200 && !isPage ? new Uint8Array(request.response) : null;
}

// Names that lead out of the model's folder are not asked for.
/** @param {any} FS @param {string} path */
function fetchBeside(FS, path) {
    const whole = path.startsWith("/") ? path : `${FS.cwd()}/${path}`;
    const folder = [...addresses.keys()].find((name) => whole.startsWith(`${name}/`));
    const leadsOut = whole.split("/").includes("..");
    if (!folder || leadsOut || asked.has(whole) || FS.analyzePath(whole).exists) return;
    asked.add(whole);
    const parts = whole.slice(folder.length + 1).split("/");
    const name = `./${parts.map(encodeURIComponent).join("/")}`;
    const address = addresses.get(folder);
    const bytes = URL.canParse(name, address) ? fetchNow(new URL(name, address)) : null;
    if (!bytes) return;
    FS.mkdirTree(whole.slice(0, whole.lastIndexOf("/")));
    FS.writeFile(whole, bytes);
}

// The program asks what a path is before it opens a file that a model names.
/** @param {any} FS emscripten's files */
export function lookBeside(FS) {
    const { stat } = FS;
    /** @param {string} path @param {boolean} [direct] */
    FS.stat = (path, direct) => {
        fetchBeside(FS, path);
        return stat(path, direct);
    };
}
