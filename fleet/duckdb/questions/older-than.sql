-- Machines that have a driver in a version older than the given one.
SELECT DISTINCT host, version FROM latest($from) WHERE name = $driver AND version_key < version_key($version)
ORDER BY version_key(version), host, version LIMIT 100000
