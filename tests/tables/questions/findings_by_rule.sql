-- How often is each rule broken, and in how many runs?
SELECT rule, count(*) AS findings, count(DISTINCT result_set) AS runs
FROM findings
GROUP BY rule
ORDER BY rule
