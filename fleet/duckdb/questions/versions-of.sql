-- Versions of a driver in their order, and on how many machines each is.
SELECT version, count(DISTINCT host_id) AS machines FROM latest($from) WHERE name = $driver
  GROUP BY version_key, version ORDER BY version_key, version
