"""Databases that exports are loaded into. Each has the same functions."""

import json
import os
import pathlib
import subprocess

SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "engines"

def run(*command, **options):
    done = subprocess.run(list(map(str, command)), capture_output=True, text=True, check=False, **options)
    assert done.returncode == 0, f"{command[:4]}: {done.stderr[-2000:]}"
    return done.stdout


def shown(cell):
    """A cell as `bradep sql` prints it. Engines print infinite numbers in their own ways."""
    infinite = {"Infinity": "inf", "-Infinity": "-inf", float("inf"): "inf", float("-inf"): "-inf"}
    return infinite.get(cell, cell)


def rows(lines):
    """The rows that an engine prints as JSON objects."""
    return [[shown(cell) for cell in json.loads(line).values()] for line in lines if line]


def size_of(*directories):
    """How much of the disk directories take, in bytes."""
    return sum(int(run("du", "-s", "--block-size=1", directory).split()[0]) for directory in directories)


class DuckDb:
    name = "duckdb"

    def __init__(self, modules, files, database):
        self.modules = modules
        self.file = files / f"{database}.duckdb"
        self.file.unlink(missing_ok=True)

    def sql(self, text, directory="."):
        return run("node", SCRIPTS / "duckdb.mjs", self.file, directory, input=text, cwd=self.modules)

    def load(self, directory):
        self.sql((directory / "schema" / "load_duckdb.sql").read_text(), directory)

    def ask(self, text):
        """As JSON: conversions to objects of JavaScript lose a byte order mark and long integers."""
        printed = self.sql(f"SELECT to_json(question)::VARCHAR FROM (\n{text}\n) AS question")
        return rows(json.loads(line)[0] for line in printed.split("\n") if line)

    def size(self):
        return size_of(self.file)


class PostgreSql:
    name = "postgresql"

    def __init__(self, modules, files, database):
        port = os.environ.get("BRADEP_POSTGRESQL_PORT", "54329")
        server = ["--host", "127.0.0.1", "--port", port, "--username", "bradep"]
        run("dropdb", *server, "--if-exists", database)
        run("createdb", *server, database)
        self.arguments = [*server, database]

    def sql(self, text):
        return run("psql", "--no-psqlrc", "--quiet", "-At", "-v", "ON_ERROR_STOP=1", "-f", "-", *self.arguments,
                   input=text)

    def load(self, directory):
        run(directory / "schema" / "load_postgresql.sh", *self.arguments)

    def ask(self, text):
        return rows(self.sql(f"SELECT row_to_json(question) FROM (\n{text}\n) AS question").split("\n"))

    def size(self):
        return int(self.sql("SELECT pg_database_size(current_database())"))


class ClickHouse:
    name = "clickhouse"

    def __init__(self, modules, files, database):
        self.database = database
        port = int(os.environ.get("BRADEP_CLICKHOUSE_PORT", "54330"))
        self.hosts = [f"127.0.0.1:{port}", f"127.0.0.1:{port + 1}"]
        for host in self.hosts:
            self.sql(f"DROP DATABASE IF EXISTS {database}", host, "default")
            self.sql(f"CREATE DATABASE {database}", host, "default")

    def sql(self, text, host=None, database=None):
        name, port = (host or self.hosts[0]).split(":")
        return run("clickhouse-client", "--host", name, "--port", port, "--database",
                   database or self.database, "--multiquery", "--output_format_json_quote_64bit_integers=0",
                   "--output_format_json_quote_denormals=1", "--query", text)

    def load(self, directory):
        run(directory / "schema" / "load_clickhouse.sh", self.database, *self.hosts)

    def ask(self, text):
        return rows(self.sql(f"{text}\nFORMAT JSONEachRow").split("\n"))

    def size(self):
        return sum(int(self.sql("SELECT sum(bytes) FROM system.parts WHERE active AND database = "
                                f"'{self.database}'", host)) for host in self.hosts)


ENGINES = [DuckDb, PostgreSql, ClickHouse]
