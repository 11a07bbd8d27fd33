-- What are the greatest integers, exactly? value_order has the same order as the integers.
SELECT value, count(*) AS times
FROM integer_sets__value
GROUP BY value, value_order
ORDER BY value_order DESC
LIMIT 30
