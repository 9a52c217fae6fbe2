-- Each server of a cluster called fleet whose shards have replicas; {shard} and {replica} are macros of the servers. Written by write-schema. The same text for ClickHouse 18.16 and later ones.
-- Statements end with a semicolon at the end of a line.
CREATE DATABASE IF NOT EXISTS intake;
CREATE DATABASE IF NOT EXISTS fleet;
-- Where lines arrive, as text, so that a bad one stops no other. Nothing is stored here: the views sort it out.
CREATE TABLE IF NOT EXISTS fleet.landing (line String) ENGINE = Null;
-- What shippers insert into: sends each line to the shard of its machine.
CREATE TABLE IF NOT EXISTS intake.line (line String) ENGINE = Distributed(fleet, fleet, landing, cityHash64(if(visitParamExtractString(line, 'host_id') != '', visitParamExtractString(line, 'host_id'), visitParamExtractString(line, 'host'))));
-- What machines have: a row for each record of each collection. A repeated request leaves equal rows, which merges remove.
CREATE TABLE IF NOT EXISTS fleet.driver_local (
  time DateTime('UTC'),
  host_id String,
  host String,
  windows LowCardinality(String),
  kind LowCardinality(String),
  name LowCardinality(String),
  key String,
  description LowCardinality(String),
  provider LowCardinality(String),
  version LowCardinality(String),
  product_version LowCardinality(String),
  version_key LowCardinality(String),
  service LowCardinality(String),
  path LowCardinality(String),
  state LowCardinality(String),
  start_type LowCardinality(String),
  inf LowCardinality(String),
  original_inf LowCardinality(String),
  inf_date LowCardinality(String),
  class LowCardinality(String),
  hardware_id LowCardinality(String),
  identity LowCardinality(String),
  problem LowCardinality(String),
  sha256 LowCardinality(String),
  image_sha256 LowCardinality(String),
  signature LowCardinality(String),
  signature_problem LowCardinality(String),
  signature_kind LowCardinality(String),
  catalog LowCardinality(String),
  signer LowCardinality(String),
  signer_thumbprint LowCardinality(String),
  files LowCardinality(String),
  names LowCardinality(String),
  size UInt64,
  devices_using UInt32,
  problem_code UInt32,
  known LowCardinality(String),
  image_missing UInt8,
  image_time DateTime('UTC'),
  signed_at DateTime('UTC'))
  ENGINE = ReplicatedReplacingMergeTree('/clickhouse/tables/{shard}/driver', '{replica}') PARTITION BY toYYYYMM(time) ORDER BY (host_id, time, name, kind, key) SETTINGS index_granularity = 8192;
CREATE TABLE IF NOT EXISTS fleet.driver AS fleet.driver_local ENGINE = Distributed(fleet, fleet, driver_local);
-- What machines announced and what arrived: a row for each piece.
CREATE TABLE IF NOT EXISTS fleet.collection_local (
  time DateTime('UTC'),
  host_id String,
  host String,
  windows String,
  is_announced UInt8,
  announced UInt32,
  received UInt32,
  unchanged UInt8,
  digest String,
  piece UInt64)
  ENGINE = ReplicatedReplacingMergeTree('/clickhouse/tables/{shard}/collection', '{replica}') PARTITION BY toYYYYMM(time) ORDER BY (host_id, time, piece) SETTINGS index_granularity = 8192;
CREATE TABLE IF NOT EXISTS fleet.collection AS fleet.collection_local ENGINE = Distributed(fleet, fleet, collection_local);
-- First and last sight of each version of each driver.
CREATE TABLE IF NOT EXISTS fleet.version_seen_local (
  name LowCardinality(String),
  version LowCardinality(String),
  version_key LowCardinality(String),
  provider LowCardinality(String),
  first_seen AggregateFunction(min, DateTime('UTC')),
  last_seen AggregateFunction(max, DateTime('UTC')))
  ENGINE = ReplicatedAggregatingMergeTree('/clickhouse/tables/{shard}/version_seen', '{replica}') PARTITION BY tuple() ORDER BY (name, version_key, version, provider) SETTINGS index_granularity = 8192;
