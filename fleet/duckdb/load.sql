-- Lines of `driverlist collect` become tables. $lines is a pattern of files: 'folder/*.jsonl'. Statements end with a semicolon at the end
-- of a line.

-- The order of versions as bytes.
CREATE OR REPLACE MACRO version_key(version) AS list_aggregate(list_transform(
  string_split(replace(lower(version), ' ', '.'), '.'),
  lambda c: CASE WHEN c = '' THEN '!'
    WHEN regexp_full_match(c, '0*([0-7][0-9a-f]{15}|[0-9a-f]{1,15})?')
      THEN substring('abcdefghijklmnopq', length(ltrim(c, '0')) + 1, 1) || ltrim(c, '0')
    ELSE (CASE WHEN c < '0' THEN '"' ELSE '~' END) || c || ' ' END), 'string_agg', '');

-- Files as lines of text, so that a bad one stops no other: no good one holds the control character U+0001.
CREATE OR REPLACE TEMP TABLE line AS SELECT DISTINCT line FROM read_csv($lines, columns = {line: 'VARCHAR'},
  delim = e'\x01', quote = '',
  escape = '', header = false, auto_detect = false, max_line_size = 16777216, parallel = false, store_rejects = true)
    WHERE line != '';

-- What a line says; nothing where it is no JSON. A member of another type is as one that is missing.
CREATE OR REPLACE TEMP TABLE said AS SELECT line, CASE WHEN length(line) <= 262144 AND json_valid(line)
  AND line[1] = '{' THEN
  json_transform(line,
    '{"schema_version":"UINTEGER","kind":"VARCHAR","host":"VARCHAR","host_id":"VARCHAR","windows":"VARCHAR",
    "time":"VARCHAR","drivers":"UINTEGER","digest":"VARCHAR","unchanged":"BOOLEAN","name":"VARCHAR","description":"VARCHAR",
    "provider":"VARCHAR","version":"VARCHAR","product_version":"VARCHAR","version_key":"VARCHAR","service":"VARCHAR","path":"VARCHAR",
    "state":"VARCHAR","start_type":"VARCHAR","image_missing":"BOOLEAN","image_time":"VARCHAR","size":"UBIGINT","inf":"VARCHAR",
    "original_inf":"VARCHAR","inf_date":"VARCHAR","class":"VARCHAR","files":["VARCHAR"],"devices_using":"UINTEGER","instance_id":"VARCHAR",
    "hardware_id":"VARCHAR","identity":"VARCHAR","names":["VARCHAR"],"problem_code":"UINTEGER","problem":"VARCHAR","sha256":"VARCHAR",
    "image_sha256":"VARCHAR","signature":"VARCHAR","signature_problem":"VARCHAR","signature_kind":"VARCHAR","catalog":"VARCHAR",
    "signer":"VARCHAR","signer_thumbprint":"VARCHAR","signed_at":"VARCHAR","known":"VARCHAR"}') END AS said FROM line;

-- Why a line is not taken: '' for a good one. Each test relies on those before it.
CREATE OR REPLACE TEMP TABLE member AS SELECT line, unnest(said), CASE
    WHEN length(line) > 262144 THEN 'it is longer than 256 KiB'
    WHEN said IS NULL THEN 'it is not a JSON object on one line with the members of a collection'
    WHEN NOT regexp_matches(line, '"schema_version":2[,}]') THEN 'its schema_version is not 2'
    WHEN regexp_matches(line,
      '"(kind|name|instance_id|digest|tool_version|host|host_id|windows|time|description|provider|version|product_version|version_key|service|path|state|start_type|inf|original_inf|inf_date|class|hardware_id|identity|problem|sha256|image_sha256|signature|signature_problem|signature_kind|catalog|signer|signer_thumbprint|image_time|signed_at)":[^"]')
      THEN 'a member that should be a text is not'
    WHEN regexp_matches(line,
      '"(schema_version|drivers|size|devices_using|problem_code)":([^0-9]|[0-9]{0,18}[^0-9,}]|[0-9]{19})')
      THEN 'a member that should be a whole number is not'
    WHEN regexp_matches(line, '"(files|names)":[^\[]') THEN 'a member that should be an array of texts is not'
    WHEN regexp_matches(line, '"(image_missing|unchanged)":[^t]') THEN 'a member that should be true is not'
    WHEN coalesce(said.host_id, said.host, '') = '' THEN 'it has no host_id and no host'
    WHEN NOT coalesce(regexp_full_match(said.time,
      '20[0-9]{2}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])T([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]Z'), false)
      THEN 'its time is not UTC in ISO 8601'
    WHEN try_cast(rtrim(said.time,
      'Z') AS TIMESTAMP) > (now() AT TIME ZONE 'UTC') + INTERVAL 1 DAY THEN 'its time is in the future'
    WHEN said.kind = 'collection' THEN CASE WHEN said.drivers IS NULL THEN 'it has no drivers' ELSE '' END
    WHEN coalesce(said.kind, '') NOT IN ('service', 'device', 'package', 'chipset') THEN 'its kind is unknown'
    WHEN coalesce(said.name, '') = '' THEN 'it has no name'
    WHEN coalesce(CASE said.kind WHEN 'service' THEN said.service WHEN 'device' THEN said.instance_id WHEN 'package' THEN said.inf
      ELSE said.name END, '') = '' THEN 'it has no key'
    ELSE '' END AS reason FROM said;
