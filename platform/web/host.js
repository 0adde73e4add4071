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
});
