-- Which findings have the longest paths?
SELECT result_set, finding, count(*) AS steps, count(DISTINCT uri) AS files
FROM steps
GROUP BY result_set, finding
HAVING count(*) >= 9
ORDER BY steps DESC, files DESC, result_set, finding
