-- Versions of a driver when each machine last reported it, whether it still has it or not.
SELECT version, count(*) AS machines FROM (
  SELECT host_id, arg_max(version, time) AS version FROM driver WHERE name = $driver AND kind = 'service'
    AND time >= $from::TIMESTAMP GROUP BY host_id)
GROUP BY version ORDER BY machines DESC, version
