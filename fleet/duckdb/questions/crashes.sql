-- Versions of drivers that crashed most, per 1,000 machines that have them.
WITH crashed AS (SELECT host_id, name, count(*) AS crashes FROM crash WHERE time >= $from::TIMESTAMP
  GROUP BY host_id, name),
having_it AS (SELECT DISTINCT host_id, name, version, version_key FROM latest($from) WHERE kind = 'service'
  AND name IN (SELECT name FROM crashed))
SELECT name, version, count(*) AS machines, sum(coalesce(crashes, 0)) AS all_crashes, sum(coalesce(crashes,
  0)) * 1000 // count(*) AS per_1000
FROM having_it LEFT JOIN crashed USING (host_id, name)
GROUP BY name, version_key, version HAVING count(*) >= 5 ORDER BY all_crashes / machines DESC, name,
  version_key LIMIT 20
