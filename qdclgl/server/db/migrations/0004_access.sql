-- Failed logins; who had a hand in a voucher
CREATE TABLE t_LoginFailure (
  FUserName TEXT NOT NULL PRIMARY KEY,
  FCount INTEGER NOT NULL,
  FLastTime INTEGER NOT NULL
);

CREATE TABLE t_VoucherEditor (
  FVoucherID INTEGER NOT NULL REFERENCES t_Voucher (FVoucherID),
  FUserID INTEGER NOT NULL,
  PRIMARY KEY (FVoucherID, FUserID)
) CLUSTERED;
INSERT INTO t_VoucherEditor (FVoucherID, FUserID)
  SELECT DISTINCT v.FVoucherID, a.FUserID FROM t_Audit a
  JOIN t_Voucher v ON v.FVoucherID = a.FRecordID
  WHERE a.FSubject = 'Voucher' AND a.FAction IN ('Create', 'Update', 'ClearCashFlow')
  AND a.FUserID <> v.FPreparerID;
