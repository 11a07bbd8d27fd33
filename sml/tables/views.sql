-- The checks of result sets, as findings of an analyser.
--
-- What other tables have is taken by sub-selects, one for each column, so that a statement reads
-- only what the columns it names need. A check, an event and an information record have the key
-- (key0, key1): a URI and a number.
--
-- A check is imported if its fields are as an import leaves them: it has one category, a level or a
-- kind, only four bits in one word and zero in six others. All columns of an imported check are as
-- `bradep show --json` prints them. What the fields of another check mean is known only in part; a
-- column that is said to be "imported" is null there.

CREATE VIEW findings AS
WITH c AS NOT MATERIALIZED (
  SELECT
    *,
    category = 'BF_CHECKER_WITH_PRECOMPUTED_MESSAGE'
      AND (third_string <> '' OR fourth_string <> '')
      AND (second_int | 15, third_int, fourth_int, fifth_int, sixth_int, seventh_int, eighth_int)
        = (15, 0, 0, 0, 0, 0, 0) AS is_imported,
    -- In JSON, a byte that is no UTF-8 is an escaped surrogate, which no text can hold. It becomes
    -- the six characters that it is in other columns, and so does a NUL.
    json_extract(
      replace(replace(replace(category_args, '\\', '\u005c'), '\udc', '\\udc'),
        '\u0000', '\\u0000'),
      '$.message') AS category_message,
    -- No field that a result set has is a colour.
    CAST(NULL AS TEXT) AS colour
  FROM checks
)
SELECT
  result_set,
  "row" AS finding,
  -- Imported: the number of the run, over all logs.
  CASE WHEN is_imported THEN first_int END AS run,
  -- Imported: tool.driver.name.
  CASE WHEN second_int & 1 AND is_imported THEN first_string END AS tool,
  -- Imported: tool.driver.version or semanticVersion.
  CASE WHEN second_int & 2 AND is_imported THEN second_string END AS tool_version,
  -- Imported: the id of the rule; else the category.
  CASE WHEN is_imported THEN optional_string ELSE category END AS rule,
  -- Imported: none, note, warning or error; else by the colour.
  CASE WHEN is_imported THEN third_string
    ELSE CASE colour
      WHEN 'RED' THEN 'error'
      WHEN 'GRAY' THEN 'note'
      WHEN 'GREEN' THEN 'none'
      ELSE 'warning'  -- ORANGE and DARKORANGE, too
    END
  END AS level,
  -- Imported: the kind, as in fail.
  CASE WHEN is_imported THEN fourth_string END AS kind,
  -- The message of the one category that has a text for it.
  CASE WHEN category = 'BF_CHECKER_WITH_PRECOMPUTED_MESSAGE'
    THEN CASE WHEN second_int & 4 THEN category_message ELSE nullif(category_message, '') END
  END AS message,
  -- The name of the category's arm.
  category,
  -- The file of the source reference, else that of the key. An imported one may be empty.
  coalesce(
    nullif(source_ref__localization__file, ''),
    nullif(key0, ''),
    CASE WHEN source_ref__kind & 2 AND is_imported THEN '' END) AS uri,
  -- Imported: uriBaseId.
  CASE WHEN source_ref__kind & 4 AND is_imported THEN fifth_string END AS base,
  -- The positions of the source reference; 0 is none, unless a log gives it.
  coalesce(
    nullif(source_ref__localization__first_position, 0),
    CASE WHEN source_ref__kind & 8 AND is_imported THEN 0 END) AS line,
  coalesce(
    nullif(source_ref__localization__second_position, 0),
    CASE WHEN source_ref__kind & 16 AND is_imported THEN 0 END) AS "column",
  -- Imported: the halves of a word, with their signs.
  CASE WHEN source_ref__kind & 32 AND is_imported THEN source_ref__reference >> 32 END AS end_line,
  CASE WHEN source_ref__kind & 64 AND is_imported
    THEN source_ref__reference << 32 >> 32
  END AS end_column,
  -- Imported: the name of the first logical location, mostly a function.
  CASE WHEN source_ref__kind & 128 AND is_imported THEN (
    SELECT form.p1__second_optional_name FROM check_data AS form
    WHERE form.result_set = c.result_set AND form.p1__first_numbered_name__p0 = c.key0
      AND form.p1__first_numbered_name__p1 = c.key1
    LIMIT 1)
  END AS function,
  -- 1 if a suppression of the check is accepted or has no status, else 0. (In CASE, a row that is
  -- not found is not looked for again among rows with nulls, one by one.)
  CASE WHEN (result_set, key0, key1) IN (
      SELECT result_set, second_string, second_int FROM infos
      WHERE first_string = 'suppression' AND category = 'TOOLTIP_INFO'
        AND CASE WHEN flag THEN json_extract(category_args, '$.tooltip') = 'accepted' ELSE 1 END)
    THEN 1 ELSE 0
  END AS suppressed,
  -- Imported: new, unchanged, updated or absent.
  CASE WHEN second_int & 8 AND is_imported THEN sixth_string END AS baseline_state,
  -- The colour of a check: null, see above.
  colour,
  -- The class in the form of the check; without a form, the classifications of the check.
  coalesce(
    (SELECT form.p1__classification__classification_class FROM check_data AS form
      WHERE form.result_set = c.result_set AND form.p1__first_numbered_name__p0 = c.key0
        AND form.p1__first_numbered_name__p1 = c.key1
      LIMIT 1),
    (SELECT group_concat(value, ',') FROM (
      SELECT DISTINCT one.value FROM checks__classifications AS one
      WHERE one.result_set = c.result_set AND one.parent = c."row"
      ORDER BY one.value))) AS class,
  key0 || ':' || key1 AS "key"
FROM c;

