-- Machines that drifted from a golden one: what they have beyond it, in another version, or lack.
WITH part AS (SELECT DISTINCT host_id, host, kind, name, version_key FROM latest($from)
  WHERE kind IN ('service', 'package')),
golden AS (SELECT DISTINCT kind, name, version_key FROM part WHERE host = $host),
names AS (SELECT DISTINCT kind, name FROM golden),
judged AS (SELECT part.*, names.name IS NOT NULL AS is_golden, golden.name IS NOT NULL AS is_golden_version
  FROM part LEFT JOIN names USING (kind, name) LEFT JOIN golden USING (kind, name, version_key))
SELECT host, extra, other_version, missing FROM (
SELECT min(host) AS host, count(DISTINCT (kind, name)) FILTER (NOT is_golden) AS extra,
  count(DISTINCT (kind, name)) FILTER (is_golden AND NOT is_golden_version) AS other_version,
  (SELECT count(*) FROM names) - count(DISTINCT (kind, name)) FILTER (is_golden) AS missing
FROM judged GROUP BY host_id)
ORDER BY extra + other_version + missing DESC, host LIMIT 20
