// compiled.js - the program's module, compiled once for all programs of the page

/** @type {Promise<WebAssembly.Module | null> | null} */
let compiled = null;

// Compiles the module while it is loaded. Null when that fails, as from a server that sends it with another type; the
// worker then loads the module itself, and reports a failure.
/** @returns {Promise<WebAssembly.Module | null>} */
export function compiledCore() {
    compiled ??= WebAssembly.compileStreaming(fetch(new URL("./core.wasm", import.meta.url))).catch(() => {
        compiled = null;
        return null;
    });
    return compiled;
}
