// objloader.js MODULES FILE... - the milliseconds that the OBJLoader of three takes for each file, a line for each
import fs from "node:fs";
import path from "node:path";

const [, , modules, ...files] = process.argv;
const { OBJLoader } = await import(path.join(modules, "three/examples/jsm/loaders/OBJLoader.js"));

for (const file of files) {
    const bytes = fs.readFileSync(file);
    const start = performance.now();
    const model = new OBJLoader().parse(new TextDecoder().decode(bytes));
    const time = performance.now() - start;
    if (model.children.length === 0) throw new Error(`${file}: nothing was read`);
    console.log(time);
}