CREATE TABLE IF NOT EXISTS fleet.version_seen AS fleet.version_seen_local ENGINE = Distributed(fleet, fleet, version_seen_local);
-- Lines that were not taken, and why.
CREATE TABLE IF NOT EXISTS fleet.rejected_local (
  received_at DateTime('UTC'),
  host String,
  reason LowCardinality(String),
  beginning String)
  ENGINE = ReplicatedMergeTree('/clickhouse/tables/{shard}/rejected', '{replica}') PARTITION BY toYYYYMM(received_at) ORDER BY (received_at, host) SETTINGS index_granularity = 8192;
CREATE TABLE IF NOT EXISTS fleet.rejected AS fleet.rejected_local ENGINE = Distributed(fleet, fleet, rejected_local);
-- Crashes of machines, for whoever has them: nothing here fills it.
CREATE TABLE IF NOT EXISTS fleet.crash_local (
  time DateTime('UTC'),
  host_id String,
  name LowCardinality(String),
  code LowCardinality(String))
  ENGINE = ReplicatedMergeTree('/clickhouse/tables/{shard}/crash', '{replica}') PARTITION BY toYYYYMM(time) ORDER BY (name, time) SETTINGS index_granularity = 8192;
CREATE TABLE IF NOT EXISTS fleet.crash AS fleet.crash_local ENGINE = Distributed(fleet, fleet, crash_local, cityHash64(host_id));
CREATE MATERIALIZED VIEW IF NOT EXISTS fleet.to_driver TO fleet.driver_local AS SELECT
  if(match(visitParamExtractString(line, 'time'), '^(19[7-9]|20)[0-9]'), parseDateTimeBestEffortOrZero(visitParamExtractString(line, 'time'), 'UTC'), toDateTime(0, 'UTC')) AS time,
  if(visitParamExtractString(line, 'host_id') != '', visitParamExtractString(line, 'host_id'), visitParamExtractString(line, 'host')) AS host_id,
  visitParamExtractString(line, 'host') AS host,
  toLowCardinality(visitParamExtractString(line, 'windows')) AS windows,
  toLowCardinality(visitParamExtractString(line, 'kind')) AS kind,
  toLowCardinality(visitParamExtractString(line, 'name')) AS name,
  lowerUTF8(multiIf(visitParamExtractString(line, 'kind') = 'service', visitParamExtractString(line, 'service'), visitParamExtractString(line, 'kind') = 'device', visitParamExtractString(line, 'instance_id'), visitParamExtractString(line, 'kind') = 'package', visitParamExtractString(line, 'inf'), visitParamExtractString(line, 'name'))) AS key,
  toLowCardinality(visitParamExtractString(line, 'description')) AS description,
  toLowCardinality(visitParamExtractString(line, 'provider')) AS provider,
  toLowCardinality(visitParamExtractString(line, 'version')) AS version,
  toLowCardinality(visitParamExtractString(line, 'product_version')) AS product_version,
  toLowCardinality(visitParamExtractString(line, 'version_key')) AS version_key,
  toLowCardinality(visitParamExtractString(line, 'service')) AS service,
  toLowCardinality(visitParamExtractString(line, 'path')) AS path,
  toLowCardinality(visitParamExtractString(line, 'state')) AS state,
  toLowCardinality(visitParamExtractString(line, 'start_type')) AS start_type,
  toLowCardinality(visitParamExtractString(line, 'inf')) AS inf,
  toLowCardinality(visitParamExtractString(line, 'original_inf')) AS original_inf,
  toLowCardinality(visitParamExtractString(line, 'inf_date')) AS inf_date,
  toLowCardinality(visitParamExtractString(line, 'class')) AS class,
  toLowCardinality(visitParamExtractString(line, 'hardware_id')) AS hardware_id,
  toLowCardinality(visitParamExtractString(line, 'identity')) AS identity,
  toLowCardinality(visitParamExtractString(line, 'problem')) AS problem,
  toLowCardinality(visitParamExtractString(line, 'sha256')) AS sha256,
  toLowCardinality(visitParamExtractString(line, 'image_sha256')) AS image_sha256,
  toLowCardinality(visitParamExtractString(line, 'signature')) AS signature,
  toLowCardinality(visitParamExtractString(line, 'signature_problem')) AS signature_problem,
  toLowCardinality(visitParamExtractString(line, 'signature_kind')) AS signature_kind,
  toLowCardinality(visitParamExtractString(line, 'catalog')) AS catalog,
  toLowCardinality(visitParamExtractString(line, 'signer')) AS signer,
  toLowCardinality(visitParamExtractString(line, 'signer_thumbprint')) AS signer_thumbprint,
  toLowCardinality(replaceAll(replaceRegexpAll(visitParamExtractRaw(line, 'files'), '^\\["?|"?\\]$', ''), '","', ';')) AS files,
  toLowCardinality(replaceAll(replaceRegexpAll(visitParamExtractRaw(line, 'names'), '^\\["?|"?\\]$', ''), '","', ';')) AS names,
  toUInt64(visitParamExtractUInt(line, 'size')) AS size,
  toUInt32(visitParamExtractUInt(line, 'devices_using')) AS devices_using,
  toUInt32(visitParamExtractUInt(line, 'problem_code')) AS problem_code,
  toLowCardinality(if(substring(visitParamExtractRaw(line, 'known'), 1, 1) = '[', visitParamExtractRaw(line, 'known'), visitParamExtractString(line, 'known'))) AS known,
  toUInt8(visitParamHas(line, 'image_missing')) AS image_missing,
  if(match(visitParamExtractString(line, 'image_time'), '^(19[7-9]|20)[0-9]'), parseDateTimeBestEffortOrZero(visitParamExtractString(line, 'image_time'), 'UTC'), toDateTime(0, 'UTC')) AS image_time,
  if(match(visitParamExtractString(line, 'signed_at'), '^(19[7-9]|20)[0-9]'), parseDateTimeBestEffortOrZero(visitParamExtractString(line, 'signed_at'), 'UTC'), toDateTime(0, 'UTC')) AS signed_at
