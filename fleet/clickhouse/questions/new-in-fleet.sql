-- Versions that no machine had before.
SELECT name, version, provider, toString(minMerge(first_seen)) AS first FROM fleet.version_seen
GROUP BY name, version_key, version, provider HAVING minMerge(first_seen) >= toDateTime({since:String}, 'UTC')
  ORDER BY name, version_key, version, provider LIMIT 1000
