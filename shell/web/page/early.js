// early.js - begins what takes longest at the start, while the page and its other scripts are still loading
import { compiledCore } from "./compiled.js";

const newWorker = () => new Worker(new URL("./worker.js", import.meta.url), { type: "module" });

/** @type {Worker | null} */
let waiting = newWorker();
waiting.onerror = () => {
    waiting = null; // the next one reports the failure to whoever takes it
};
compiledCore();

// A worker for the page's program: at the first call the one that has been started already.
export function takeWorker() {
    const taken = waiting ?? newWorker();
    waiting = null;
    return taken;
}
