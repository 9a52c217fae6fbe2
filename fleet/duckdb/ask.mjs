// Asks DuckDB about lines of `driverlist collect` and snapshots, without any server:
//   node ask.mjs [--database FILE] [--folder FOLDER] [--crashes FILE] [--PARAMETER VALUE]... [QUESTION...]
// FOLDER holds *.jsonl files, of `driverlist collect`, and *.json files, of `driverlist snapshot`. Without a question, all are asked.
// Answers are tab-separated, with one line of names before each answer when several are asked.
import fs from 'node:fs';
import os from 'node:os';
import path from 'node:path';
import {createRequire} from 'node:module';
import {parseArgs} from 'node:util';

const here = import.meta.dirname ?? path.dirname(new URL(import.meta.url).pathname);
const modules = process.env.DRIVERINFO_FLEET_MODULES ?? path.join(here, '../../.deps/fleet/duckdb');

function duckDb() {
  try {
    return createRequire(path.join(modules, 'package.json'))('@duckdb/node-api').DuckDBInstance;
  } catch {
    throw new Error('DuckDB is not there; scripts/setup-fleet fetches it');
  }
}

const texts = ['database', 'folder', 'crashes', 'driver', 'version', 'host', 'from', 'since'];
const {values, positionals} = parseArgs({
  options: {...Object.fromEntries(texts.map((name) => [name, {type: 'string'}])), times: {type: 'boolean'}},
  allowPositionals: true,
});
const parameters = {driver: '', version: '', host: '', from: '1970-01-02 00:00:00', since: '1970-01-02 00:00:00', ...values};

const statements = (file) => fs.readFileSync(file, 'utf8').split(/;\s*\n/).filter((text) => text.replace(/--.*\n/g, '').trim());

// Of a text, only those parameters that it has.
function bound(sql, all) {
  const named = {};
  for (const [, name] of sql.replace(/--.*\n/g, '').matchAll(/\$([a-z]+)/g)) named[name] = all[name];
  return named;
}

// Each snapshot as the lines that `collect` would have written.
function linesOfSnapshot(file) {
  const {kind, drivers, ...head} = JSON.parse(fs.readFileSync(file, 'utf8'));
  if (kind !== 'driverlist snapshot') throw new Error(`${file} is not a snapshot of driverlist`);
  const lines = [{...head, kind: 'collection', drivers: drivers.length}, ...drivers.map((driver) => ({...head, ...driver}))];
  return lines.map((line) => JSON.stringify(line) + '\n').join('');
}

const escapes = {'\\': '\\\\', '\t': '\\t', '\n': '\\n', '\r': '\\r', '\0': '\\0', '\b': '\\b', '\f': '\\f', "'": "\\'"};
const cell = (value) => String(value ?? '').replace(/[\\\t\n\r\0\b\f']/g, (character) => escapes[character]);

async function load(connection, folder) {
  const files = fs.readdirSync(folder);
  const draft = fs.mkdtempSync(path.join(os.tmpdir(), 'driverlist-fleet-'));
  try {
    const sources = files.filter((name) => name.endsWith('.jsonl')).map((name) => path.join(folder, name));
    const snapshots = files.filter((name) => name.endsWith('.json'));
    for (const name of snapshots) {
      const lines = path.join(draft, name + 'l');
      fs.writeFileSync(lines, linesOfSnapshot(path.join(folder, name)));
      sources.push(lines);
    }
    if (!sources.length) throw new Error(`${folder} holds no *.jsonl and no *.json file`);
    const list = '[' + sources.map((file) => "'" + file.replaceAll("'", "''") + "'").join(', ') + ']';
    for (const statement of statements(path.join(here, 'load.sql'))) await connection.run(statement.replace('$lines', list));
  } finally {
    fs.rmSync(draft, {recursive: true});
  }
}

// Whoever reads may have enough.
process.stdout.on('error', () => process.exit(1));

async function main() {
  const instance = await duckDb().create(values.database ?? ':memory:');
  const connection = await instance.connect();
  await connection.run("SET TimeZone = 'UTC'");
  const started = performance.now();
  if (values.folder) await load(connection, values.folder);
  if (values.times && values.folder) console.log(`-- loaded in ${Math.round(performance.now() - started)} ms`);
  if (values.crashes) await connection.run(`INSERT INTO crash SELECT time, host_id, name, code FROM read_json('${values.crashes.replaceAll("'", "''")}',
    columns = {time: 'TIMESTAMP', host_id: 'VARCHAR', name: 'VARCHAR', code: 'VARCHAR'})`);
  const questions = path.join(here, 'questions');
  const all = fs.readdirSync(questions).map((name) => name.replace(/\.sql$/, '')).sort();
  for (const name of positionals.length ? positionals : all) {
    if (!all.includes(name)) throw new Error(`there is no question "${name}"; there are ${all.join(', ')}`);
    const sql = fs.readFileSync(path.join(questions, name + '.sql'), 'utf8');
    const start = performance.now();
    const result = await connection.runAndReadAll(sql, bound(sql, parameters));
    const time = Math.round(performance.now() - start);
    if (positionals.length !== 1) console.log(`-- ${name}${values.times ? `, ${time} ms` : ''}: ${sql.split('\n')[0].slice(3)}`);
    for (const row of result.getRows()) console.log(row.map(cell).join('\t'));
  }
  connection.closeSync?.();
  instance.closeSync?.();
}

main().catch((error) => {
  console.error(`ask: ${error.message.split('\n')[0]}`);
  process.exitCode = 1;
});
