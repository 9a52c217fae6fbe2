-- The same with the number of machines, which asks all rows.
SELECT name, version, toString(min(time)) AS first, uniqExact(host_id) AS machines FROM fleet.driver
WHERE version != '' GROUP BY name, version_key, version HAVING min(time) >= toDateTime({since:String}, 'UTC')
  ORDER BY name, version_key, version LIMIT 1000
