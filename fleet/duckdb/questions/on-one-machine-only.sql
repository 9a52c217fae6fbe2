-- Drivers that are on one machine only.
SELECT name, min(host) AS machine, max(version) AS a_version, min(provider) AS a_provider FROM latest($from)
WHERE kind IN ('service', 'package') GROUP BY name HAVING count(DISTINCT host_id) = 1 ORDER BY name LIMIT 1000
