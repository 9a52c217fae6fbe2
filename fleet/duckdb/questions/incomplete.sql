-- Collections of which lines are missing.
SELECT host, strftime(time, '%Y-%m-%d %H:%M:%S') AS collected, announced AS announced_lines, received AS received_lines
  FROM collection
WHERE time >= $from::TIMESTAMP AND NOT unchanged AND (NOT is_announced OR received < announced)
  ORDER BY host, collected LIMIT 1000
