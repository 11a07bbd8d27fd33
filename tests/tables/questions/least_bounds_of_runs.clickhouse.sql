SELECT name, min(concat(assumeNotNull(value_order), '|', assumeNotNull(value))) AS least
FROM integer_sets__value
ALL INNER JOIN (SELECT result_set, name FROM result_sets) USING (result_set)
GROUP BY name
ORDER BY name
