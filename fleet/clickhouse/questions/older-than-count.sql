-- How many machines that are.
SELECT uniqExact(host_id) AS machines FROM fleet.driver PREWHERE name = {driver:String}
WHERE version_key != '' AND version_key < arrayStringConcat(arrayMap(c -> multiIf(c = '', '!',
    match(c, '^0*([0-7][0-9a-f]{15}|[0-9a-f]{1,15})?$'),
      concat(substring('abcdefghijklmnopq', length(replaceRegexpOne(c, '^0+', '')) + 1, 1), replaceRegexpOne(c, '^0+',
        '')),
    concat(if(c < '0', '"', '~'), c, ' ')), splitByChar('.', replaceAll(lower({version:String}), ' ', '.'))))
  AND (host_id, time) IN (SELECT host_id, max(time) FROM (
    SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
      GROUP BY host_id)
