-- Versions that no machine had before.
SELECT name, version, provider, strftime(min(time), '%Y-%m-%d %H:%M:%S') AS first FROM driver WHERE version != ''
GROUP BY name, version_key, version, provider HAVING min(time) >= $since::TIMESTAMP
  ORDER BY name, version_key, version, provider LIMIT 1000
