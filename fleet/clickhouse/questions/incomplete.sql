-- Collections of which lines are missing.
SELECT host, toString(time) AS collected, max(announced) AS announced_lines,
  arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) AS received_lines FROM fleet.collection
WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, host, time
HAVING max(unchanged) = 0 AND (max(is_announced) = 0 OR received_lines < announced_lines)
  ORDER BY host, collected LIMIT 1000
