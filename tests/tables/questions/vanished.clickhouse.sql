SELECT rule, uri, line, message
FROM findings
WHERE result_set GLOBAL IN (SELECT result_set FROM result_sets WHERE name = 'project00/2024-12-30.rs')
  AND (rule, uri, message) GLOBAL NOT IN (
    SELECT rule, uri, message FROM findings
    WHERE result_set GLOBAL IN (SELECT result_set FROM result_sets WHERE name = 'project00/2025-01-01.rs'))
ORDER BY rule, uri, line, message
