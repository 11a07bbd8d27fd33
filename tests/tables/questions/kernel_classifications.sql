-- How are the checks of the kernel classified, by category? These are tables of the wire form.
SELECT c.category, k.value, count(*) AS checks
FROM checks AS c
  JOIN checks__classifications AS k ON k.result_set = c.result_set AND k.parent = c."row"
GROUP BY c.category, k.value
ORDER BY c.category, k.value
