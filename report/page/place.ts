// Places in files, as locations of SARIF have them.

/** A part of a file; lines and columns count from 1, and the end column is one past the last character. */
export interface Region {
    startLine?: number;
    startColumn?: number;
    endLine?: number;
    endColumn?: number;
    charOffset?: number;
    charLength?: number;
    snippet?: { text?: string };
}

/** A location of SARIF, as far as the page reads it. */
export interface Location {
    id?: number;
    physicalLocation?: {
        artifactLocation?: { uri?: string; uriBaseId?: string };
        region?: Region;
        contextRegion?: Region;
    };
    logicalLocations?: { fullyQualifiedName?: string; name?: string; kind?: string }[];
    message?: { text?: string; markdown?: string };
    properties?: Record<string, unknown>;
}

export function uriOf(location: Location | undefined): string {
    const uri = location?.physicalLocation?.artifactLocation?.uri;
    return typeof uri === "string" ? uri : "";
}

export function regionOf(location: Location | undefined): Region {
    return location?.physicalLocation?.region ?? {};
}

export function functionOf(location: Location | undefined): string {
    const logical = location?.logicalLocations?.[0];
    return String(logical?.fullyQualifiedName ?? logical?.name ?? "");
}

export function messageOf(holder: { message?: { text?: string; markdown?: string } } | undefined): string {
    const text = holder?.message?.text ?? holder?.message?.markdown;
    return typeof text === "string" ? text : "";
}

/** The line and column of a region, as in ":12:5"; empty if it has no line. */
export function position(region: Region): string {
    if (!region.startLine) return "";
    return `:${region.startLine}${region.startColumn ? `:${region.startColumn}` : ""}`;
}
