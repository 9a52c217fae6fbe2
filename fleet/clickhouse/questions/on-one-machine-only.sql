-- Drivers that are on one machine only.
SELECT name, min(host) AS machine, max(version) AS a_version, min(provider) AS a_provider FROM fleet.driver
WHERE kind IN ('service', 'package') AND (host_id, time) IN (SELECT host_id, max(time) FROM (
    SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
      GROUP BY host_id)
GROUP BY name HAVING uniqExact(host_id) = 1 ORDER BY name LIMIT 1000
