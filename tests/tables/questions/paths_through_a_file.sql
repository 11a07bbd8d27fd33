-- Findings of which rules have a path that crosses a file, and end in another one?
SELECT f.rule, count(*) AS findings
FROM findings AS f
  JOIN (SELECT DISTINCT result_set, finding FROM steps WHERE uri = 'src/core/file0.c') AS p
  ON p.result_set = f.result_set AND p.finding = f.finding
WHERE f.uri <> 'src/core/file0.c'
GROUP BY f.rule
ORDER BY f.rule
