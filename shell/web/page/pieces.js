// pieces.js - the browser's files, read in pieces that grow while the program reads on
//
// A request to the browser takes milliseconds beside its bytes, and the program asks for 256 kB at a time. So that which it
// reads in order is fetched ahead, in pieces that grow fourfold, up to 16 MiB. Elsewhere a piece is as small as what was asked for.

const firstPiece = 1 << 18; // bytes
const largestPiece = 1 << 24;

/** The one piece that is held. @type {{ file: Blob | null, start: number, bytes: Uint8Array }} */
const piece = { file: null, start: 0, bytes: new Uint8Array() };

/** @typedef {{ node: { contents: Blob, size: number } }} Stream */

// Makes the piece hold the byte at a position, if the file has it.
/** @param {Blob} file @param {number} position */
function holdByte(file, position) {
    const end = piece.start + piece.bytes.length;
    const isSame = piece.file === file;
    if (isSame && position >= piece.start && position < end) return;
    const size = isSame && position === end ? Math.min(4 * piece.bytes.length, largestPiece) : firstPiece;
    const buffer = new FileReaderSync().readAsArrayBuffer(file.slice(position, position + size));
    Object.assign(piece, { file, start: position, bytes: new Uint8Array(buffer) });
}

/** @param {Stream} stream @param {Uint8Array} buffer @param {number} offset @param {number} length @param {number} position */
function read({ node }, buffer, offset, length, position) {
    let done = 0;
    while (done < length && position + done < node.size) {
        holdByte(node.contents, position + done);
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
    if (piece.file === node.contents) Object.assign(piece, { file: null, bytes: new Uint8Array() });
}

/** @param {{ stream_ops: object }} workerFiles emscripten's file system of browser's files */
export function readInPieces(workerFiles) {
    Object.assign(workerFiles.stream_ops, { read, close });
}
