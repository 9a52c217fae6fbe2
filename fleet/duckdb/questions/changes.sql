-- What changed since, on the machines that announce another content.
SELECT difference, count(*) AS drivers, count(DISTINCT host_id) AS machines FROM differences($from, $since)
  WHERE host_id IN (FROM changed($from, $since))
GROUP BY difference ORDER BY difference
