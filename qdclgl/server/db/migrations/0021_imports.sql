-- Imports
CREATE TABLE t_Import (
  FImportID IDENTITY,
  FVersion INTEGER NOT NULL,
  FNumber TEXT NOT NULL UNIQUE,
  FName TEXT NOT NULL,
  FTime TEXT NOT NULL,
  FUserName TEXT NOT NULL,
  FVoucherCount INTEGER NOT NULL,
  FVoucherHash TEXT NOT NULL,
  FTakenOut INTEGER NOT NULL
);

CREATE TABLE t_ImportVoucher (
  FVoucherID INTEGER NOT NULL PRIMARY KEY,
  FImportID INTEGER NOT NULL REFERENCES t_Import (FImportID)
);
CREATE INDEX t_ImportVoucher_Import ON t_ImportVoucher (FImportID, FVoucherID);
