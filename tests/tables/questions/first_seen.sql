-- How many findings were seen for the first time in each run? A finding is known by its rule, file
-- and message.
WITH seen AS (
  SELECT min(s.name) AS first_run
  FROM findings AS f JOIN result_sets AS s ON s.result_set = f.result_set
  WHERE s.name LIKE 'project%'
  GROUP BY substr(s.name, 1, 9), f.rule, f.uri, f.message)
SELECT first_run, count(*) AS findings
FROM seen
GROUP BY first_run
ORDER BY first_run
