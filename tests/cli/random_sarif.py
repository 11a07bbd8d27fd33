"""Makes random logs that are valid by the schema of SARIF, with indices and ids that lead somewhere."""

from sarif_reference import DEFINITIONS

TEXTS = ["", "a", "b.c", "src/a b.c", "%SRCROOT%", "{0} and {1}", "é\u202e\u0000\n", "𝄞", "R1", "R1/x", "T1", "CWE", "x"]
IDS = ["R1", "R2", "R1/x", "T1", "T2"]
GUIDS = [f"{digit * 8}-89ab-4cde-8f01-23456789abcd" for digit in "0aF"]
# What import resolves, refuses or drops is made below, or not at all.
WITHOUT = {
    "run": {"externalPropertyFileReferences", "graphs", "translations", "policies"},
    "result": {"graphs", "graphTraversals"},
    "artifact": {"contents"},
}
# The list of the run that an index of such an object leads to.
LISTS = {
    "artifactLocation": "artifacts", "logicalLocation": "logicalLocations", "address": "addresses",
    "webRequest": "webRequests", "webResponse": "webResponses", "threadFlowLocation": "threadFlowLocations",
}
LENGTH = 3


DESCRIPTORS = [f"{kind}{at}" for kind in "RTN" for at in range(LENGTH)]


def component_guid(at):
    return f"{at:08x}-89ab-4cde-8f01-23456789abcd"


class Maker:
    def __init__(self, random):
        self.random = random

    def text(self):
        return self.random.choice(TEXTS)

    def anything(self, depth=2):
        kind = self.random.randrange(8 if depth else 6)
        if kind == 6:
            return [self.anything(depth - 1) for _ in range(self.random.randrange(3))]
        if kind == 7:
            return {self.text(): self.anything(depth - 1) for _ in range(self.random.randrange(3))}
        return [None, True, self.text(), self.random.randrange(-2**40, 2**40), self.random.uniform(-1e3, 1e3),
                self.random.choice([1e300, 5e-324, 0.1, 1e16, 2.0, 0.12345678901234567])][kind]

    def bag(self):
        bag = {self.text(): self.anything() for _ in range(self.random.randrange(3))}
        if self.random.random() < 0.3:
            bag["tags"] = self.random.sample(TEXTS, 2)
        return bag

    def value(self, schema, depth, name=""):
        if "$ref" in schema:
            return self.object(schema["$ref"].rsplit("/", 1)[1], depth)
        if "enum" in schema:
            return self.random.choice(schema["enum"])
        kind = schema["type"]
        if kind == "array":
            return self.list(schema, depth)
        if kind == "object":
            return {self.text(): self.value(schema["additionalProperties"], depth - 1)
                    for _ in range(self.random.randrange(3))}
        if kind == "boolean":
            return self.random.random() < 0.5
        if kind == "number":
            return self.random.choice([0, 1.5, 100, self.random.uniform(0, 100)])
        if kind == "integer":
            if name.lower().endswith("index"):
                return self.random.randrange(-1, LENGTH)
            return self.random.choice([1, 2, 7, 1000, 2**31 - 1])
        if "pattern" in schema:
            return {"^[0-9a-f": self.random.choice(GUIDS), "^[a-zA-Z": "en-US", "[0-9]+(\\": "1.2.3.4",
                    "[^/]+/.+": "text/plain"}[schema["pattern"][:8]]
        if name == "id":
            return self.random.choice(IDS)
        return self.text()

    def list(self, schema, depth):
        least = schema.get("minItems", 0)
        elements = [self.value(schema["items"], depth - 1) for _ in range(self.random.randrange(least, LENGTH + 1))]
        if not schema.get("uniqueItems"):
            return elements
        different = []
        for at, element in enumerate(elements):
            # What differs in an index alone is equal once it stands without.
            if isinstance(element, dict) and "properties" in element:
                element["properties"]["number"] = at
            elif isinstance(element, dict):
                element["properties"] = {"number": at}
        for element in elements:
            if not any(same(element, other) for other in different):
                different.append(element)
        return different

    def object(self, name, depth):
        if name == "propertyBag":
            return self.bag()
        definition = DEFINITIONS[name]
        properties = definition["properties"]
        needed = set(definition.get("required", []))
        for group in ("anyOf", "oneOf"):
            if group in definition:
                needed.add(self.random.choice(definition[group])["required"][0])
        made = {}
        for key, schema in properties.items():
            if key in WITHOUT.get(name, ()):
                continue
            chance = 0.25 if depth > 0 else 0
            if key in needed or self.random.random() < chance:
                made[key] = self.value(schema, depth - 1, key)
        return self.mended(name, made)

    def mended(self, name, made):
        """Without what import refuses: ids of messages that lead nowhere, and indices outside of lists."""
        if name == "message" and "id" in made and "text" not in made:
            made["text"] = self.text()
        if name == "reportingDescriptorReference":
            for key in ("id", "index", "guid"):
                made.pop(key, None)
            if self.random.random() < 0.5:
                made["id"] = self.random.choice(DESCRIPTORS)
            else:
                made["index"] = self.random.randrange(LENGTH)
        if name == "toolComponentReference":
            made = self.component_reference()
        return made

    def component_reference(self):
        at = self.random.randrange(LENGTH)
        return self.random.choice([
            {"index": at}, {"name": f"component {self.random.randrange(2 * LENGTH + 1)}"},
            {"index": at, "name": f"component {1 + at}"}, {"guid": component_guid(self.random.randrange(2 * LENGTH + 1))}])

    def run(self):
        depth = 7
        run = self.object("run", depth)
        properties = DEFINITIONS["run"]["properties"]
        for name, length in (*((one, LENGTH) for one in LISTS.values()), ("taxonomies", LENGTH)):
            items = properties[name]["items"]
            run[name] = self.distinct(items, length, depth - 3)
        run["tool"]["extensions"] = self.distinct({"$ref": "#/definitions/toolComponent"}, LENGTH, depth - 3)
        for at, one in enumerate([run["tool"]["driver"], *run["tool"]["extensions"], *run["taxonomies"]]):
            one["name"] = f"component {at}"
            one["guid"] = component_guid(at)
            for name in ("version", "semanticVersion"):
                if self.random.random() < 0.5:
                    one.pop(name, None)
            for name in ("rules", "taxa", "notifications"):
                one[name] = [self.named_descriptor(f"{name[0].upper()}{i}") for i in range(LENGTH)]
        run["results"] = [self.result(depth) for _ in range(self.random.randrange(6))]
        return run

    def named_descriptor(self, name):
        made = self.object("reportingDescriptor", 4)
        made["id"] = name
        made.pop("guid", None)
        return made

    def distinct(self, items, count, depth):
        return [self.named(self.value(items, depth), at) for at in range(count)]

    def named(self, value, at):
        value.pop("index", None)
        value["properties"] = {"number": at}  # no two are equal
        return value

    def result(self, depth):
        result = self.object("result", depth)
        if "ruleIndex" in result or "index" in result.get("rule", {}):
            result["ruleId"] = self.random.choice(IDS)
        return result


def same(one, other):
    """Equal as JSON: true is not 1."""
    if isinstance(one, bool) != isinstance(other, bool):
        return False
    if isinstance(one, dict) and isinstance(other, dict):
        return one.keys() == other.keys() and all(same(one[key], other[key]) for key in one)
    if isinstance(one, list) and isinstance(other, list):
        return len(one) == len(other) and all(map(same, one, other))
    return one == other


def log(random):
    maker = Maker(random)
    return {"version": "2.1.0", "runs": [maker.run() for _ in range(random.randrange(4))]}
