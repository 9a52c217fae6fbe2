-- How many machines announce another content than before.
SELECT count() AS machines FROM (
    SELECT host_id FROM fleet.collection WHERE time >= toDateTime({from:String}, 'UTC') AND digest != ''
      GROUP BY host_id
      HAVING countIf(time < toDateTime({since:String}, 'UTC')) > 0
        AND countIf(time >= toDateTime({since:String}, 'UTC')) > 0
        AND argMaxIf(digest, time, time >= toDateTime({since:String}, 'UTC')) != argMaxIf(digest, time,
          time < toDateTime({since:String}, 'UTC')))
