-- Versions of drivers that crashed most, per 1,000 machines that have them.
SELECT name, version, count() AS machines, sum(crashes) AS all_crashes, toString(intDiv(all_crashes * 1000,
  machines)) AS per_1000 FROM (
  SELECT host_id, name, version, version_key FROM fleet.driver
  WHERE kind = 'service' AND name GLOBAL IN (SELECT DISTINCT name FROM fleet.crash
    WHERE time >= toDateTime({from:String}, 'UTC')) AND (host_id, time) IN (SELECT host_id, max(time) FROM (
    SELECT host_id, time FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') GROUP BY host_id, time
    HAVING max(is_announced) = 1 AND arraySum(p -> bitShiftRight(p, 40), groupUniqArray(piece)) >= max(announced))
      GROUP BY host_id)
  GROUP BY host_id, name, version, version_key) AS d
ALL LEFT JOIN (SELECT host_id, name, count() AS crashes FROM fleet.crash WHERE time >= toDateTime({from:String}, 'UTC')
  GROUP BY host_id, name) AS c USING (host_id, name)
GROUP BY name, version_key, version HAVING machines >= 5 ORDER BY all_crashes / machines DESC, name,
  version_key LIMIT 20
