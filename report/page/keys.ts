// The keys of the page, and the dialog that shows them.

import { h } from "./dom";

export interface Key {
    keys: string[];
    text: string;
    /** Called when one of the keys is pressed outside of text fields; returns false if there is nothing to do. */
    action?: () => boolean | void;
}

const SWITCH = "bradep-letters-off";

function lettersAreOff(): boolean {
    try {
        return localStorage.getItem(SWITCH) === "yes";
    } catch {
        return false;
    }
}

function setLettersOff(off: boolean): void {
    try {
        localStorage.setItem(SWITCH, off ? "yes" : "no");
    } catch {
        // then the switch holds for nothing; keys with letters stay on
    }
}

function isTyping(target: EventTarget | null): boolean {
    return target instanceof HTMLElement && target.matches("input:not([type=checkbox]), textarea, select");
}

/** Has keys act. Those of other elements, which stop the event, come first. */
export function listen(keys: Key[]): void {
    document.addEventListener("keydown", (event) => {
        if (event.altKey || event.ctrlKey || event.metaKey || event.defaultPrevented) return;
        if (isTyping(event.target) && event.key !== "Escape") return;
        if (document.querySelector("dialog[open]")) return;
        if (event.key.length === 1 && event.key !== "?" && lettersAreOff()) return;
        const key = keys.find((one) => one.keys.includes(event.key) && one.action);
        if (key && key.action!() !== false) event.preventDefault();
    });
}

/** Shows the keys. */
export function showKeys(keys: Key[]): void {
    const rows = keys.map(({ keys: names, text }) =>
        h("div", {}, h("dt", {}, names.flatMap((name, i) => [i ? " " : null, h("kbd", {}, name)])), h("dd", {}, text)));
    const off = h("input", {
        type: "checkbox",
        checked: lettersAreOff(),
        onchange: (event: Event) => setLettersOff((event.target as HTMLInputElement).checked),
    });
    const close = h("button", { type: "submit", autofocus: true }, "Close");
    const dialog = h("dialog", { "aria-labelledby": "keys-title" },
        h("form", { method: "dialog" }, h("h2", { id: "keys-title" }, "Keys"), h("dl", { class: "keys" }, rows),
            h("p", {}, h("label", {}, off, " Only “?”, no other keys of one character")), close));
    dialog.addEventListener("close", () => dialog.remove());
    document.body.append(dialog);
    dialog.showModal();
}
