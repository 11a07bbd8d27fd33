SELECT s.name, min((v.value_order || '|' || v.value) COLLATE "C") AS least
FROM integer_sets__value AS v JOIN result_sets AS s ON s.result_set = v.result_set
GROUP BY s.name
ORDER BY s.name
