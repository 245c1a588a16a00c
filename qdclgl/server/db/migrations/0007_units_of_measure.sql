-- Units of measure
CREATE TABLE t_UnitGroup (
  FUnitGroupID IDENTITY,
  FVersion INTEGER NOT NULL,
  FName TEXT NOT NULL UNIQUE,
  FDefaultUnitID INTEGER NOT NULL
);

CREATE TABLE t_MeasureUnit (
  FMeasureUnitID IDENTITY,
  FVersion INTEGER NOT NULL,
  FUnitGroupID INTEGER NOT NULL REFERENCES t_UnitGroup (FUnitGroupID),
  FNumber TEXT NOT NULL UNIQUE,
  FName TEXT NOT NULL,
  FCoefficient REAL NOT NULL,
  FConversation INTEGER NOT NULL,
  FPrecision INTEGER NOT NULL,
  FStandard INTEGER NOT NULL,
  FAuxClass TEXT NOT NULL,
  FDeleted INTEGER NOT NULL,
  UUID TEXT NOT NULL
);
CREATE INDEX t_MeasureUnit_Group ON t_MeasureUnit (FUnitGroupID);

CREATE INDEX t_Account_Unit ON t_Account (FMeasureUnitID) WHERE FMeasureUnitID <> 0;
CREATE INDEX t_Account_UnitGroup ON t_Account (FUnitGroupID) WHERE FUnitGroupID <> 0;
CREATE INDEX t_VoucherEntry_Unit ON t_VoucherEntry (FMeasureUnitID) WHERE FMeasureUnitID <> 0;
