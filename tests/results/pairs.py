"""Pairs of sources and logs in which it is known which findings are the same.

A world has files of functions of lines, and findings at lines. The new world is the old one after every kind
of edit; a finding that is in both keeps its number.
"""

import collections
import copy
import dataclasses
import json
import pathlib
import random
import urllib.parse

RULES = {
    "memory/leak": ("error", "Memory that '{0}' points to is leaked"),
    "memory/use-after-free": ("error", "'{0}' is used after it was freed"),
    "numeric/division": ("error", "Division by '{0}', which can be 0"),
    "flow/dead-store": ("warning", "The value that is stored to '{0}' is never read"),
    "flow/unchecked": ("warning", "The return value is not checked"),
    "style/long": ("note", "Function has too many lines"),
    "api/bounds": ("warning", "Index {1} of '{0}' is beyond its {2} elements"),
    "flow/shadow": ("note", "'{0}' hides another variable"),
}
# Messages that say where something else is.
WITH_PLACES = {
    "flow/shadow": ["declared at line {}", "see {}"],
    "memory/leak": ["allocated at line {}", "allocated here: {}"],
}
NAMES = [f"{a}{b}" for a in ["buf", "ptr", "node", "count", "size", "name", "head", "item"]
         for b in ["", "2", "_len", "_next"]]


@dataclasses.dataclass
class Config:
    """What a log holds, and what moves as a whole."""
    fingerprints: bool = False
    shared_fingerprints: bool = False
    text: str = "none"  # none, snippet, context, embedded or source
    functions: bool = True
    roots: tuple = ("", "")  # what stands before the paths of both sides
    same_order: bool = False

    def __str__(self):
        return " ".join(f"{field.name}={getattr(self, field.name)}" for field in dataclasses.fields(self))


ROOTS = [("", ""), ("/home/a/project/", "/build/42/project/"), ("C:\\work\\", "file:///d:/jenkins/ws/"),
         ("project-1.0/", "project-1.1/"), ("file:///src/", "/src/"), ("", "/checkout/")]
CONFIGS = [Config(text=text, functions=functions, fingerprints=fingerprints, shared_fingerprints=shared)
           for text in ["none", "snippet", "context", "embedded", "source"]
           for functions in [True, False]
           for fingerprints, shared in [(False, False), (True, False), (False, True)]]


@dataclasses.dataclass
class Finding:
    number: int
    rule: str
    level: str
    message: str
    place: tuple  # None, or a form of a place and the line that it names
    line: int
    column: int
    flow: list
    suppressed: bool = False


class World:
    def __init__(self):
        self.files = {}      # number: [path, functions]
        self.functions = {}  # number: [name, lines]
        self.texts = {}      # line: text
        self.findings = {}   # number: Finding

    def lines_of(self, file):
        for function in self.files[file][1]:
            yield from self.functions[function][1]

    def places(self):
        """The file, number and function of each line."""
        places = {}
        for file, (_, functions) in self.files.items():
            number = 1
            for function in functions:
                number += 1  # the head of the function
                for line in self.functions[function][1]:
                    places[line] = (file, number, function)
                    number += 1
                number += 1  # its end
        return places

    def source(self, file):
        lines = []
        for function in self.files[file][1]:
            name, own = self.functions[function]
            lines.append(f"static int {name}(void) {{")
            lines += [self.texts[line] for line in own]
            lines.append("}")
        return "\n".join(lines) + "\n"


