// same_as_native.js NATIVE-KBX WASM-KBX FOLDER... - kbx for Node.js reads and draws models as the native one
//
// The models are those of the folders and of KESTRELBOX_MODELS. Dumps, messages and exit statuses are the same byte for byte.
// Only the estimates of the reciprocal square root differ: so may texture coordinates that are made of normals, in the last
// bits, and pictures by one step of colour, in one pixel of a thousand by more. Exit status 77: there is no such program.
import { spawn } from "node:child_process";
import fs from "node:fs";
import os from "node:os";
import path from "node:path";

const [, , native, wasm, ...given] = process.argv;
const programs = [[native], [process.execPath, "--no-experimental-fetch", wasm]];
const folders = [...given, ...(process.env.KESTRELBOX_MODELS ? [process.env.KESTRELBOX_MODELS] : [])];
const models = /\.(obj|3ds|dxf|ply|pp2|hr2|cr2|off|rkf|stl)$/i;
const pictureLimit = 1 << 18; // bytes of a file that is also drawn
const colourStep = 8; // five bits of eight
const estimateStep = 2 ** -12;
const otherPixelsLimit = 0.001;

if (![native, wasm].every((program) => fs.existsSync(program))) {
    console.error(`${native} or ${wasm} is not built`);
    process.exit(77);
}
const folder = fs.mkdtempSync(path.join(os.tmpdir(), "same-as-native-"));
let failures = 0;

function fail(file, what) {
    console.error(`${file}: ${what}`);
    ++failures;
}

// What a program prints, says and returns.
function run([program, ...first], parameters) {
    return new Promise((resolve) => {
        const started = spawn(program, [...first, ...parameters]);
        const streams = [started.stdout, started.stderr].map((stream) => {
            const parts = [];
            stream.on("data", (part) => parts.push(part));
            return parts;
        });
        started.on("close", (status) => resolve([...streams.map((parts) => Buffer.concat(parts)), status]));
    });
}

// The numbers of a line with texture coordinates, which the dump gives as the bits of floats.
function coordinates(line) {
    const bytes = Buffer.from(line.replace(/^uv | /g, ""), "hex");
    return [bytes.readFloatBE(0), bytes.readFloatBE(4)];
}

function sameLine(one, two) {
    if (one === two) return true;
    if (!one.startsWith("uv ") || !two?.startsWith("uv ")) return false;
    const [other, ours] = [coordinates(two), coordinates(one)];
    return ours.every((value, i) => Math.abs(value - other[i]) <= estimateStep);
}

function sameDump(one, two) {
    if (one.equals(two)) return true;
    const [lines, others] = [one, two].map((dump) => dump.toString("latin1").split("\n"));
    return lines.length === others.length && lines.every((line, i) => sameLine(line, others[i]));
}

async function compareDumps(file) {
    const [ours, theirs] = await Promise.all(programs.map((program) => run(program, ["dump", file])));
    if (!sameDump(ours[0], theirs[0])) fail(file, "the dumps differ");
    if (!ours[1].equals(theirs[1])) fail(file, `the messages differ:\n${ours[1]}${theirs[1]}`);
    if (ours[2] !== theirs[2]) fail(file, `the exit status is ${theirs[2]} instead of ${ours[2]}`);
    return ours[2] === 0;
}

// The share of pixels that differ by more than a step of colour.
function otherPixels(one, two) {
    const begin = one.readUInt32LE(10);
    let count = 0;
    for (let i = begin; i + 2 < one.length; i += 3) {
        const differs = (k) => Math.abs(one[i + k] - two[i + k]) > colourStep;
        count += differs(0) || differs(1) || differs(2) ? 1 : 0;
    }
    return (3 * count) / (one.length - begin);
}

async function comparePictures(file, number) {
    const names = ["native", "wasm"].map((name) => path.join(folder, `${name}-${number}.bmp`));
    const size = ["--rotate", "20,30,0", "--size", "400x300"]; // rows of 400 pixels have no padding
    await Promise.all(programs.map((program, i) => run(program, ["render", file, ...size, "-o", names[i]])));
    const [one, two] = names.map((name) => fs.readFileSync(name));
    if (one.length !== two.length) fail(file, "the pictures have different sizes");
    else if (otherPixels(one, two) > otherPixelsLimit) fail(file, "the pictures differ");
    for (const name of names) fs.unlinkSync(name);
}

const files = folders
    .flatMap((from) => fs.readdirSync(from, { recursive: true }).map((name) => path.join(from, name)))
    .filter((name) => models.test(name) && fs.statSync(name).isFile());
let drawn = 0;
for (const file of files) {
    const readable = await compareDumps(file);
    if (readable && fs.statSync(file).size <= pictureLimit) await comparePictures(file, ++drawn);
}
fs.rmSync(folder, { recursive: true });
if (files.length === 0 || drawn === 0) fail(folders.join(" "), "no model was compared");
console.log(`${files.length} dumps and ${drawn} pictures compared`);
process.exit(failures ? 1 : 0);
