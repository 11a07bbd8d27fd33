// Runs SQL in DuckDB. What stands in `node_modules` of the present directory is used:
//
//   node duckdb.mjs DATABASE DIRECTORY < STATEMENTS.sql
//
// The statements run in DIRECTORY. Prints each row of the last one as a JSON array on a line; its
// columns must be texts.

import {createRequire} from 'node:module';
import {readFileSync} from 'node:fs';
import path from 'node:path';
import process from 'node:process';

const require = createRequire(path.join(process.cwd(), 'package.json'));
const {DuckDBInstance} = require('@duckdb/node-api');

const [database, directory] = process.argv.slice(2).map((name) => path.resolve(name));
const statements = readFileSync(0, 'utf8');
process.chdir(directory);
const instance = await DuckDBInstance.create(database);
const connection = await instance.connect();
const extracted = await connection.extractStatements(statements);
let result;
for (let i = 0; i < extracted.count; ++i) {
  const prepared = await extracted.prepare(i);
  result = await prepared.run();
}
for (const row of await result.getRows())
  process.stdout.write(JSON.stringify(row) + '\n');
connection.closeSync();
instance.closeSync();
