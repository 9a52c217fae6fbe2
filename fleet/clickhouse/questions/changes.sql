-- What changed since, on the machines that announce another content.
SELECT difference, count() AS drivers, uniqExact(host_id) AS machines FROM (
  SELECT host_id, multiIf(old_count = 0, 'added', new_count = 0, 'removed', old_key = '' OR new_key = '', 'changed',
    old_key < new_key, 'upgraded', 'downgraded') AS difference FROM (
  SELECT host_id, kind, key,
    toString(maxIf(version_key, time >= toDateTime({since:String}, 'UTC'))) AS new_key,
      countIf(time >= toDateTime({since:String}, 'UTC')) AS new_count,
    toString(maxIf(version_key, time < toDateTime({since:String}, 'UTC'))) AS old_key,
      countIf(time < toDateTime({since:String}, 'UTC')) AS old_count
  FROM fleet.driver WHERE (host_id, time) IN (SELECT host_id, max(time) FROM (
      SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
      GROUP BY host_id, time >= toDateTime({since:String}, 'UTC'))
    AND host_id IN (SELECT host_id FROM (SELECT DISTINCT host_id, time >= toDateTime({since:String}, 'UTC') AS is_new
      FROM (
      SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced)))
      GROUP BY host_id HAVING count() = 2)
    AND host_id IN (
      SELECT host_id FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') AND digest != ''
        GROUP BY host_id
      HAVING countIf(time < toDateTime({since:String}, 'UTC')) > 0
        AND countIf(time >= toDateTime({since:String}, 'UTC')) > 0
        AND argMaxIf(digest, time, time >= toDateTime({since:String}, 'UTC')) != argMaxIf(digest, time,
          time < toDateTime({since:String}, 'UTC')))
  GROUP BY host_id, kind, key HAVING old_count = 0 OR new_count = 0 OR new_key != old_key))
GROUP BY difference ORDER BY difference
SETTINGS distributed_group_by_no_merge = 1
