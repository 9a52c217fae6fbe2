-- Machines with a driver that a list of known drivers names, and whether it runs.
SELECT host, name, version, state, signature, known FROM fleet.driver
WHERE known != '' AND (host_id, time) IN (SELECT host_id, max(time) FROM (
    SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
      GROUP BY host_id)
GROUP BY host, name, key, version, state, signature, known ORDER BY host, name, key, version LIMIT 100000
