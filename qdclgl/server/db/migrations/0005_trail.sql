-- The audit trail as chains of rows and sealed blocks
ALTER TABLE t_Audit ADD COLUMN FConnection TEXT NOT NULL DEFAULT '';
ALTER TABLE t_Audit ADD COLUMN FNumber INTEGER NOT NULL DEFAULT 0;
ALTER TABLE t_Audit ADD COLUMN FHash TEXT NOT NULL DEFAULT '';
UPDATE t_Audit SET FNumber = (SELECT COUNT(*) FROM t_Audit former
  WHERE former.FSubject = t_Audit.FSubject AND former.FRecordID = t_Audit.FRecordID
  AND former.FAuditID <= t_Audit.FAuditID);
DROP INDEX t_Audit_Record;
CREATE UNIQUE INDEX t_Audit_Record ON t_Audit (FSubject, FRecordID, FNumber);

CREATE TABLE t_AuditSeal (
  FSealID INTEGER NOT NULL PRIMARY KEY,
  FTime TEXT NOT NULL,
  FLastAuditID INTEGER NOT NULL,
  FCount INTEGER NOT NULL,
  FUnderWay TEXT NOT NULL,
  FHash TEXT NOT NULL
);
