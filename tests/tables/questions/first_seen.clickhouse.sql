SELECT first_run, count(*) AS findings
FROM (
  SELECT min(name) AS first_run
  FROM findings
  ALL INNER JOIN (SELECT result_set, name FROM result_sets) USING (result_set)
  WHERE name LIKE 'project%'
  GROUP BY substring(assumeNotNull(name), 1, 9), rule, uri, message)
GROUP BY first_run
ORDER BY first_run
