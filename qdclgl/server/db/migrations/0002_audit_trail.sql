-- Who did what, and when; vouchers found by their reference
CREATE TABLE t_Audit (
  FAuditID IDENTITY,
  FTime TEXT NOT NULL,
  FUserID INTEGER NOT NULL,
  FUserName TEXT NOT NULL,
  FMachineName TEXT NOT NULL,
  FIPAddress TEXT NOT NULL,
  FSubject TEXT NOT NULL,
  FRecordID INTEGER NOT NULL,
  FRecord TEXT NOT NULL,
  FAction TEXT NOT NULL,
  FOrigin INTEGER NOT NULL,
  FChanges TEXT NOT NULL
);
CREATE INDEX t_Audit_Record ON t_Audit (FSubject, FRecordID);
CREATE INDEX t_Voucher_Reference ON t_Voucher (FReference);