FROM fleet.landing WHERE line != '' AND multiIf(
    length(line) > 262144, 'it is longer than 256 KiB',
    NOT match(line, '^\\{"[a-z0-9_]+":(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)|\\[(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\]|\\[\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\}(,\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\})*\\])(,"[a-z0-9_]+":(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)|\\[(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\]|\\[\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\}(,\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\})*\\]))*\\}$'), 'it is not a JSON object on one line with the members of a collection',
    visitParamExtractRaw(line, 'schema_version') != '2', 'its schema_version is not 2',
    match(line, '"(kind|name|instance_id|digest|tool_version|host|host_id|windows|time|description|provider|version|product_version|version_key|service|path|state|start_type|inf|original_inf|inf_date|class|hardware_id|identity|problem|sha256|image_sha256|signature|signature_problem|signature_kind|catalog|signer|signer_thumbprint|image_time|signed_at)":[^"]'), 'a member that should be a text is not',
    match(line, '"(schema_version|drivers|size|devices_using|problem_code)":([^0-9]|[0-9]{0,18}[^0-9,}]|[0-9]{19})'), 'a member that should be a whole number is not',
    match(line, '"(files|names)":[^\\[]'), 'a member that should be an array of texts is not',
    match(line, '"(image_missing|unchanged)":[^t]'), 'a member that should be true is not',
    if(visitParamExtractString(line, 'host_id') != '', visitParamExtractString(line, 'host_id'), visitParamExtractString(line, 'host')) = '', 'it has no host_id and no host',
    NOT match(visitParamExtractString(line, 'time'), '^20[0-9]{2}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])T([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]Z$'), 'its time is not UTC in ISO 8601',
    parseDateTimeBestEffortOrZero(visitParamExtractString(line, 'time'), 'UTC') > now() + 86400, 'its time is in the future',
    visitParamExtractString(line, 'kind') = 'collection', if(visitParamHas(line, 'drivers'), '', 'it has no drivers'),
    visitParamExtractString(line, 'kind') NOT IN ('service', 'device', 'package', 'chipset'), 'its kind is unknown',
    visitParamExtractString(line, 'name') = '', 'it has no name',
    lowerUTF8(multiIf(visitParamExtractString(line, 'kind') = 'service', visitParamExtractString(line, 'service'), visitParamExtractString(line, 'kind') = 'device', visitParamExtractString(line, 'instance_id'), visitParamExtractString(line, 'kind') = 'package', visitParamExtractString(line, 'inf'), visitParamExtractString(line, 'name'))) = '', 'it has no key',
    '') = '' AND visitParamExtractString(line, 'kind') != 'collection';
