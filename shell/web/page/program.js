// program.js - the program in its worker, as the page sees it
import { compiledCore } from "./compiled.js";

/** @typedef {import("./messages").Action} Action */
/** @typedef {import("./messages").Said} Said */

// How often the screen is refreshed, from the times of some frames; 0 for a page that is not shown and gets none.
/** @returns {Promise<number>} */
function measureRefreshRate() {
    const frames = 8;
    return new Promise((resolve) => {
        /** @type {number[]} */
        const times = [];
        /** @param {number} time */
        const count = (time) => {
            if (times.push(time) <= frames) requestAnimationFrame(count);
            else resolve(Math.round((1000 * frames) / Math.max(1, times[frames] - times[0])));
        };
        setTimeout(() => resolve(0), 400);
        requestAnimationFrame(count);
    });
}

// The size of an element in pixels of the screen.
/** @param {HTMLElement} element */
function pixelSize(element) {
    const box = element.getBoundingClientRect();
    const scale = devicePixelRatio;
    return { width: Math.round(box.width * scale), height: Math.round(box.height * scale) };
}

export class Program {
    /** @param {(said: any) => void} hear what the program says, in its order @param {Worker} worker */
    constructor(hear, worker) {
        this.hear = hear;
        this.count = 0;
        this.stateText = "{}";
        this.ended = false;
        /** @type {object[] | null} */
        this.unsent = []; // what is to be sent after the start; null since then
        /** @type {Map<number, (result?: any) => void>} */
        this.waiting = new Map();
        this.worker = worker;
        this.worker.onmessage = ({ data }) => this.receive(data);
        this.worker.onerror = (event) =>
            hear({ what: "fault", text: event.message || "The program could not be loaded" });
    }

    // Starts the program in an element that then shows it. A canvas serves one program only.
    /** @param {HTMLElement} place */
    async start(place) {
        const canvas = document.createElement("canvas");
        place.replaceChildren(canvas);
        const offscreen = canvas.transferControlToOffscreen();
        const number = ++this.count;
        const core = await compiledCore();
        this.worker.postMessage({ do: "start", canvas: offscreen, core, number, ...pixelSize(place) }, [offscreen]);
        for (const message of this.unsent ?? []) this.worker.postMessage(message);
        this.unsent = null;
        await this.done(number);
        measureRefreshRate().then((rate) => this.send({ do: "refreshRate", rate })); // only a spin needs it
    }

    // Sends an action. The promise is kept, with the action's result, when the program has done it and has drawn.
    /** @param {Action} action @returns {Promise<any>} */
    send(action) {
        const message = { ...action, number: ++this.count };
        if (this.ended) return Promise.resolve();
        if (this.unsent) this.unsent.push(message);
        else this.worker.postMessage(message);
        return this.done(message.number);
    }

    /** @param {number} number @returns {Promise<any>} */
    done(number) {
        return new Promise((resolve) => this.waiting.set(number, resolve));
    }

    /** @param {any} said */
    receive(said) {
        if (said.what === "state") {
            this.stateText = said.text;
            return;
        }
        if (said.what !== "done") {
            this.hear(said);
            return;
        }
        this.waiting.get(said.id)?.(said.result);
        this.waiting.delete(said.id);
    }

    // Whether everything that was sent has been done.
    isIdle() {
        return this.waiting.size === 0 && !this.unsent;
    }

    /** @returns {Promise<import("./messages").State>} */
    async state() {
        await this.send({ do: "state" });
        return JSON.parse(this.stateText);
    }

    // Nobody waits for an ended program.
    end() {
        this.ended = true;
        this.worker.terminate();
        for (const resolve of this.waiting.values()) resolve();
        this.waiting.clear();
    }
}
