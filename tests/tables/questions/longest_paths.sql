-- Which findings have the longest paths?
SELECT name, finding, count(*) AS steps, count(DISTINCT uri) AS files
FROM steps JOIN result_sets USING (result_set)
GROUP BY name, finding
HAVING count(*) >= 9
ORDER BY steps DESC, files DESC, name, finding
