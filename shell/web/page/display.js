// display.js - mouse, pen, fingers and wheel over the display
const down = 0;
const up = 2;
const wheelNotch = 100; // pixels of the browsers' wheel events
const linesOfNotch = 3;
const zoomOfNotch = 1.1;

/** @typedef {{ send(action: import("./messages").Action): Promise<any> }} Program */
/** @typedef {{ x: number, y: number }} Point */

export class Display {
    /** @param {HTMLElement} place @param {() => Program} program */
    constructor(place, program) {
        this.place = place;
        this.program = program;
        /** @type {Map<number, Point>} */
        this.fingers = new Map();
        this.moving = false;
        /** @type {import("./messages").Action | null} */
        this.nextMove = null;
        this.listen();
        new ResizeObserver((entries) => this.resize(entries[0])).observe(place, { box: "device-pixel-content-box" });
    }

    listen() {
        const { place } = this;
        place.addEventListener("pointerdown", (event) => this.press(event));
        place.addEventListener("pointermove", (event) => this.move(event));
        place.addEventListener("pointerup", (event) => this.release(event));
        place.addEventListener("pointercancel", (event) => this.release(event));
        place.addEventListener("contextmenu", (event) => event.preventDefault());
        place.addEventListener("wheel", (event) => this.wheel(event), { passive: false });
    }

    /** @param {ResizeObserverEntry} entry */
    resize(entry) {
        const { inlineSize: width, blockSize: height } = entry.devicePixelContentBoxSize[0];
        if (width > 0 && height > 0) this.program().send({ do: "resize", width, height });
    }

    /** @param {PointerEvent} event @returns {Point} */
    at(event) {
        const box = this.place.getBoundingClientRect();
        return {
            x: Math.floor((event.clientX - box.left) * devicePixelRatio),
            y: Math.floor((event.clientY - box.top) * devicePixelRatio),
        };
    }

    /** @param {PointerEvent} event */
    press(event) {
        this.place.setPointerCapture(event.pointerId);
        const at = this.at(event);
        const program = this.program();
        if (event.pointerType === "touch") {
            this.fingers.set(event.pointerId, at);
            if (this.fingers.size > 1) {
                program.send({ do: "endDrags" });
                return;
            }
        }
        if (event.button === 0) program.send({ do: "leftButton", code: down, ...at });
        if (event.button === 2) program.send({ do: "rightButton", code: down, y: at.y });
    }

    /** @param {PointerEvent} event */
    release(event) {
        const at = this.at(event);
        const program = this.program();
        const fingers = this.fingers.size;
        this.fingers.delete(event.pointerId);
        if (fingers > 1) return;
        if (event.button === 2) program.send({ do: "rightButton", code: up, y: at.y });
        else program.send({ do: "leftButton", code: up, ...at });
    }

    // Moves that come while the program draws are put together.
    /** @param {PointerEvent} event */
    move(event) {
        const at = this.at(event);
        if (this.fingers.size > 1) {
            this.pinch(event.pointerId, at);
            return;
        }
        this.nextMove = { do: "move", left: (event.buttons & 1) !== 0, right: (event.buttons & 2) !== 0, ...at };
        this.sendMove();
    }

    async sendMove() {
        if (this.moving || !this.nextMove) return;
        const move = this.nextMove;
        this.nextMove = null;
        this.moving = true;
        await this.program().send(move);
        this.moving = false;
        this.sendMove();
    }

    // Two fingers enlarge the model as they move apart.
    /** @param {number} id @param {Point} at */
    pinch(id, at) {
        const before = this.fingerDistance();
        this.fingers.set(id, at);
        const now = this.fingerDistance();
        if (before > 0 && now > 0)
            this.program().send({ do: "wheel", notches: Math.log(now / before) / Math.log(zoomOfNotch) });
    }

    fingerDistance() {
        const [a, b] = this.fingers.values();
        return Math.hypot(a.x - b.x, a.y - b.y);
    }

    /** @param {WheelEvent} event */
    wheel(event) {
        event.preventDefault();
        const perNotch = event.deltaMode === WheelEvent.DOM_DELTA_PIXEL ? wheelNotch : linesOfNotch;
        this.program().send({ do: "wheel", notches: -event.deltaY / perNotch });
    }
}
