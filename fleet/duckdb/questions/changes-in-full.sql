-- The same without trust in what machines announce: compares all of them.
SELECT difference, count(*) AS drivers, count(DISTINCT host_id) AS machines FROM differences($from, $since)
GROUP BY difference ORDER BY difference
