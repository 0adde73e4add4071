// messages.d.ts - what page and worker say to each other, and what the worker uses of the program's module

export interface GivenFile {
    path: string; // below the folder that was given, with "/"
    file: File | Blob;
    handle?: FileSystemFileHandle; // where the browser gives one
}

// The answer to a dialog: files and the one that was meant, or the name of a file to write.
export type Answer = { files: GivenFile[]; path: string } | { name: string };

export type Command =
    | { do: "menu"; id: number; answer?: Answer }
    | { do: "key"; key: number; modifiers: number; repeated: boolean; answer?: Answer };

export type Action =
    | Command
    | { do: "panel"; id: number; value: number }
    | { do: "open"; files: GivenFile[]; path: string; address?: string }
    | { do: "renew"; files: GivenFile[] } // of the model that is shown
    | ViewAction
    | { do: "leftButton"; code: number; x: number; y: number }
    | { do: "rightButton"; code: number; y: number }
    | { do: "move"; left: boolean; right: boolean; x: number; y: number }
    | { do: "endDrags" }
    | { do: "wheel"; notches: number }
    | { do: "resize"; width: number; height: number }
    | { do: "rest"; on: boolean }
    | { do: "state" }
    | { do: "fetchAhead" }
    | { do: "show"; visible: boolean }
    | { do: "refreshRate"; rate: number } // of the screen; 0: unknown
    | { do: "start"; canvas: OffscreenCanvas; core: WebAssembly.Module | null; width: number; height: number };

// What a view asks for besides. Its actions return a ViewAnswer.
export type ViewAction =
    | { do: "openView"; files: GivenFile[]; path: string; address?: string; options: ViewOptions } // no path: built in
    | { do: "look"; options: ViewOptions; turned: boolean }
    | { do: "tool"; name: string }
    | { do: "save"; name: string };

export interface ViewOptions {
    options: [string, string][]; // name and value
    texture?: { path: string; file?: Blob }; // for the option "texture" that names a file; no file: as before
}

export interface ViewAnswer {
    error?: string;
    notice: string;
    refused: string[]; // options that cannot be followed, and why
    facts?: string; // JSON, where they may have changed
    files: SavedFile[];
}

export type Request = Action & { number: number };

export interface SavedFile {
    name: string;
    bytes: Uint8Array;
}

export interface Said {
    what: string;
    id: number;
    value: number;
    text: string;
}

export interface MenuEntry {
    text?: string; // none: a separator
    id: number;
    disabled: boolean;
}

export interface PanelGroup {
    text: string;
    kind: "box" | "button" | "count";
    listId: number;
    controls: { text: string; id: number }[];
}

export interface KeyRow {
    key: number;
    modifiers: number;
    name: string;
    help: string;
}

export interface Tables {
    menus: { text: string; entries: MenuEntry[] }[];
    panel: PanelGroup[];
    keys: KeyRow[];
}

export interface State {
    width: number; // of the display, in pixels
    height: number;
    rotation: number[]; // row by row
    zoom: number;
    spins: boolean;
    blocks: number; // of memory
    memory: number; // bytes that the program has from the browser
}

// The module that emscripten makes of shell/web/program.cpp.
export interface Core {
    HEAPU8: Uint8Array;
    FS: any;
    WORKERFS: { stream_ops: object };
    filesAhead: { [name: string]: Uint8Array };
    UTF8ToString(pointer: number): string;
    _malloc(bytes: number): number;
    _free(pointer: number): void;
    _describeControls(): void;
    _describeState(): void;
    _beginProgram(width: number, height: number): number;
    _drawIfDue(): number;
    _resizeDisplay(width: number, height: number): void;
    _runMenu(id: number, path: number): void;
    _runPanel(id: number, value: number): void;
    _pressKey(key: number, modifiers: number, repeated: number, path: number): void;
    _openPath(path: number): void;
    _pathOfModel(): number;
    _leftButton(code: number, x: number, y: number): void;
    _rightButton(code: number, y: number): void;
    _movePointer(left: number, right: number, x: number, y: number): void;
    _letGo(): void;
    _turnWheel(notches: number): void;
    _showPage(visible: number): void;
    _setRefreshRate(rate: number): void;
    _beginView(width: number, height: number): number;
    _clearOptions(): void;
    _giveOption(name: number, text: number): void;
    _applyOptions(turned: number): void;
    _openInView(path: number): number;
    _describeModel(): void;
    _runToolInView(name: number): number;
    _saveInView(path: number): number;
}
