// The flows of a finding: each thread of each code flow is one, with its steps.

import { functionOf, type Location, messageOf } from "../place";

/** A location of a thread flow, as SARIF has it. */
export interface FlowLocation {
    location?: Location;
    importance?: string;
    nestingLevel?: number;
    kinds?: string[];
    properties?: Record<string, unknown>;
}

export interface Flow {
    name: string;
    steps: FlowLocation[];
}

function nameOf(codeFlow: any, flow: number, flows: number, thread: any, threads: number): string {
    const parts = [flows > 1 ? `Flow ${flow + 1}` : "Flow"];
    if (messageOf(codeFlow)) parts.push(messageOf(codeFlow));
    if (threads > 1) parts.push(`thread ${messageOf(thread) || thread.id || ""}`);
    return parts.join(": ");
}

/** All flows of a result that have steps. */
export function flowsOf(result: Record<string, any>): Flow[] {
    const codeFlows: any[] = result.codeFlows ?? [];
    const flows = codeFlows.flatMap((codeFlow, flow) =>
        (codeFlow.threadFlows ?? []).map((thread: any): Flow => ({
            name: nameOf(codeFlow, flow, codeFlows.length, thread, codeFlow.threadFlows.length),
            steps: thread.locations ?? [],
        })),
    );
    return flows.filter((flow) => flow.steps.length > 0);
}

/** What a step says: its message, else what kind of step it is, else where it is. */
export function stepText(step: FlowLocation): string {
    return messageOf(step.location) || (step.kinds ?? []).join(", ") || functionOf(step.location);
}
