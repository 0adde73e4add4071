// given.js - the files that were given, and the one that is meant

/** @typedef {import("./messages").GivenFile} GivenFile */

const modelEndings = [".obj", ".3ds", ".dxf", ".ply", ".pp2", ".hr2", ".cr2", ".off", ".rkf", ".stl"];

/** @param {string} path @param {string[]} endings */
const endsWithOne = (path, endings) => endings.some((ending) => path.toLowerCase().endsWith(ending));

// The file that is meant by several: the first model, else the first file. Those of a folder come in people's order.
/** @param {GivenFile[]} files @param {string[]} [endings] */
export function meantFile(files, endings = modelEndings) {
    const paths = files.map(({ path }) => path);
    if (paths.some((path) => path.includes("/"))) paths.sort(new Intl.Collator(undefined, { numeric: true }).compare);
    return paths.find((path) => endsWithOne(path, endings)) ?? paths[0];
}

// Of files with the same path the first one counts.
/** @param {Iterable<File>} files @returns {GivenFile[]} */
export function givenFiles(files) {
    /** @type {Map<string, GivenFile>} */
    const given = new Map();
    for (const file of files) {
        const path = file.webkitRelativePath || file.name;
        if (!given.has(path)) given.set(path, { path, file });
    }
    return [...given.values()];
}
