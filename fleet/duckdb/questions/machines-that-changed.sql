-- How many machines announce another content than before.
SELECT count(*) AS machines FROM changed($from, $since)
