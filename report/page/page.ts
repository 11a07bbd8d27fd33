// What the parts of the page share: the open report, what is shown of it, and how that is changed.

import type { State } from "./hash";
import type { Model } from "./model";

export interface Page {
    readonly model: Model;
    readonly state: State;
    /** Shows something else. With `replace` the browser's back button does not return to what was shown before. */
    go(change: Partial<State>, replace?: boolean): void;
    /** The address of something else, as the fragment of a link. */
    link(change: Partial<State>): string;
}

/** What a dimension's empty text is called. */
export function nameOf(text: string): string {
    return text === "" ? "(none)" : text;
}
