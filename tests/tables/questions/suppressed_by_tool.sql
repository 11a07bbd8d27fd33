-- Of which versions of the tools are findings suppressed, and how many?
SELECT tool, tool_version, sum(suppressed) AS suppressed, count(*) AS findings
FROM findings
WHERE tool IS NOT NULL
GROUP BY tool, tool_version
ORDER BY tool, tool_version
