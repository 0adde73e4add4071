// view_worker.js - the program of a view: that of the page, with the functions of shell/web/view.cpp in place of menus
import { actions, core, draw, forgetOldFiles, give, host, outputFolder } from "./worker.js";
import { removeBelow, starting, withText, writtenBelow } from "./worker.js";

/** @typedef {import("./messages").ViewAnswer} ViewAnswer */
/** @typedef {import("./messages").ViewOptions} ViewOptions */

const passedOn = new Set(["progress", "progress-steps", "progress-close"]);
const { tell } = host;

// What the program has said during an action.
const heard = { box: "", cause: "", notice: "", facts: "", refused: [""].slice(1) };
let texturePath = "";

host.tell = (what, id, value, text) => {
    if (what === "box") heard.box = text.split("\n").slice(1).join("\n");
    else if (what === "refused") heard.refused.push(text);
    else if (what === "cause" || what === "notice" || what === "facts") heard[what] = text;
    else if (passedOn.has(what)) tell(what, id, value, text);
};

starting.begin = ({ width, height }) => {
    core._beginView(width, height);
};

/** @param {string} text @param {(pointer: number) => number} use @returns {number} */
function resultWith(text, use) {
    let result = 0;
    withText(text, (pointer) => (result = use(pointer)));
    return result;
}

// Runs an action. The message of a failure is that of the box, or the cause where there was no box.
/** @param {() => boolean | number} action @returns {ViewAnswer} */
function answerOf(action) {
    Object.assign(heard, { box: "", cause: "", notice: "", refused: [] });
    const ok = action();
    draw();
    const { box, cause, notice, refused } = heard;
    return { error: ok ? undefined : box || cause, notice, refused, files: [] };
}

function factsNow() {
    core._describeModel();
    return heard.facts;
}

// Gives the program all options again.
/** @param {ViewOptions} given */
function giveOptions({ options, texture }) {
    if (texture?.file) texturePath = `${give([{ path: texture.path, file: texture.file }])}/${texture.path}`;
    core._clearOptions();
    for (const [name, value] of options) {
        const text = name === "texture" && texture ? texturePath : value;
        withText(name, (first) => withText(text, (second) => core._giveOption(first, second)));
    }
}

// What the program writes by an action, the file that was asked for first.
/** @param {string} name */
function filesNamed(name) {
    const paths = writtenBelow(outputFolder);
    const files = paths.map((path) => ({ name: path.slice(outputFolder.length + 1), bytes: core.FS.readFile(path) }));
    return files.sort((a, b) => Number(b.name === name) - Number(a.name === name));
}

Object.assign(actions, {
    /** @param {Extract<import("./messages").ViewAction, { do: "openView" }>} request */
    async openView({ files, path, address, options }) {
        const answer = answerOf(() => {
            giveOptions(options);
            if (path) core.FS.chdir(give(files, address)); // names in the facts are relative, as the user knows them
            const opened = resultWith(path, core._openInView);
            core.FS.chdir(outputFolder);
            return opened;
        });
        forgetOldFiles();
        await new Promise((resolve) => setTimeout(resolve)); // the browser shows the picture before the facts are gathered
        return { ...answer, facts: factsNow() };
    },

    /** @param {Extract<import("./messages").ViewAction, { do: "look" }>} request */
    look({ options, turned }) {
        const answer = answerOf(() => {
            giveOptions(options);
            core._applyOptions(turned ? 1 : 0);
            return true;
        });
        forgetOldFiles();
        return answer;
    },

    /** @param {{ name: string }} request */
    tool: ({ name }) => ({ ...answerOf(() => resultWith(name, core._runToolInView)), facts: factsNow() }),

    /** @param {{ name: string }} request */
    save({ name }) {
        removeBelow(outputFolder);
        draw(); // the picture that is saved is the one that is due
        const answer = answerOf(() => resultWith(name, core._saveInView));
        if (!answer.error) answer.files = filesNamed(name);
        removeBelow(outputFolder);
        return answer;
    },
});