CREATE OR REPLACE TABLE rejected AS SELECT reason, substring(line, 1, 1000) AS beginning FROM member WHERE reason != ''
  UNION ALL SELECT DISTINCT 'it is not a JSON object on one line with the members of a collection', substring(csv_line,
    1, 1000) FROM reject_errors;

CREATE OR REPLACE TABLE driver AS SELECT * EXCLUDE (line, reason, schema_version, time, host_id, host, drivers, digest,
  unchanged, known, version, version_key,
    provider, state, signature),
  rtrim(time, 'Z')::TIMESTAMP AS time, coalesce(nullif(host_id, ''), host) AS host_id, coalesce(host, '') AS host,
  coalesce(version, '') AS version, coalesce(version_key, '') AS version_key, coalesce(provider, '') AS provider,
  coalesce(state, '') AS state, coalesce(signature, '') AS signature, coalesce(known, '') AS known,
  lower(CASE kind WHEN 'service' THEN service WHEN 'device' THEN instance_id WHEN 'package' THEN inf ELSE name END) AS key
  FROM member WHERE reason = '' AND kind != 'collection';
CREATE OR REPLACE TABLE collection AS SELECT host_id, time, max(host) AS host, bool_or(is_first) AS is_announced,
  coalesce(max(drivers), 0) AS announced, count(*) FILTER (NOT is_first) AS received, coalesce(max(digest),
    '') AS digest,
  coalesce(bool_or(unchanged), false) AS unchanged
  FROM (SELECT rtrim(time, 'Z')::TIMESTAMP AS time, coalesce(nullif(host_id, ''), host) AS host_id, coalesce(host,
    '') AS host,
    kind = 'collection' AS is_first, drivers, digest, unchanged FROM member WHERE reason = '')
  GROUP BY host_id, time;
-- For whoever has crashes: nothing here fills it.
CREATE TABLE IF NOT EXISTS crash (time TIMESTAMP, host_id VARCHAR, name VARCHAR, code VARCHAR);

-- Collections of which every line arrived.
CREATE OR REPLACE MACRO whole(earliest) AS TABLE
  SELECT host_id, time FROM collection WHERE is_announced AND received >= announced AND time >= earliest::TIMESTAMP;
-- What machines had when they last reported.
CREATE OR REPLACE MACRO latest(earliest) AS TABLE
  SELECT driver.* FROM driver JOIN (SELECT host_id, max(time) AS time FROM whole(earliest)
    GROUP BY host_id) USING (host_id, time);
-- Machines that announce another content than before.
CREATE OR REPLACE MACRO changed(earliest, since) AS TABLE
  SELECT host_id FROM collection WHERE time >= earliest::TIMESTAMP AND digest != '' GROUP BY host_id
  HAVING arg_max(digest, time) FILTER (time >= since::TIMESTAMP) != arg_max(digest,
    time) FILTER (time < since::TIMESTAMP);
-- What each machine has, or had, other than before.
CREATE OR REPLACE MACRO differences(earliest, since) AS TABLE
  WITH sides AS (SELECT host_id, time >= since::TIMESTAMP AS is_new, max(time) AS time FROM whole(earliest)
    GROUP BY ALL),
  records AS (SELECT host_id, kind, key, max(version_key) FILTER (is_new) AS new_key,
    max(version_key) FILTER (NOT is_new) AS old_key
    FROM driver JOIN sides USING (host_id, time)
    WHERE host_id IN (SELECT host_id FROM sides GROUP BY host_id HAVING count(*) = 2) GROUP BY ALL)
  SELECT host_id,
    CASE WHEN old_key IS NULL THEN 'added' WHEN new_key IS NULL THEN 'removed' WHEN old_key = '' OR new_key = '' THEN 'changed'
    WHEN old_key < new_key THEN 'upgraded' ELSE 'downgraded' END AS difference
  FROM records WHERE old_key IS DISTINCT FROM new_key;
