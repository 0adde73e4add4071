// measure.js PAGE-FOLDER NODE-MODULES MODELS-FOLDER [--quick] [NAME...] - the page and its peers, measured in turns
//
// bench/page makes the models and says what is printed. A NAME is a program; without one, all are measured.
import { execFileSync } from "node:child_process";
import fs from "node:fs";
import http from "node:http";
import path from "node:path";
import { gzipSync } from "node:zlib";

const [, , pageFolder, modules, models, ...rest] = process.argv;
const { default: puppeteer } = await import(path.join(modules, "puppeteer-core/lib/esm/puppeteer/puppeteer-core.js"));
const here = path.dirname(import.meta.url.slice("file://".length));
const rounds = rest.includes("--quick") ? 1 : 3;
const wanted = rest.filter((argument) => !argument.startsWith("-"));

const stopMs = 600000;
const size = { width: 900, height: 700 };
const files = ["39 MB", "92 MB", "teapot"];
const fileNames = { "39 MB": "small.obj", "92 MB": "large.obj", teapot: "teapot.obj" };
const frameCounts = { "39 MB": 5, "92 MB": 0, teapot: 30 };

// ---- serving ----

const types = { ".html": "text/html", ".js": "text/javascript", ".css": "text/css", ".wasm": "application/wasm" };
const folders = { page: pageFolder, peers: here, packages: modules };
const requested = new Set(); // the files that one page needs before it can open a file
let counting = false;

const server = http.createServer((request, response) => {
    const [, folder, ...parts] = new URL(request.url, "http://page").pathname.replace(/\/$/, "/index.html").split("/");
    const file = path.join(folders[folder] ?? "/nowhere", ...parts);
    if (!fs.existsSync(file)) {
        response.writeHead(404).end();
        return;
    }
    counting = counting && path.basename(file) !== "service-worker.js"; // which keeps all of them, and comes last
    if (counting) requested.add(file);
    response.writeHead(200, { "content-type": types[path.extname(file)] ?? "application/octet-stream" });
    fs.createReadStream(file).pipe(response);
});
await new Promise((resolve) => server.listen(0, "127.0.0.1", resolve));
const address = `http://127.0.0.1:${server.address().port}`;

// ---- the programs ----

// The page takes files and drags as its own scripts send them, and answers when it has drawn.
async function preparePage(page) {
    await page.waitForFunction(() => window.kestrelbox?.isIdle(), { timeout: stopMs });
    await page.evaluate(() => {
        const program = window.kestrelbox.program();
        let x = 100;
        const timed = async (action) => {
            const start = performance.now();
            await program.send(action);
            return performance.now() - start;
        };
        window.peer = {
            open: (file) => timed({ do: "open", files: [{ path: file.name, file }], path: file.name }),
            async frame() {
                if (x === 100) await program.send({ do: "leftButton", code: 0, x, y: 300 });
                x += 7;
                return timed({ do: "move", left: true, right: false, x, y: 300 });
            },
        };
    });
}

const browserPrograms = {
    ours: { address: "/page/", prepare: preparePage },
    f3d: { address: "/peers/f3d.html" },
    "online-3d-viewer": { address: "/peers/online_3d_viewer.html" },
    OBJLoader: { address: "/peers/objloader.html", draws: false },
};
const underNode = "OBJLoader under Node.js";

const compressedBytes = () =>
    [...requested].reduce((sum, file) => sum + gzipSync(fs.readFileSync(file), { level: 9 }).length, 0);

const measured = {}; // of each program, by row: times in milliseconds, or bytes

function note(program, row, value) {
    measured[program] ??= {};
    (measured[program][row] ??= []).push(value);
}

async function measureFile(page, program, input, file) {
    const { draws = true } = browserPrograms[program];
    await input.uploadFile(path.join(models, fileNames[file]));
    note(program, `open ${file}`, await page.evaluate((field) => window.peer.open(field.files[0]), input));
    for (let k = 0; draws && k <= frameCounts[file]; ++k) {
        const time = await page.evaluate(() => window.peer.frame());
        if (k > 0) note(program, `frame ${file}`, time);
    }
}

async function measureInBrowser(program) {
    const { address: place, prepare = () => {} } = browserPrograms[program];
    // without a graphics card, WebGL is drawn by the processor
    const withoutCard = ["--use-angle=swiftshader", "--enable-unsafe-swiftshader", "--disable-dev-shm-usage"];
    const browser = await puppeteer.launch({
        executablePath: "/usr/bin/chromium",
        args: ["--no-sandbox", ...withoutCard],
        protocolTimeout: stopMs,
    });
    const page = await browser.newPage();
    page.on("pageerror", (error) => console.error(`${program}: ${error.message}`));
    await page.setViewport(size);
    requested.clear();
    counting = true;
    await page.goto(address + place);
    await prepare(page);
    await page.waitForFunction(() => window.peer, { timeout: stopMs });
    if (program !== "OBJLoader") note(program, "compressed", compressedBytes()); // which is no program
    const input = await page.evaluateHandle(() => {
        const field = document.createElement("input");
        field.type = "file";
        return field;
    });
    for (const file of files) await measureFile(page, program, input, file);
    if (process.env.PICTURES) await page.screenshot({ path: path.join(process.env.PICTURES, `${program}.png`) });
    await browser.close();
}

// Each file is read in a process of its own, as the heap is then its own, too.
function measureUnderNode() {
    for (const file of files) {
        const script = [path.join(here, "objloader.js"), modules, path.join(models, fileNames[file])];
        const answer = execFileSync(process.execPath, ["--max-old-space-size=8192", ...script], { encoding: "utf8" });
        note(underNode, `open ${file}`, Number(answer));
    }
}

// ---- the table ----

function median(values) {
    const sorted = values.toSorted((a, b) => a - b);
    return (sorted[Math.floor((sorted.length - 1) / 2)] + sorted[Math.ceil((sorted.length - 1) / 2)]) / 2;
}

const rows = [
    ["compressed", "program, compressed, kB", 1000],
    ["open 39 MB", "opening 39 MB OBJ, ms", 1],
    ["open 92 MB", "opening 92 MB OBJ, ms", 1],
    ["open teapot", "opening the teapot as OBJ, ms", 1],
    ["frame 39 MB", "frame of 1.05 M triangles, ms", 1],
    ["frame teapot", "frame of the teapot, ms", 1],
];

function report() {
    for (const [row, title, unit] of rows) {
        const [ours, ...others] = ["ours", ...programs.filter((name) => name !== "ours")].map((program) => {
            const values = measured[program]?.[row];
            return { program, value: values ? median(values) / unit : undefined };
        });
        const peers = others.map(({ program, value }) => {
            if (value === undefined) return `${program} -`;
            return `${program} ${value.toFixed(1)}${ours.value ? ` = x${(value / ours.value).toFixed(2)}` : ""}`;
        });
        console.log([title.padEnd(34), (ours.value?.toFixed(1) ?? "-").padStart(9), ...peers].join("  "));
    }
}

const programs = [...Object.keys(browserPrograms), underNode].filter(
    (name) => wanted.length === 0 || wanted.some((start) => name.startsWith(start)),
);
for (let round = 0; round < rounds; ++round) {
    for (const program of programs) {
        if (program === underNode) measureUnderNode();
        else await measureInBrowser(program);
    }
}
report();
server.close();
