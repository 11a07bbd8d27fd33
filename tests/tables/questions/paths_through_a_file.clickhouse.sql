SELECT rule, count(*) AS findings
FROM findings
ALL INNER JOIN (
  SELECT DISTINCT result_set, finding FROM steps WHERE uri = 'src/core/file0.c')
USING (result_set, finding)
WHERE uri <> 'src/core/file0.c'
GROUP BY rule
ORDER BY rule
