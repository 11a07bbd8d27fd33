// Starts the page: what is small is shown first, the rest follows.

import { App, showFailure } from "./app";
import { ChunkError, loadText } from "./chunks";
import { fill, h, own } from "./dom";
import { Model } from "./model";
import type { Index } from "./table";
import { counted, plain } from "./text";

const FORMAT = 1;

async function start(root: HTMLElement): Promise<void> {
    const index: Index = JSON.parse(await loadText("index"));
    if (index.format !== FORMAT) throw new ChunkError("This report was written for another version of its page.");
    document.title = plain(index.title) || document.title;
    fill(root, h("div", { class: "loading" }, h("h1", {}, own(index.title || "Report")), h("p", { role: "status" }, `Loading ${counted(index.findings, "finding")} …`)));
    const model = await Model.load(index);
    const app = new App(model, root);
    performance.mark("bradep-overview");
    await model.loadMessages();
    app.messagesCame();
    performance.mark("bradep-ready");
}

const root = document.getElementById("app")!;
start(root).catch((error: Error) => {
    console.error(error);
    showFailure(root, error);
});
