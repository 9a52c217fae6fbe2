-- The same with the number of machines, which asks all rows.
SELECT name, version, strftime(min(time), '%Y-%m-%d %H:%M:%S') AS first, count(DISTINCT host_id) AS machines FROM driver
WHERE version != '' GROUP BY name, version_key, version HAVING min(time) >= $since::TIMESTAMP
  ORDER BY name, version_key, version LIMIT 1000
