-- How many machines changed on each day.
SELECT substring(reports[i], 1, 10) AS day, count() AS machines FROM (
  SELECT host_id, arraySort(groupUniqArray(concat(toString(time), digest))) AS reports FROM fleet.collection
  WHERE time >= toDateTime({from:String}, 'UTC') AND digest != '' GROUP BY host_id)
ARRAY JOIN arrayFilter(n -> n > 1 AND substring(reports[n], 20) != substring(reports[n - 1], 20),
  arrayEnumerate(reports)) AS i
GROUP BY day ORDER BY day
