SELECT category, value, count(*) AS checks
FROM checks
ALL INNER JOIN (
  SELECT result_set, parent AS "row", value FROM checks__classifications)
USING (result_set, "row")
GROUP BY category, value
ORDER BY category, value
