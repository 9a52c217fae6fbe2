-- The drivers that most machines have.
SELECT name, uniqExact(host_id) AS machines, uniqExact(version_key) AS versions FROM fleet.driver
WHERE kind IN ('service', 'package') AND (host_id, time) IN (SELECT host_id, max(time) FROM (
    SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
      GROUP BY host_id)
GROUP BY name ORDER BY machines DESC, name LIMIT 20
