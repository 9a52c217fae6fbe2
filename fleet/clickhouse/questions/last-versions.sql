-- Versions of a driver when each machine last reported it, whether it still has it or not.
SELECT version, count() AS machines FROM (
  SELECT host_id, argMax(version, time) AS version FROM fleet.driver PREWHERE name = {driver:String}
    WHERE kind = 'service' AND time >= toDateTime({from:String}, 'UTC')
  GROUP BY host_id)
GROUP BY version ORDER BY machines DESC, version