CREATE MATERIALIZED VIEW IF NOT EXISTS fleet.to_collection TO fleet.collection_local AS SELECT
  if(match(visitParamExtractString(line, 'time'), '^(19[7-9]|20)[0-9]'), parseDateTimeBestEffortOrZero(visitParamExtractString(line, 'time'), 'UTC'), toDateTime(0, 'UTC')) AS time,
  if(visitParamExtractString(line, 'host_id') != '', visitParamExtractString(line, 'host_id'), visitParamExtractString(line, 'host')) AS host_id,
  any(visitParamExtractString(line, 'host')) AS host,
  any(visitParamExtractString(line, 'windows')) AS windows,
  max(toUInt8(visitParamExtractString(line, 'kind') = 'collection')) AS is_announced,
  max(toUInt32(visitParamExtractUInt(line, 'drivers'))) AS announced,
  toUInt32(countIf(visitParamExtractString(line, 'kind') != 'collection')) AS received,
  max(toUInt8(visitParamHas(line, 'unchanged'))) AS unchanged,
  max(visitParamExtractString(line, 'digest')) AS digest,
  toUInt64(bitShiftLeft(toUInt64(countIf(visitParamExtractString(line, 'kind') != 'collection')), 40) + sum(cityHash64(line)) % 1099511627776) AS piece
FROM fleet.landing WHERE line != '' AND multiIf(
    length(line) > 262144, 'it is longer than 256 KiB',
    NOT match(line, '^\\{"[a-z0-9_]+":(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)|\\[(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\]|\\[\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\}(,\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\})*\\])(,"[a-z0-9_]+":(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)|\\[(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\]|\\[\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\}(,\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\})*\\]))*\\}$'), 'it is not a JSON object on one line with the members of a collection',
    visitParamExtractRaw(line, 'schema_version') != '2', 'its schema_version is not 2',
    match(line, '"(kind|name|instance_id|digest|tool_version|host|host_id|windows|time|description|provider|version|product_version|version_key|service|path|state|start_type|inf|original_inf|inf_date|class|hardware_id|identity|problem|sha256|image_sha256|signature|signature_problem|signature_kind|catalog|signer|signer_thumbprint|image_time|signed_at)":[^"]'), 'a member that should be a text is not',
    match(line, '"(schema_version|drivers|size|devices_using|problem_code)":([^0-9]|[0-9]{0,18}[^0-9,}]|[0-9]{19})'), 'a member that should be a whole number is not',
    match(line, '"(files|names)":[^\\[]'), 'a member that should be an array of texts is not',
    match(line, '"(image_missing|unchanged)":[^t]'), 'a member that should be true is not',
    if(visitParamExtractString(line, 'host_id') != '', visitParamExtractString(line, 'host_id'), visitParamExtractString(line, 'host')) = '', 'it has no host_id and no host',
    NOT match(visitParamExtractString(line, 'time'), '^20[0-9]{2}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])T([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]Z$'), 'its time is not UTC in ISO 8601',
    parseDateTimeBestEffortOrZero(visitParamExtractString(line, 'time'), 'UTC') > now() + 86400, 'its time is in the future',
    visitParamExtractString(line, 'kind') = 'collection', if(visitParamHas(line, 'drivers'), '', 'it has no drivers'),
    visitParamExtractString(line, 'kind') NOT IN ('service', 'device', 'package', 'chipset'), 'its kind is unknown',
    visitParamExtractString(line, 'name') = '', 'it has no name',
    lowerUTF8(multiIf(visitParamExtractString(line, 'kind') = 'service', visitParamExtractString(line, 'service'), visitParamExtractString(line, 'kind') = 'device', visitParamExtractString(line, 'instance_id'), visitParamExtractString(line, 'kind') = 'package', visitParamExtractString(line, 'inf'), visitParamExtractString(line, 'name'))) = '', 'it has no key',
    '') = '' GROUP BY time, host_id;
