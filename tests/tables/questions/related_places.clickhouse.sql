SELECT related, count(*) AS findings
FROM findings
ALL INNER JOIN (
  SELECT result_set, finding, uri AS related FROM places WHERE kind = 'related')
USING (result_set, finding)
WHERE related <> uri
GROUP BY related
ORDER BY findings DESC, related
LIMIT 20
