// core.d.ts - the module that emscripten writes
import type { Core } from "./messages";

export default function createProgram(options: {
    host: object;
    filesAhead: object;
    instantiateWasm?: object;
}): Promise<Core>;
