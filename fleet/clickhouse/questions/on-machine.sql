-- Everything on one machine.
SELECT kind, name, key, version FROM fleet.driver WHERE (host_id, time) IN (SELECT host_id, max(time) FROM (
    SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') AND host = {host:String}
      GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
      GROUP BY host_id)
GROUP BY kind, name, key, version_key, version ORDER BY kind, name, key, version LIMIT 10000