CREATE MATERIALIZED VIEW IF NOT EXISTS fleet.to_version_seen TO fleet.version_seen_local AS SELECT
  toLowCardinality(visitParamExtractString(line, 'name')) AS name,
  toLowCardinality(visitParamExtractString(line, 'version')) AS version,
  toLowCardinality(visitParamExtractString(line, 'version_key')) AS version_key,
  toLowCardinality(visitParamExtractString(line, 'provider')) AS provider,
  minState(if(match(visitParamExtractString(line, 'time'), '^(19[7-9]|20)[0-9]'), parseDateTimeBestEffortOrZero(visitParamExtractString(line, 'time'), 'UTC'), toDateTime(0, 'UTC'))) AS first_seen,
  maxState(if(match(visitParamExtractString(line, 'time'), '^(19[7-9]|20)[0-9]'), parseDateTimeBestEffortOrZero(visitParamExtractString(line, 'time'), 'UTC'), toDateTime(0, 'UTC'))) AS last_seen
FROM fleet.landing WHERE line != '' AND multiIf(
    length(line) > 262144, 'it is longer than 256 KiB',
    NOT match(line, '^\\{"[a-z0-9_]+":(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)|\\[(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\]|\\[\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\}(,\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\})*\\])(,"[a-z0-9_]+":(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)|\\[(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\]|\\[\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\}(,\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\})*\\]))*\\}$'), 'it is not a JSON object on one line with the members of a collection',
    visitParamExtractRaw(line, 'schema_version') != '2', 'its schema_version is not 2',
    match(line, '"(kind|name|instance_id|digest|tool_version|host|host_id|windows|time|description|provider|version|product_version|version_key|service|path|state|start_type|inf|original_inf|inf_date|class|hardware_id|identity|problem|sha256|image_sha256|signature|signature_problem|signature_kind|catalog|signer|signer_thumbprint|image_time|signed_at)":[^"]'), 'a member that should be a text is not',
    match(line, '"(schema_version|drivers|size|devices_using|problem_code)":([^0-9]|[0-9]{0,18}[^0-9,}]|[0-9]{19})'), 'a member that should be a whole number is not',
    match(line, '"(files|names)":[^\\[]'), 'a member that should be an array of texts is not',
    match(line, '"(image_missing|unchanged)":[^t]'), 'a member that should be true is not',
    if(visitParamExtractString(line, 'host_id') != '', visitParamExtractString(line, 'host_id'), visitParamExtractString(line, 'host')) = '', 'it has no host_id and no host',
    NOT match(visitParamExtractString(line, 'time'), '^20[0-9]{2}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])T([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]Z$'), 'its time is not UTC in ISO 8601',
    parseDateTimeBestEffortOrZero(visitParamExtractString(line, 'time'), 'UTC') > now() + 86400, 'its time is in the future',
    visitParamExtractString(line, 'kind') = 'collection', if(visitParamHas(line, 'drivers'), '', 'it has no drivers'),
    visitParamExtractString(line, 'kind') NOT IN ('service', 'device', 'package', 'chipset'), 'its kind is unknown',
    visitParamExtractString(line, 'name') = '', 'it has no name',
    lowerUTF8(multiIf(visitParamExtractString(line, 'kind') = 'service', visitParamExtractString(line, 'service'), visitParamExtractString(line, 'kind') = 'device', visitParamExtractString(line, 'instance_id'), visitParamExtractString(line, 'kind') = 'package', visitParamExtractString(line, 'inf'), visitParamExtractString(line, 'name'))) = '', 'it has no key',
    '') = '' AND visitParamExtractString(line, 'kind') != 'collection' AND visitParamExtractString(line, 'version') != '' GROUP BY name, version, version_key, provider;
