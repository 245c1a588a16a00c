-- Items of item classes
CREATE TABLE t_Item (
  FItemID IDENTITY,
  FVersion INTEGER NOT NULL,
  FItemClassID INTEGER NOT NULL REFERENCES t_ItemClass (FItemClassID),
  FParentID INTEGER NOT NULL,
  FNumber TEXT NOT NULL,
  FName TEXT NOT NULL,
  FFullNumber TEXT NOT NULL,
  FFullName TEXT NOT NULL,
  FLevel INTEGER NOT NULL,
  FDetail INTEGER NOT NULL,
  FUNDetail INTEGER NOT NULL,
  FHelpCode TEXT NOT NULL,
  FModel TEXT NOT NULL,
  FChkUserID INTEGER NOT NULL,
  FRemark TEXT NOT NULL,
  FDeleted INTEGER NOT NULL,
  UUID TEXT NOT NULL,
  UNIQUE (FItemClassID, FNumber)
);
CREATE INDEX t_Item_Parent ON t_Item (FParentID) WHERE FParentID <> 0;
CREATE INDEX t_VoucherDetail_Item ON t_VoucherDetail (FItemID) WHERE FItemID <> 0;
