-- Balances of whole years
-- What t_Balance has of years, up to the last that is summed: a trial balance of late periods adds
-- up a row for each year before them. It is the one before the latest year with a posting, so that
-- only belated postings keep these sums too.
CREATE TABLE t_YearBalance (
  FAccountID INTEGER NOT NULL REFERENCES t_Account (FAccountID),
  FCurrencyID INTEGER NOT NULL REFERENCES t_Currency (FCurrencyID),
  FYear INTEGER NOT NULL,
  FDebit INTEGER NOT NULL,
  FCredit INTEGER NOT NULL,
  FDebitFor INTEGER NOT NULL,
  FCreditFor INTEGER NOT NULL,
  FDebitQty INTEGER NOT NULL,
  FCreditQty INTEGER NOT NULL,
  PRIMARY KEY (FAccountID, FCurrencyID, FYear)
) CLUSTERED;

-- The balances of a year lie together, as they are read and as they change. Those of an account are
-- found by an index.
CREATE TABLE t_BalanceByYear (
  FYear INTEGER NOT NULL,
  FAccountID INTEGER NOT NULL REFERENCES t_Account (FAccountID),
  FCurrencyID INTEGER NOT NULL REFERENCES t_Currency (FCurrencyID),
  FPeriod INTEGER NOT NULL,
  FDebit INTEGER NOT NULL,
  FCredit INTEGER NOT NULL,
  FDebitFor INTEGER NOT NULL,
  FCreditFor INTEGER NOT NULL,
  FDebitQty INTEGER NOT NULL,
  FCreditQty INTEGER NOT NULL,
  PRIMARY KEY (FYear, FAccountID, FCurrencyID, FPeriod)
) CLUSTERED;
INSERT INTO t_BalanceByYear (FYear, FAccountID, FCurrencyID, FPeriod, FDebit, FCredit, FDebitFor,
  FCreditFor, FDebitQty, FCreditQty)
SELECT FYear, FAccountID, FCurrencyID, FPeriod, FDebit, FCredit, FDebitFor, FCreditFor, FDebitQty,
  FCreditQty
FROM t_Balance;
DROP TABLE t_Balance;
ALTER TABLE t_BalanceByYear RENAME TO t_Balance;
CREATE INDEX t_Balance_Account ON t_Balance (FAccountID);

ALTER TABLE t_Posted ADD COLUMN FSummedYear INTEGER NOT NULL DEFAULT 0;
UPDATE t_Posted SET FSummedYear = (SELECT COALESCE(MAX(FYear) - 1, 0) FROM t_Balance);
INSERT INTO t_YearBalance (FAccountID, FCurrencyID, FYear, FDebit, FCredit, FDebitFor, FCreditFor,
  FDebitQty, FCreditQty)
SELECT FAccountID, FCurrencyID, FYear, SUM(FDebit), SUM(FCredit), SUM(FDebitFor), SUM(FCreditFor),
  SUM(FDebitQty), SUM(FCreditQty)
FROM t_Balance WHERE FYear < (SELECT MAX(FYear) FROM t_Balance)
GROUP BY FAccountID, FCurrencyID, FYear;
