// service-worker.js - keeps the page's files, so that it works without a network after the first visit
//
// scripts/page writes the list of files and a name that changes with their contents in place of the two words.
const version = "VERSION";
const files = ["FILES"];

self.addEventListener("install", (event) => {
    event.waitUntil(
        caches
            .open(version)
            .then((cache) => cache.addAll(files))
            .then(() => self.skipWaiting()),
    );
});

self.addEventListener("activate", (event) => {
    event.waitUntil(
        caches
            .keys()
            .then((names) => Promise.all(names.filter((name) => name !== version).map((name) => caches.delete(name))))
            .then(() => self.clients.claim()),
    );
});

self.addEventListener("fetch", (event) => {
    event.respondWith(
        caches
            .match(event.request, { ignoreSearch: event.request.mode === "navigate" })
            .then((kept) => kept ?? fetch(event.request)),
    );
});
