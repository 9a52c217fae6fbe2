// Asks a current ClickHouse, in process: node current.cjs MODULES CLICKHOUSE FOLDER. FOLDER holds lines.jsonl, crashes.ndjson,
// parameters.json and keys.sql. Writes an object of answers.
const fs = require('fs');
const path = require('path');
const {createRequire} = require('module');

const [modules, clickhouse, folder] = process.argv.slice(2);
const {Session} = createRequire(path.join(modules, 'package.json'))('chdb');
const session = new Session(path.join(folder, 'data'));
const parameters = JSON.parse(fs.readFileSync(path.join(folder, 'parameters.json'), 'utf8'));
const quoted = (text) => "'" + text.replaceAll('\\', '\\\\').replaceAll("'", "\\'") + "'";

for (const statement of fs.readFileSync(path.join(clickhouse, 'schema/one.sql'), 'utf8').split(/;\s*\n/)) {
  if (statement.trim()) session.query(statement);
}
const csv = "format_csv_delimiter = '\\r', format_csv_allow_single_quotes = 0, format_csv_allow_double_quotes = 0, input_format_csv_detect_header = 0, format_csv_null_representation = ''";
session.query(`INSERT INTO intake.line SELECT line FROM file(${quoted(path.join(folder, 'lines.jsonl'))}, 'CSV', 'line String') SETTINGS ${csv}`);
session.query(`INSERT INTO fleet.crash SELECT * FROM file(${quoted(path.join(folder, 'crashes.ndjson'))}, 'JSONEachRow',
  'time DateTime, host_id String, name String, code String')`);
const answers = {
  rejected: String(session.query('SELECT reason FROM fleet.rejected', 'JSONEachRow') ?? ''),
  keys: String(session.query(fs.readFileSync(path.join(folder, 'keys.sql'), 'utf8'), 'JSONEachRow') ?? ''),
};
for (const file of fs.readdirSync(path.join(clickhouse, 'questions'))) {
  const sql = fs.readFileSync(path.join(clickhouse, 'questions', file), 'utf8').replace(/\{(\w+):String\}/g, (_, name) => quoted(parameters[name]));
  answers[file.replace('.sql', '')] = String(session.query(sql, 'TabSeparated') ?? '');
}
console.log(JSON.stringify(answers));
