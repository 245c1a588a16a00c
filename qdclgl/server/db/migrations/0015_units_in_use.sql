-- Units in use
-- A ledger asks for the ids that the vouchers of a year have.
CREATE INDEX t_Voucher_Year ON t_Voucher (FYear, FVoucherID);

-- Where a line's unit is not the one that its account counts in, its quantity in that. Lines that
-- are here already count as they were entered.
ALTER TABLE t_VoucherEntry ADD COLUMN FBaseQuantity REAL NOT NULL DEFAULT 0;
ALTER TABLE t_VoucherTempEntry ADD COLUMN FBaseQuantity REAL NOT NULL DEFAULT 0;

-- Units and groups that accounts and lines named before there were any.
INSERT INTO t_UnitGroup (FUnitGroupID, FVersion, FName, FDefaultUnitID)
  SELECT FUnitGroupID, 1, TRIM(SUBSTR(MIN(FUnitGroup), 1, 200) || ' (' || FUnitGroupID || ')'), 0
  FROM t_Account
  WHERE FUnitGroupID <> 0 AND FUnitGroupID NOT IN (SELECT FUnitGroupID FROM t_UnitGroup)
  GROUP BY FUnitGroupID;
UPDATE t_Account SET FUnitGroup = (
  SELECT g.FName FROM t_UnitGroup g WHERE g.FUnitGroupID = t_Account.FUnitGroupID
) WHERE FUnitGroupID <> 0;

CREATE TABLE t_NamedUnit AS
  SELECT FUnitID, MAX(FGroupID) AS FGroupID, MAX(FText) AS FText FROM (
    SELECT FMeasureUnitID AS FUnitID, FUnitGroupID AS FGroupID, FMeasureUnit AS FText
    FROM t_Account WHERE FMeasureUnitID <> 0
    UNION ALL
    SELECT e.FMeasureUnitID, a.FUnitGroupID, e.FMeasureUnit
    FROM t_VoucherEntry e JOIN t_Account a ON a.FAccountID = e.FAccountID
    WHERE e.FMeasureUnitID <> 0
  ) AS named
  WHERE FUnitID NOT IN (SELECT FMeasureUnitID FROM t_MeasureUnit)
  GROUP BY FUnitID;
INSERT INTO t_UnitGroup (FUnitGroupID, FVersion, FName, FDefaultUnitID)
  SELECT 1 + COALESCE(MAX(FUnitGroupID), 0), 1, 'Units of no group', 0 FROM t_UnitGroup
  HAVING EXISTS (SELECT 1 FROM t_NamedUnit WHERE FGroupID = 0);
UPDATE t_NamedUnit SET FGroupID = (SELECT MAX(FUnitGroupID) FROM t_UnitGroup) WHERE FGroupID = 0;
INSERT INTO t_MeasureUnit (FMeasureUnitID, FVersion, FUnitGroupID, FNumber, FName, FCoefficient,
    FConversation, FPrecision, FStandard, FAuxClass, FDeleted, UUID)
  SELECT FUnitID, 1, FGroupID, '' || FUnitID,
    CASE WHEN FText = '' THEN '' || FUnitID ELSE SUBSTR(FText, 1, 200) END, 1, 1, 0, 0, '', 0, ''
  FROM t_NamedUnit;
UPDATE t_UnitGroup SET FDefaultUnitID = (
  SELECT MIN(u.FMeasureUnitID) FROM t_MeasureUnit u
  WHERE u.FUnitGroupID = t_UnitGroup.FUnitGroupID
) WHERE FDefaultUnitID = 0 AND FUnitGroupID IN (SELECT FGroupID FROM t_NamedUnit);
DROP TABLE t_NamedUnit;

-- Settlement types that templates named and that were gone.
INSERT INTO t_SettType (FItemID, FVersion, FNumber, FName, FAcctID, FBrNo, FDeleted)
  SELECT DISTINCT FSettleTypeID, 1, REPLACE('TEMPLATES_' || FSettleTypeID, '-', '_'), '', 0, '0', 0
  FROM t_VoucherTempEntry
  WHERE FSettleTypeID <> 0 AND FSettleTypeID NOT IN (SELECT FItemID FROM t_SettType);
