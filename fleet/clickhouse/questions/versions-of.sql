-- Versions of a driver in their order, and on how many machines each is.
SELECT version, uniqExact(host_id) AS machines FROM fleet.driver PREWHERE name = {driver:String}
WHERE (host_id, time) IN (SELECT host_id, max(time) FROM (
    SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
      GROUP BY host_id)
GROUP BY version_key, version ORDER BY version_key, version