-- The steps that lead to a finding: the entries of its failure. Of an imported check, each has its
-- place in a thread of a flow; of another check, all are in one thread.
CREATE VIEW steps AS
WITH
  -- The threads, as in 'codeFlows/0/threadFlows/1/locations', with a number that rises from thread
  -- to thread.
  threads AS NOT MATERIALIZED (
    SELECT
      result_set,
      parent,
      value AS steps,
      CAST(substr("key", length('codeFlows/') + 1) AS INTEGER) << 32
        | CAST(substr("key", instr("key", '/threadFlows/') + length('/threadFlows/')) AS INTEGER)
        AS number
    FROM checks__failure__named_ints
    WHERE "key" GLOB 'codeFlows/*/threadFlows/*/locations'
  ),
  -- Each with the position of its first step in the failure.
  starts AS NOT MATERIALIZED (
    SELECT
      result_set,
      parent,
      number,
      coalesce(sum(steps) OVER (
        PARTITION BY result_set, parent ORDER BY number
        ROWS BETWEEN UNBOUNDED PRECEDING AND 1 PRECEDING), 0) AS start
    FROM threads
  ),
  -- Each step with the last thread that starts at it or before it.
  numbered AS NOT MATERIALIZED (
    SELECT
      result_set,
      parent,
      is_step,
      key0,
      key1,
      coalesce(max(number) OVER before, 0) AS number,
      position - coalesce(max(start) OVER before, 0) AS position
    FROM (
      SELECT result_set, parent, position, p0__p0 AS key0, p0__p1 AS key1, 1 AS is_step,
        NULL AS number, NULL AS start
      FROM checks__failure__steps
      UNION ALL
      SELECT result_set, parent, start, NULL, NULL, 0, number, start FROM starts)
    WINDOW before AS (PARTITION BY result_set, parent ORDER BY position)
  )
SELECT
  result_set,
  parent AS finding,
  number >> 32 AS flow,
  number & 4294967295 AS thread,
  position,
  -- The rest is that of the event of this key.
  (SELECT coalesce(
      nullif(e.source_ref__localization__file, ''),
      nullif(e.key0, ''),
      CASE WHEN e.source_ref__kind & 2 THEN '' END)
    FROM events AS e
    WHERE e.result_set = s.result_set AND e.key0 = s.key0 AND e.key1 = s.key1
    LIMIT 1) AS uri,
  (SELECT coalesce(
      nullif(e.source_ref__localization__first_position, 0),
      CASE WHEN e.source_ref__kind & 8 THEN 0 END)
    FROM events AS e
    WHERE e.result_set = s.result_set AND e.key0 = s.key0 AND e.key1 = s.key1
    LIMIT 1) AS line,
  (SELECT coalesce(
      nullif(e.source_ref__localization__second_position, 0),
      CASE WHEN e.source_ref__kind & 16 THEN 0 END)
    FROM events AS e
    WHERE e.result_set = s.result_set AND e.key0 = s.key0 AND e.key1 = s.key1
    LIMIT 1) AS "column",
  (SELECT e.optional_string FROM events AS e
    WHERE e.result_set = s.result_set AND e.key0 = s.key0 AND e.key1 = s.key1
    LIMIT 1) AS message
FROM numbered AS s
WHERE is_step;

-- Where a finding is: its locations, of which the finding has the first, and related ones. Those
-- beyond the first are information records, which hold the key of their check.
CREATE VIEW places AS
SELECT
  result_set,
  finding,
  'location' AS kind,
  0 AS position,
  uri,
  base,
  line,
  "column",
  end_line,
  end_column,
  NULL AS message
FROM findings
-- The unary plus: the findings are gone through, not looked up one by one.
WHERE (+result_set, +finding) IN (
  SELECT result_set, "row" FROM checks
  WHERE source_ref__kind & 1 OR source_ref__localization__file <> '' OR key0 <> '')
UNION ALL
SELECT
  i.result_set,
  c."row",
  CASE i.first_string WHEN 'location' THEN 'location' ELSE 'related' END,
  i.first_int,
  CASE WHEN i.location__kind & 2 THEN i.location__localization__file END,
  CASE WHEN i.location__kind & 4 THEN i.fourth_string END,
  CASE WHEN i.location__kind & 8 THEN i.location__localization__first_position END,
  CASE WHEN i.location__kind & 16 THEN i.location__localization__second_position END,
  CASE WHEN i.location__kind & 32 THEN i.location__reference >> 32 END,
  CASE WHEN i.location__kind & 64 THEN i.location__reference << 32 >> 32 END,
  CASE WHEN i.flag AND i.first_string = 'relatedLocation' THEN json_extract(
    replace(replace(replace(i.category_args, '\\', '\u005c'), '\udc', '\\udc'),
      '\u0000', '\\u0000'),
    '$.tooltip')
  END
FROM infos AS i JOIN checks AS c
  ON c.result_set = i.result_set AND c.key0 = i.second_string AND c.key1 = i.second_int
WHERE +i.first_string IN ('location', 'relatedLocation') AND i.category = 'TOOLTIP_INFO';

-- How many findings there are, also suppressed and absent ones: of a rule of a tool, ...
CREATE VIEW rules AS
SELECT result_set, tool, rule, count(*) AS findings FROM findings GROUP BY result_set, tool, rule;

-- ... with their first location in a file, ...
CREATE VIEW files AS
SELECT result_set, uri, count(*) AS findings FROM findings GROUP BY result_set, uri;

-- ... and of a version of a tool. Runs without findings are not counted.
CREATE VIEW tools AS
SELECT result_set, tool, tool_version, count(DISTINCT run) AS runs, count(*) AS findings
FROM findings GROUP BY result_set, tool, tool_version;