CREATE MATERIALIZED VIEW IF NOT EXISTS fleet.to_rejected TO fleet.rejected_local AS SELECT
  toDateTime(now(), 'UTC') AS received_at,
  visitParamExtractString(line, 'host') AS host,
  toLowCardinality(multiIf(
    length(line) > 262144, 'it is longer than 256 KiB',
    NOT match(line, '^\\{"[a-z0-9_]+":(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)|\\[(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\]|\\[\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\}(,\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\})*\\])(,"[a-z0-9_]+":(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)|\\[(("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\]|\\[\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\}(,\\{("[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null)(,"[a-z0-9_]+":("([^"\\\\\\x00-\\x1f]|\\\\.)*"|-?[0-9][0-9.eE+-]*|true|false|null))*)?\\})*\\]))*\\}$'), 'it is not a JSON object on one line with the members of a collection',
    visitParamExtractRaw(line, 'schema_version') != '2', 'its schema_version is not 2',
    match(line, '"(kind|name|instance_id|digest|tool_version|host|host_id|windows|time|description|provider|version|product_version|version_key|service|path|state|start_type|inf|original_inf|inf_date|class|hardware_id|identity|problem|sha256|image_sha256|signature|signature_problem|signature_kind|catalog|signer|signer_thumbprint|image_time|signed_at)":[^"]'), 'a member that should be a text is not',
    match(line, '"(schema_version|drivers|size|devices_using|problem_code)":([^0-9]|[0-9]{0,18}[^0-9,}]|[0-9]{19})'), 'a member that should be a whole number is not',
    match(line, '"(files|names)":[^\\[]'), 'a member that should be an array of texts is not',
    match(line, '"(image_missing|unchanged)":[^t]'), 'a member that should be true is not',
    if(visitParamExtractString(line, 'host_id') != '', visitParamExtractString(line, 'host_id'), visitParamExtractString(line, 'host')) = '', 'it has no host_id and no host',
    NOT match(visitParamExtractString(line, 'time'), '^20[0-9]{2}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])T([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]Z$'), 'its time is not UTC in ISO 8601',
    parseDateTimeBestEffortOrZero(visitParamExtractString(line, 'time'), 'UTC') > now() + 86400, 'its time is in the future',
    visitParamExtractString(line, 'kind') = 'collection', if(visitParamHas(line, 'drivers'), '', 'it has no drivers'),
    visitParamExtractString(line, 'kind') NOT IN ('service', 'device', 'package', 'chipset'), 'its kind is unknown',
    visitParamExtractString(line, 'name') = '', 'it has no name',
    lowerUTF8(multiIf(visitParamExtractString(line, 'kind') = 'service', visitParamExtractString(line, 'service'), visitParamExtractString(line, 'kind') = 'device', visitParamExtractString(line, 'instance_id'), visitParamExtractString(line, 'kind') = 'package', visitParamExtractString(line, 'inf'), visitParamExtractString(line, 'name'))) = '', 'it has no key',
    '')) AS reason,
  substring(line, 1, 1000) AS beginning
FROM fleet.landing WHERE line != '' AND reason != '';
