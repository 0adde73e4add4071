// platform/web/host.js - the functions of platform/web/host.h; the worker that runs the program gives them their meaning
mergeInto(LibraryManager.library, {
    tellPage: function (what, id, value, text) {
        Module.host.tell(UTF8ToString(what), id, value, text ? UTF8ToString(text) : "");
    },
    // An address above 2 GiB comes as a negative number.
    showPixels: function (pixels, x, y, width, height) {
        pixels >>>= 0;
        Module.host.show(HEAPU8.subarray(pixels, pixels + 4 * width * height), x, y, width, height);
    },
    copyPixels: function (pixels, width, height) {
        pixels >>>= 0;
        Module.host.copy(HEAPU8.slice(pixels, pixels + 4 * width * height), width, height);
    },
    // The program cannot go on without the file, so it waits here, unless the worker has fetched it ahead.
    readPageFile: function (name, size) {
        const file = UTF8ToString(name);
        let bytes = Module.filesAhead && Module.filesAhead[file];
        if (!bytes) {
            const request = new XMLHttpRequest();
            request.open("GET", scriptDirectory + file, false);
            request.responseType = "arraybuffer";
            try {
                request.send();
            } catch (refused) {
                return 0;
            }
            if (request.status !== 200) return 0;
            bytes = new Uint8Array(request.response);
        }
        const pointer = _malloc(bytes.length) >>> 0;
        if (pointer === 0) return 0;
        if (Module.filesAhead) delete Module.filesAhead[file];
        HEAPU8.set(bytes, pointer);
        HEAPU32[size >>> 2] = bytes.length;
        return pointer;
    },
});
