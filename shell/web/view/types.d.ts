// kestrelbox.d.ts - the types of kestrelbox.js

/** The object of `kbx info --json` for one file, or one with `file` and `error` for a file that could not be read. */
export interface ModelFacts {
    file: string;
    error?: string;
    name?: string;
    vertices?: number;
    faces?: number;
    triangles?: number;
    quads?: number;
    groups?: { name: string; faces: number }[];
    materials?: { name: string; faces: number }[];
    warnings?: { kind: string; count: number; text: string }[];
    [fact: string]: unknown;
}

export type ToolName = "fix-normals" | "dup-faces" | "weld" | "weld-near" | "tri" | "quad" | "split" | "invert";

export type SaveKind = "obj" | "pp2" | "rkf" | "lxs" | "stl" | "png" | "bmp";

/**
 * `<kestrelbox-view>`. Its attributes are `src` and the options of `kbx render`: `preset`, `texture`, `lights`, `shadows`,
 * `no-vertex-color`, `no-backcull`, `wireframe`, `rough`, `metallic`, `moon`, `background`, `size`, `rotate`, `view`, `zoom`,
 * `no-keyframes`, `tool`, `filter`, `format`, `ply-list` and `max-size`.
 *
 * Events: `load` when a model is shown, `error` (an `ErrorEvent` with the message), `progress` (a `ProgressEvent`).
 */
export declare class KestrelboxView extends HTMLElement {
    /** The address of the model; its library and pictures are looked for beside it. Empty: the built-in model. */
    src: string;

    /** Shows a model of these files: the first model among them, with its library and pictures. */
    open(files: Iterable<File>): Promise<void>;

    /** What the file that was opened last has, after the tools that have run. Null before, and for the built-in model. */
    info(): ModelFacts | null;

    /** Runs a mesh tool. Returns what it says. */
    tool(name: ToolName): Promise<string>;

    /** The picture that is shown, as a PNG file of its own pixels. */
    picture(): Promise<Blob>;

    /** Starts the program anew, after a fault or at any time, and shows the model again without what tools have done. */
    restart(): Promise<void>;

    /** The files that `kbx convert` writes, or the picture. The one that was asked for comes first. */
    save(kind: SaveKind): Promise<File[]>;
}

declare global {
    interface HTMLElementTagNameMap {
        "kestrelbox-view": KestrelboxView;
    }
}
