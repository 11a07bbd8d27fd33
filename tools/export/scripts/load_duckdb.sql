-- Creates the tables that are missing and loads the result sets that are not loaded yet, in one
-- transaction. Run it in the directory of the export, with DuckDB 1.1 or later:
--
--   duckdb FILE.duckdb < schema/load_duckdb.sql

BEGIN TRANSACTION;

@create@
CREATE OR REPLACE TEMPORARY MACRO set_of(file) AS
  regexp_extract(file, '([0-9]+)[.]@format@$', 1)::BIGINT;
CREATE OR REPLACE TEMPORARY TABLE new_sets AS
  SELECT set_of(file) AS result_set FROM glob('result_sets/*.@format@')
  WHERE set_of(file) NOT IN (SELECT result_set FROM result_sets);

-- Not every result set has a file for a table; a list of files may not be empty.
CREATE OR REPLACE TEMPORARY MACRO files_of(name) AS (
  SELECT list('schema/empty/' || name || '.@format@')
    || coalesce((
      SELECT list(file ORDER BY file) FROM glob(name || '/*.@format@')
      WHERE set_of(file) IN (SELECT result_set FROM new_sets)), []));

@load@
DROP TABLE new_sets;
COMMIT;
