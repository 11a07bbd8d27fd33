SELECT name, level, count(*) AS findings
FROM findings
ALL INNER JOIN (SELECT result_set, name FROM result_sets) USING (result_set)
WHERE name LIKE 'project01/%' AND suppressed = 0
GROUP BY name, level
ORDER BY name, level
