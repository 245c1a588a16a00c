-- Voucher templates
CREATE TABLE t_VoucherTemp (
  FVoucherTempID IDENTITY,
  FVersion INTEGER NOT NULL,
  FName TEXT NOT NULL,
  FPeriod INTEGER NOT NULL,
  FPeriodRange TEXT NOT NULL,
  FGroupID INTEGER NOT NULL,
  FNumber INTEGER NOT NULL,
  FReference TEXT NOT NULL,
  FAttachments INTEGER NOT NULL,
  FTypeID INTEGER NOT NULL,
  FVoucherID INTEGER NOT NULL,
  FSaveFlag TEXT NOT NULL
);
CREATE UNIQUE INDEX t_VoucherTemp_Number ON t_VoucherTemp (FPeriod, FGroupID, FNumber);
CREATE INDEX t_VoucherTemp_Group ON t_VoucherTemp (FGroupID);

CREATE TABLE t_VoucherTempEntry (
  FVoucherTempID INTEGER NOT NULL REFERENCES t_VoucherTemp (FVoucherTempID),
  FEntryID INTEGER NOT NULL,
  FAccountID INTEGER NOT NULL,
  FDC INTEGER NOT NULL,
  FAmount INTEGER NOT NULL,
  FCurrencyID INTEGER NOT NULL,
  FAmountFor INTEGER NOT NULL,
  FExchangeRate REAL NOT NULL,
  FQuantity REAL NOT NULL,
  FUnitPrice REAL NOT NULL,
  FMeasureUnitID INTEGER NOT NULL,
  FMeasureUnit TEXT NOT NULL,
  FMeasureUnitNumber TEXT NOT NULL,
  FExplanation TEXT NOT NULL,
  FCashFlowItem INTEGER NOT NULL,
  FSettleTypeID INTEGER NOT NULL,
  FSettleNo TEXT NOT NULL,
  FTransNo TEXT NOT NULL,
  FExtra TEXT NOT NULL,
  PRIMARY KEY (FVoucherTempID, FEntryID)
) CLUSTERED;
CREATE INDEX t_VoucherTempEntry_Account ON t_VoucherTempEntry (FAccountID);

CREATE TABLE t_VoucherTempDetail (
  FVoucherTempID INTEGER NOT NULL,
  FEntryID INTEGER NOT NULL,
  FIndex INTEGER NOT NULL,
  FDetail INTEGER NOT NULL,
  FItemClassID INTEGER NOT NULL,
  FItemClassNumber TEXT NOT NULL,
  FItemClassName TEXT NOT NULL,
  FItemID INTEGER NOT NULL,
  FItemNumber TEXT NOT NULL,
  FItemName TEXT NOT NULL,
  FItemFullName TEXT NOT NULL,
  FValue TEXT NOT NULL,
  PRIMARY KEY (FVoucherTempID, FEntryID, FIndex),
  FOREIGN KEY (FVoucherTempID, FEntryID) REFERENCES t_VoucherTempEntry (FVoucherTempID, FEntryID)
) CLUSTERED;
