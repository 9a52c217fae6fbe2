-- Machines that drifted from a golden one: what they have beyond it, in another version, or lack.
SELECT host, extra, other_version,
  (SELECT uniqExact(name_of_kind) FROM (SELECT concat(kind, ' ', name) AS name_of_kind FROM fleet.driver
    WHERE kind IN ('service', 'package') AND (host_id, time) GLOBAL IN (
      SELECT host_id, max(time) FROM (SELECT host_id, time FROM fleet.collection
        WHERE time >= toDateTime({from:String}, 'UTC') AND host = {host:String}
        GROUP BY host_id, time
        HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
          GROUP BY host_id))) - present AS missing
FROM (
  SELECT host_id, any(host) AS host, uniqExactIf(concat(kind, ' ', name), is_golden = 0) AS extra,
    uniqExactIf(concat(kind, ' ', name), is_golden = 1 AND is_golden_version = 0) AS other_version,
    uniqExactIf(concat(kind, ' ', name), is_golden = 1) AS present
  FROM (SELECT host_id, host, kind, name,
    (concat(kind, ' ', name) GLOBAL IN (SELECT concat(kind, ' ', name) FROM fleet.driver
      WHERE kind IN ('service', 'package') AND (host_id, time) GLOBAL IN (
      SELECT host_id, max(time) FROM (SELECT host_id, time FROM fleet.collection
        WHERE time >= toDateTime({from:String}, 'UTC') AND host = {host:String}
        GROUP BY host_id, time
        HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
          GROUP BY host_id))) AS is_golden,
    (concat(kind, ' ', name, ' ', version_key) GLOBAL IN (SELECT concat(kind, ' ', name, ' ', version_key)
      FROM fleet.driver WHERE kind IN ('service', 'package') AND (host_id, time) GLOBAL IN (
      SELECT host_id, max(time) FROM (SELECT host_id, time FROM fleet.collection
        WHERE time >= toDateTime({from:String}, 'UTC') AND host = {host:String}
        GROUP BY host_id, time
        HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
          GROUP BY host_id))) AS is_golden_version
    FROM fleet.driver WHERE kind IN ('service', 'package') AND (host_id, time) IN (SELECT host_id, max(time) FROM (
    SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
      GROUP BY host_id))
  GROUP BY host_id)
ORDER BY extra + other_version + missing DESC, host LIMIT 20
SETTINGS distributed_group_by_no_merge = 1
