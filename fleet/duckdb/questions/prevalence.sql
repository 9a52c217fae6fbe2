-- The drivers that most machines have.
SELECT name, count(DISTINCT host_id) AS machines, count(DISTINCT version_key) AS versions FROM latest($from)
WHERE kind IN ('service', 'package') GROUP BY name ORDER BY machines DESC, name LIMIT 20
