// Loads the chunks of a report. Pages from disk may load scripts, but fetch nothing: a chunk is a script that calls
// `bradep.chunk`, or in a single file the text of a script element that is never run.

/** A chunk that is missing or damaged; the message is for the reader of the report. */
export class ChunkError extends Error {}

type Hold = (text: string) => void;

const expected = new Map<string, Hold>();

window.bradep = {
    chunk(name: string, text: string): void {
        expected.get(name)?.(text);
    },
};

const policy = window.trustedTypes?.createPolicy("bradep", { createScriptURL: (url) => url });

function scriptText(name: string): Promise<string> {
    return new Promise((resolve, reject) => {
        const script = document.createElement("script");
        const url = `data/${name}.js`;
        const end = (message?: string): void => {
            expected.delete(name);
            script.remove();
            if (message) reject(new ChunkError(message));
        };
        expected.set(name, (text) => {
            resolve(text);
            end();
        });
        script.onload = () => end(`The file ${url} of this report is damaged.`);
        script.onerror = () => end(`The file ${url} of this report is missing.`);
        script.src = policy ? policy.createScriptURL(url) : url;
        document.head.append(script);
    });
}

function bytesOfBase64(text: string): Uint8Array {
    const characters = atob(text);
    const bytes = new Uint8Array(characters.length);
    for (let i = 0; i < bytes.length; ++i) bytes[i] = characters.charCodeAt(i);
    return bytes;
}

async function inflate(base64: string): Promise<Uint8Array> {
    const stream = new Blob([bytesOfBase64(base64)]).stream().pipeThrough(new DecompressionStream("deflate-raw"));
    return new Uint8Array(await new Response(stream).arrayBuffer());
}

/** The content of a chunk. Each call loads it anew. */
export async function loadBytes(name: string): Promise<Uint8Array> {
    const inline = document.getElementById(`chunk-${name}`);
    const base64 = inline ? inline.textContent!.trim() : await scriptText(name);
    try {
        return await inflate(base64);
    } catch {
        throw new ChunkError(`The part "${name}" of this report is damaged.`);
    }
}

/** The content of a chunk as text. */
export async function loadText(name: string): Promise<string> {
    return new TextDecoder().decode(await loadBytes(name));
}

/** True if the page is a report of a single file. */
export function isSingleFile(): boolean {
    return document.getElementById("chunk-index") !== null;
}
