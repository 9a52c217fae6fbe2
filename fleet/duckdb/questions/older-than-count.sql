-- How many machines that are.
SELECT count(DISTINCT host_id) AS machines FROM latest($from) WHERE name = $driver
  AND version_key < version_key($version)
