-- Everything on one machine.
SELECT DISTINCT kind, name, key, version FROM latest($from) WHERE host = $host
  ORDER BY kind, name, key, version LIMIT 10000
