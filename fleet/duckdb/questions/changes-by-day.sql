-- How many machines changed on each day.
SELECT strftime(time, '%Y-%m-%d') AS day, count(*) AS machines FROM (
  SELECT time, digest, lag(digest) OVER (PARTITION BY host_id ORDER BY time) AS former FROM collection
  WHERE digest != '' AND time >= $from::TIMESTAMP)
WHERE digest != former GROUP BY day ORDER BY day
