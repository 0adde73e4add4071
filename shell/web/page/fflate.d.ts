// fflate.d.ts - what the page uses of the package fflate, which scripts/page puts beside it
export function zipSync(files: { [name: string]: Uint8Array }): Uint8Array;
