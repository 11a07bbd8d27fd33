-- Which files have the most findings, over all runs?
SELECT uri, sum(findings) AS of_all_runs
FROM files
GROUP BY uri
ORDER BY of_all_runs DESC, uri
LIMIT 25
