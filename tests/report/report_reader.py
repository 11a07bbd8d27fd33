"""Reads reports: directories, and single files."""

import array
import base64
import html.parser
import json
import pathlib
import re
import sys
import zlib

CALL = re.compile(r'bradep\.chunk\("([-a-z0-9]+)", "([A-Za-z0-9+/]*={0,2})"\);\n')
TYPES = {"u8": "B", "u16": "H", "u32": "I"}


def content(packed):
    return zlib.decompress(base64.b64decode(packed, validate=True), -zlib.MAX_WBITS)


class Page(html.parser.HTMLParser):
    """The elements of a single-file report."""

    def __init__(self, text):
        super().__init__()
        self.policy = self.open = None
        self.elements = []  # (tag, attributes, text)
        self.title = ""
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        if tag == "meta" and attributes.get("http-equiv") == "Content-Security-Policy":
            self.policy = attributes["content"]
        self.open = tag
        self.elements.append([tag, attributes, ""])

    def handle_endtag(self, tag):
        self.open = None

    def handle_data(self, data):
        if self.open:
            self.elements[-1][2] += data


class Report:
    def __init__(self, path):
        self.path = pathlib.Path(path)
        if self.path.is_dir():
            self.names = sorted(file.stem for file in (self.path / "data").iterdir())
            self.read = self.of_file
        else:
            page = Page(self.path.read_text(encoding="utf-8"))
            self.elements = {attributes["id"].removeprefix("chunk-"): text for tag, attributes, text in page.elements
                             if tag == "script" and attributes.get("type") == "text/plain"}
            self.names = sorted(self.elements)
            self.read = lambda name: self.elements[name]
        self.index = self.json("index")

    def of_file(self, name):
        match = CALL.fullmatch((self.path / "data" / f"{name}.js").read_text(encoding="ascii"))
        assert match and match[1] == name, name
        return match[2]

    def bytes(self, name):
        return content(self.read(name))

    def json(self, name):
        return json.loads(self.bytes(name))

    def columns(self):
        """The values of each column, with texts instead of their numbers."""
        data = self.bytes("columns")
        columns = {}
        texts = {**self.index["dictionaries"], "message": self.json("messages")}
        for column in self.index["columns"]:
            values = array.array(TYPES[column["type"]])
            size = values.itemsize * self.index["findings"]
            values.frombytes(data[:size])
            data = data[size:]
            if sys.byteorder == "big":
                values.byteswap()
            name = column["name"]
            columns[name] = [texts[name][value] for value in values] if name in texts else list(values)
        assert not data
        return columns

    def details(self):
        size = self.index["chunk_size"]
        chunks = [self.json(f"details-{i}") for i in range(-(-self.index["findings"] // size))]
        assert all(len(chunk) == size for chunk in chunks[:-1])
        return [one for chunk in chunks for one in chunk]

    def runs(self):
        return self.json("runs")

    def source(self, uri):
        return self.json(f"source-{self.index['source']['files'][uri]}")