class Maker:
    """Makes an old world and edits it."""

    def __init__(self, rng, findings, config):
        self.rng, self.wanted, self.config = rng, findings, config
        self.next = 0
        self.old = World()
        self.changed = collections.defaultdict(set)  # by number of the finding: what differs
        self.fill()
        self.new = copy.deepcopy(self.old)
        self.edit()

    def number(self):
        self.next += 1
        return self.next

    def line(self, world, text):
        number = self.number()
        world.texts[number] = text
        return number

    def filler(self, world):
        rng = self.rng
        text = rng.choice(["    x{0} = f{1}(y{0});", "    if (x{0} > {1}) g{1}();", "    call_{0}({1});", "",
                           "    }}", "    total += {0};"])
        return self.line(world, text.format(rng.randrange(500), rng.randrange(50)))

    def fill(self):
        rng, world = self.rng, self.old
        files = max(3, self.wanted // 25)
        for i in range(files):
            directory = rng.choice(["src", "src/net", "src/core", "lib/größe", "tests"])
            world.files[self.number()] = [f"{directory}/file{i}.c", []]
        while len(world.findings) < self.wanted:
            self.add_function(world, rng.choice(list(world.files)))

    def add_function(self, world, file):
        rng, number = self.rng, self.number()
        own = [self.filler(world) for _ in range(rng.randint(4, 15))]
        world.functions[number] = [f"fun{number}", own]
        world.files[file][1].append(number)
        for _ in range(rng.choice([0, 1, 1, 2, 3])):
            self.add_finding(world, number)

    def flagged_text(self, rule, name):
        return f"    {rule.split('/')[1].replace('-', '_')}({name});"

    def add_finding(self, world, function):
        """Also findings that are equal to it, at other lines or at the same one."""
        rng = self.rng
        rule = rng.choice(list(RULES))
        level, message = RULES[rule]
        name = rng.choice(NAMES)
        message = message.format(name, rng.randint(4, 9), rng.randint(2, 4))
        own = world.functions[function][1]
        text = self.flagged_text(rule, name)
        flow = [(rng.choice(own), rng.choice(["taken here", "assumed to be 0", "freed here"]))
                for _ in range(rng.choice([0, 0, 2, 4]))]
        place = None
        if rule in WITH_PLACES and rng.random() < 0.5:
            place = (rng.choice(WITH_PLACES[rule]), rng.choice(own))
        copies = rng.choice([1] * 12 + [2, 3, 5])
        at_one_line = rng.random() < 0.2
        line = None
        for _ in range(copies):
            if line is None or not at_one_line:
                line = self.line(world, text)
                own.insert(rng.randint(0, len(own)), line)
            number = self.number()
            world.findings[number] = Finding(number, rule, level, message, place, line, rng.randint(1, 40), flow)
            if copies > 1:
                world.findings[number].column = 5

    # Edits of the new world.

    def edit(self):
        self.places = self.new.places()
        self.needed = self.lines_named(self.new.findings.values())
        self.insert_and_remove_lines()
        self.move_functions()
        self.rename_files()
        self.remove_findings()
        self.change_findings()
        self.plant_findings()

    def lines_named(self, findings):
        return {line for one in findings for line in
                [one.line, *(line for line, _ in one.flow), *([one.place[1]] if one.place else [])]}

    def some(self, values, share):
        values = list(values)
        return self.rng.sample(values, max(1, int(len(values) * share)))

    def insert_and_remove_lines(self):
        rng = self.rng
        for function in self.some(self.new.functions, 0.3):
            own = self.new.functions[function][1]
            at = rng.randint(0, len(own))
            own[at:at] = [self.filler(self.new) for _ in range(rng.randint(1, 9))]
        for function in self.some(self.new.functions, 0.2):
            own = self.new.functions[function][1]
            kept = [line for line in own if line in self.needed or rng.random() < 0.7]
            own[:] = kept

    def move_functions(self):
        # With nothing else to go by, equal findings are told apart by their order alone.
        is_bare = self.config.text == "none" and not self.config.functions
        for file in [] if is_bare else self.some(self.new.files, 0.1):
            self.rng.shuffle(self.new.files[file][1])
        # To another file: only if something besides the message can tell.
        if not self.config.functions:
            return
        for function in self.some(self.new.functions, 0.01):
            if not self.may_move(function):
                continue
            source = next(file for file, (_, own) in self.new.files.items() if function in own)
            target = self.rng.choice(list(self.new.files))
            self.new.files[source][1].remove(function)
            self.new.files[target][1].append(function)

    def may_move(self, function):
        return True

    def kinds_in(self, world):
        kinds = collections.defaultdict(set)
        places = world.places()
        for one in world.findings.values():
            kinds[places[one.line][0]].add((one.rule, one.message))
        return kinds

    def rename_files(self):
        kinds = self.kinds_in(self.old)
        many = [file for file in self.new.files if len(kinds[file]) >= 6]
        for file in self.some(many, 0.05) if many else []:
            path = self.new.files[file][0]
            self.new.files[file][0] = f"{path.rpartition('/')[0]}/renamed{file}.c"

    def class_of(self, world, places, one):
        return one.rule, one.message, places[one.line][0]

    def remove_findings(self):
        places = self.new.places()
        self.removed = set()
        for number in self.some(self.new.findings, 0.05):
            one = self.new.findings.pop(number)
            self.removed.add(self.class_of(self.new, places, one))

    def change_findings(self):
        rng = self.rng
        places = self.old.places()
        counts = collections.Counter(self.class_of(self.old, places, one) for one in self.known_findings())
        for number in self.some(self.new.findings, 0.08):
            one = self.new.findings[number]
            is_single = counts[self.class_of(self.old, places, one)] == 1
            what = rng.choice(["level", "message", "suppressed", "flow", "flow", "number"])
            if what == "level":
                one.level = {"error": "warning", "warning": "note", "note": "error"}[one.level]
            elif what == "suppressed":
                one.suppressed = True
            elif what == "flow" and one.flow:
                self.change_flow(one)
            elif what == "message" and is_single and self.config.text != "none":
                one.message += " (on some path)"
            elif what == "number" and is_single and one.rule == "api/bounds" and self.config.text != "none":
                one.message = one.message.replace("Index ", "Index 1")
            else:
                continue
            self.changed[number].add({"number": "message"}.get(what, what))

    def known_findings(self):
        return self.old.findings.values()

    def change_flow(self, one):
        flow = list(one.flow)
        at = self.rng.randrange(len(flow))
        change = self.rng.choice(["message", "insert", "remove"])
        if change == "message":
            flow[at] = (flow[at][0], flow[at][1] + " again")
        elif change == "insert":
            flow.insert(at, (flow[at][0], "passed on"))
        else:
            del flow[at]
        one.flow = flow

    def plant_findings(self):
        rng = self.rng
        places = self.new.places()
        removed = self.removed
        # Without the text of lines, a new finding could not be told from one that has changed, nor from one that is
        # gone and whose message could have changed.
        if is_bare := self.config.text == "none":
            removed |= {self.class_of(self.new, places, self.new.findings[number]) for number in self.changed}
            removed = {(rule, file) for rule, _, file in removed}
        for function in self.some(self.new.functions, 0.08):
            rule = rng.choice(list(RULES))
            level, message = RULES[rule]
            name = rng.choice(NAMES)
            message = message.format(name, rng.randint(4, 9), rng.randint(2, 4))
            own = self.new.functions[function][1]
            if not own:
                continue
            file = places[own[0]][0]
            if ((rule, file) if is_bare else (rule, message, file)) in removed:
                continue
            line = self.line(self.new, self.flagged_text(rule, name) + f"  // {self.next}")
            own.insert(rng.randint(0, len(own)), line)
            number = self.number()
            self.new.findings[number] = Finding(number, rule, level, message, None, line, rng.randint(1, 40), [])


class SeriesMaker(Maker):
    """Makes one world after another. Findings that are gone can come back."""

    def __init__(self, rng, findings, config):
        self.gone = {}  # number: Finding
        super().__init__(rng, findings, config)

    def next_world(self):
        self.old, self.new = self.new, copy.deepcopy(self.new)
        self.changed.clear()
        self.edit()

    def insert_and_remove_lines(self):
        self.needed |= self.lines_named(self.gone.values())
        self.staying = set()
        super().insert_and_remove_lines()

    def may_move(self, function):
        """With findings that are gone: only if one that stays shows where it has moved to."""
        own = set(self.new.functions[function][1])
        staying = [number for number, one in self.new.findings.items() if one.line in own]
        self.staying |= set(staying[:1])
        return bool(staying) or not any(one.line in own for one in self.gone.values())

    def known_findings(self):
        """Also those that are gone, and those that come back now."""
        return (self.old.findings | self.gone | self.new.findings).values()

    def like(self, places, one):
        """What a finding that is gone has in common with those that could be taken for it."""
        kind = self.class_of(self.new, places, one)
        return kind if self.config.text != "none" else (kind[0], kind[2])

    def remove_findings(self):
        before, places = dict(self.new.findings), self.new.places()
        super().remove_findings()
        self.new.findings |= {number: before[number] for number in self.staying}
        removed = {number: before[number] for number in before.keys() - self.new.findings.keys()}
        likes = {self.like(places, one) for one in removed.values()}
        for number in self.some(self.gone, 0.3) if self.gone else []:
            if self.like(places, self.gone[number]) not in likes:
                self.new.findings[number] = self.gone.pop(number)
        self.gone |= removed

    def plant_findings(self):
        places = self.new.places()
        self.removed |= {self.class_of(self.new, places, one) for one in self.gone.values()}
        super().plant_findings()


class Log:
    """A world as a SARIF log. `keys` are the findings by their keys in the imported result set."""

    def __init__(self, world, config, root, rng):
        self.world, self.config, self.root = world, config, root
        self.places = world.places()
        self.sources = {file: world.source(file).splitlines() for file in world.files}
        findings = list(world.findings.values())
        if not config.same_order:
            rng.shuffle(findings)
        self.keys = {}
        ordinals = collections.Counter()
        for one in findings:
            uri = self.uri(self.places[one.line][0])
            ordinals[uri] += 1
            self.keys[f"{uri}:{ordinals[uri]}"] = one.number
        self.log = {"version": "2.1.0", "runs": [{
            "tool": {"driver": {"name": "Maker"}}, "results": [self.result(one) for one in findings]}]}
        if config.text == "embedded":
            self.log["runs"][0]["artifacts"] = [
                {"location": {"uri": self.uri(file)}, "contents": {"text": world.source(file)}}
                for file in world.files]

    def path(self, file):
        return self.world.files[file][0]

    def uri(self, file):
        path = self.path(file)
        return self.root + (urllib.parse.quote(path) if self.root.startswith("file:") else path)

    def shown_path(self, file):
        """As people write it."""
        return self.root.removeprefix("file:///" if ":/" in self.root[6:] else "file://") + self.path(file)

    def location(self, line, column=None):
        file, number, function = self.places[line]
        region = {"startLine": number}
        if column:
            region["startColumn"] = column
        place = {"artifactLocation": {"uri": self.uri(file)}, "region": region}
        source = self.sources[file]
        if self.config.text == "snippet":
            region["snippet"] = {"text": source[number - 1]}
        elif self.config.text == "context":
            first, last = max(1, number - 3), min(len(source), number + 3)
            place["contextRegion"] = {"startLine": first,
                                      "snippet": {"text": "\n".join(source[first - 1:last]) + "\n"}}
        location = {"physicalLocation": place}
        if self.config.functions:
            location["logicalLocations"] = [{"name": self.world.functions[function][0], "kind": "function"}]
        return location

    def message(self, one):
        if not one.place:
            return one.message
        form, line = one.place
        file, number, _ = self.places[line]
        is_line = "line" in form
        return f"{one.message}, {form.format(number if is_line else f'{self.shown_path(file)}:{number}:3')}"

    def result(self, one):
        result = {"ruleId": one.rule, "level": one.level, "message": {"text": self.message(one)},
                  "locations": [self.location(one.line, one.column)]}
        if one.flow:
            result["codeFlows"] = [{"threadFlows": [{"locations": [
                {"location": self.location(line) | {"message": {"text": text}}} for line, text in one.flow]}]}]
        if one.suppressed:
            result["suppressions"] = [{"kind": "inSource"}]
        if self.config.fingerprints:
            result["fingerprints"] = {"id/v1": f"{one.number:08x}"}
        if self.config.shared_fingerprints:
            result["partialFingerprints"] = {"rule/v1": one.rule}
        return result

    def group(self, number):
        """What can be known of a finding: findings of one group can be exchanged."""
        one = self.world.findings[number]
        file, _, function = self.places[one.line]
        return (one.rule, one.message, one.place and one.place[0], file,
                function if self.config.functions else None,
                self.world.texts[one.line] if self.config.text != "none" else None)

    def write(self, path, sources):
        path.write_text(json.dumps(self.log), encoding="utf-8")
        if self.config.text == "source":
            for file in self.world.files:
                source = pathlib.Path(sources) / self.path(file)
                source.parent.mkdir(parents=True, exist_ok=True)
                source.write_text(self.world.source(file), encoding="utf-8")


class Pair:
    """An old and a new log, and what is true of their findings."""

    def __init__(self, seed, findings, config):
        rng = random.Random(seed)
        maker = Maker(rng, findings, config)
        self.config, self.changed = config, maker.changed
        self.old = Log(maker.old, config, config.roots[0], rng)
        self.new = Log(maker.new, config, config.roots[1], rng)

    def mistakes(self, diff):
        """What is wrong in the JSON of a diff."""
        olds, news = self.old.world.findings, self.new.world.findings
        expected = collections.Counter()
        for number in olds.keys() | news.keys():
            old = self.old.group(number) if number in olds else None
            new = self.new.group(number) if number in news else None
            kind = ("absent" if new is None else "new" if old is None
                    else "updated" if number in self.changed else "unchanged")
            expected[kind, old, new, self.paths(number) if kind == "updated" else ()] += 1
        found = collections.Counter()
        for one in diff["findings"]:
            old = self.old.group(self.old.keys[one["old"]]) if one["old"] else None
            new = self.new.group(self.new.keys[one["new"]]) if one["new"] else None
            paths = tuple(sorted({change["path"].partition("[")[0] for change in one["changes"]}))
            found[one["state"], old, new, tuple("flow" if path == "flows" else path for path in paths)] += 1
        mistakes = [f"not found: {count} {one}" for one, count in (expected - found).items()]
        return mistakes + [f"wrong: {count} {one}" for one, count in (found - expected).items()]

    def paths(self, number):
        return tuple(sorted(self.changed[number]))
