-- How did the open findings of a project develop?
SELECT s.name, f.level, count(*) AS findings
FROM result_sets AS s JOIN findings AS f ON f.result_set = s.result_set
WHERE s.name LIKE 'project01/%' AND f.suppressed = 0
GROUP BY s.name, f.level
ORDER BY s.name, f.level
