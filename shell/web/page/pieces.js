// pieces.js - the browser's files, read in pieces of up to 64 MiB
//
// A request to the browser takes as long as half a megabyte, or several times that while the machine is busy. The program
// asks for 256 kB at a time, and looks at 64 places of an OBJ file before it reads it. So a file of up to one piece is fetched
// at once. Of a larger one, what is read in order comes in pieces that grow fourfold, and elsewhere a piece is what was asked for.

const leastPiece = 1 << 12; // bytes
const largestPiece = 1 << 26;
const inputOutputError = 29; // EIO of emscripten's C library

/** The one piece that is held. @type {{ file: Blob | null, start: number, bytes: Uint8Array }} */
let piece = { file: null, start: 0, bytes: new Uint8Array() };

/** @typedef {{ node: { contents: Blob, size: number } }} Stream */

// The bytes from a position on; null for those of a file that has changed or is gone, or when there is no memory.
/** @param {Blob} file @param {number} start @param {number} size */
function fetchBytes(file, start, size) {
    try {
        return new Uint8Array(new FileReaderSync().readAsArrayBuffer(file.slice(start, start + size)));
    } catch {
        return null;
    }
}

// Makes the piece hold the byte at a position. Returns false when the file cannot be read.
/** @param {Blob} file @param {number} position @param {number} wanted bytes from there */
function holdByte(file, position, wanted) {
    const isSame = piece.file === file;
    const end = piece.start + piece.bytes.length;
    if (isSame && position >= piece.start && position < end) return true;
    const grown = isSame && position === end ? Math.min(4 * piece.bytes.length, largestPiece) : leastPiece;
    const [start, size] = file.size <= largestPiece ? [0, file.size] : [position, Math.max(grown, wanted)];
    piece = { file: null, start: 0, bytes: new Uint8Array() }; // before the next one needs memory
    const bytes = fetchBytes(file, start, size);
    if (bytes) piece = { file, start, bytes };
    return bytes !== null;
}

/** @param {any} core emscripten's part of the program */
export function readInPieces({ FS, WORKERFS }) {
    /** @param {Stream} stream @param {Uint8Array} buffer @param {number} offset @param {number} length @param {number} position */
    function read({ node }, buffer, offset, length, position) {
        let done = 0;
        while (done < length && position + done < node.size) {
            if (!holdByte(node.contents, position + done, length - done)) throw new FS.ErrnoError(inputOutputError);
            const from = position + done - piece.start;
            const part = piece.bytes.subarray(from, from + length - done);
            if (part.length === 0) break;
            buffer.set(part, offset + done);
            done += part.length;
        }
        return done;
    }

    /** @param {Stream} stream */
    function close({ node }) {
        if (piece.file === node.contents) piece = { file: null, start: 0, bytes: new Uint8Array() };
    }

    Object.assign(WORKERFS.stream_ops, { read, close });
}
