-- Machines with a driver that a list of known drivers names, and whether it runs.
SELECT DISTINCT host, name, version, state, signature, known FROM latest($from) WHERE known != ''
  ORDER BY ALL LIMIT 100000
