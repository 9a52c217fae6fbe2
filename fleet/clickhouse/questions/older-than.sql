-- Machines that have a driver in a version older than the given one.
SELECT host, version FROM fleet.driver PREWHERE name = {driver:String}
WHERE version_key != '' AND version_key < arrayStringConcat(arrayMap(c -> multiIf(c = '', '!',
    match(c, '^0*([0-7][0-9a-f]{15}|[0-9a-f]{1,15})?$'),
      concat(substring('abcdefghijklmnopq', length(replaceRegexpOne(c, '^0+', '')) + 1, 1), replaceRegexpOne(c, '^0+',
        '')),
    concat(if(c < '0', '"', '~'), c, ' ')), splitByChar('.', replaceAll(lower({version:String}), ' ', '.'))))
  AND (host_id, time) IN (SELECT host_id, max(time) FROM (
    SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
      GROUP BY host_id) GROUP BY version_key, host, version
ORDER BY version_key, host, version LIMIT 100000
