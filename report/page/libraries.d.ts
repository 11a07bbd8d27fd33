// What the page uses of libraries and of newer browsers, as far as no package declares it.

declare module "markdown-it" {
    export interface Token {
        content: string;
    }
    interface Options {
        html?: boolean;
        linkify?: boolean;
        typographer?: boolean;
        maxNesting?: number;
    }
    export default class MarkdownIt {
        constructor(options?: Options);
        renderer: { rules: Record<string, (tokens: Token[], index: number) => string> };
        utils: { escapeHtml(text: string): string };
        render(text: string): string;
    }
}

declare module "dompurify" {
    interface Options {
        ALLOWED_TAGS?: string[];
        ALLOWED_ATTR?: string[];
        ALLOW_DATA_ATTR?: boolean;
        ALLOW_ARIA_ATTR?: boolean;
        RETURN_DOM_FRAGMENT: true;
    }
    const purify: { sanitize(markup: string, options: Options): DocumentFragment };
    export default purify;
}

declare module "d3-hierarchy" {
    export interface Rectangle<Datum> {
        data: Datum;
        value: number;
        x0: number;
        x1: number;
        y0: number;
        y1: number;
        children?: Rectangle<Datum>[];
        leaves(): Rectangle<Datum>[];
    }
    export interface Root<Datum> extends Rectangle<Datum> {
        sum(value: (datum: Datum) => number): this;
        sort(compare: (a: Rectangle<Datum>, b: Rectangle<Datum>) => number): this;
    }
    export interface Treemap<Datum> {
        (root: Root<Datum>): Rectangle<Datum>;
        size(size: [number, number]): this;
        paddingInner(padding: number): this;
    }
    export function hierarchy<Datum>(data: Datum, children: (datum: Datum) => Datum[] | null): Root<Datum>;
    export function treemap<Datum>(): Treemap<Datum>;
}

declare module "d3-scale" {
    export interface Linear {
        (value: number): number;
        domain(values: number[]): this;
        range(values: number[]): this;
        nice(count?: number): this;
        ticks(count: number): number[];
    }
    export function scaleLinear(): Linear;
}

declare module "d3-shape" {
    export interface Line<Datum> {
        (data: Datum[]): string | null;
        x(place: (datum: Datum, index: number) => number): this;
        y(place: (datum: Datum, index: number) => number): this;
    }
    export function line<Datum>(): Line<Datum>;
}

interface TrustedPolicy {
    createScriptURL(url: string): string;
}

interface Window {
    bradep: { chunk(name: string, text: string): void };
    trustedTypes?: {
        createPolicy(name: string, rules: { createScriptURL(url: string): string }): TrustedPolicy;
    };
}

declare class DecompressionStream {
    constructor(format: "deflate-raw");
    readonly readable: ReadableStream<Uint8Array>;
    readonly writable: WritableStream<BufferSource>;
}
