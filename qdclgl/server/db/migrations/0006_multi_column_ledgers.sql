-- Multi-column ledgers
CREATE TABLE t_MultiColumnLedger (
  FLedgerID IDENTITY,
  FVersion INTEGER NOT NULL,
  FLedgerName TEXT NOT NULL UNIQUE,
  FAccountID INTEGER NOT NULL REFERENCES t_Account (FAccountID)
);
CREATE INDEX t_MultiColumnLedger_Account ON t_MultiColumnLedger (FAccountID);

CREATE TABLE t_MultiColumn (
  FLedgerID INTEGER NOT NULL REFERENCES t_MultiColumnLedger (FLedgerID),
  FIndex INTEGER NOT NULL,
  FColumnID INTEGER NOT NULL,
  FColumnName TEXT NOT NULL,
  FAccountID INTEGER NOT NULL,
  FDC INTEGER NOT NULL,
  PRIMARY KEY (FLedgerID, FIndex)
) CLUSTERED;
CREATE INDEX t_MultiColumn_Account ON t_MultiColumn (FAccountID);

CREATE TABLE t_MultiSubColumn (
  FLedgerID INTEGER NOT NULL REFERENCES t_MultiColumnLedger (FLedgerID),
  FIndex INTEGER NOT NULL,
  FSerialNo INTEGER NOT NULL,
  FSubColumnName TEXT NOT NULL,
  FCurrencyID INTEGER NOT NULL,
  PRIMARY KEY (FLedgerID, FIndex)
) CLUSTERED;
CREATE INDEX t_MultiSubColumn_Currency ON t_MultiSubColumn (FCurrencyID);

-- A ledger reads the lines of an account and a span of time, whose vouchers have ids close to each
-- other.
DROP INDEX t_VoucherEntry_Account;
CREATE INDEX t_VoucherEntry_Account ON t_VoucherEntry (FAccountID, FVoucherID);
