-- Which files help to understand findings in other files?
SELECT p.uri, count(*) AS findings
FROM places AS p JOIN findings AS f ON f.result_set = p.result_set AND f.finding = p.finding
WHERE p.kind = 'related' AND p.uri <> f.uri
GROUP BY p.uri
ORDER BY findings DESC, p.uri
LIMIT 20
