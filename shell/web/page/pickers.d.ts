// pickers.d.ts - what some browsers have for files by handles; the others lack it
export {};

interface FileType {
    description?: string;
    accept: { [type: string]: string[] };
}

declare global {
    interface Window {
        showOpenFilePicker?(options?: { multiple?: boolean; types?: FileType[] }): Promise<FileSystemFileHandle[]>;
        showDirectoryPicker?(options?: {
            id?: string;
            mode?: "read" | "readwrite";
        }): Promise<FileSystemDirectoryHandle>;
    }

    interface DataTransferItem {
        getAsFileSystemHandle?(): Promise<FileSystemHandle | null>;
    }
}
