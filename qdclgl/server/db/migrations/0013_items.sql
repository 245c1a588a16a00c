-- Items of item classes
-- The columns behind UUID are slots, which hold the values of fields that classes describe.
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
  FText1 TEXT NOT NULL, FText2 TEXT NOT NULL, FText3 TEXT NOT NULL, FText4 TEXT NOT NULL,
  FText5 TEXT NOT NULL, FText6 TEXT NOT NULL, FText7 TEXT NOT NULL, FText8 TEXT NOT NULL,
  FText9 TEXT NOT NULL, FText10 TEXT NOT NULL, FText11 TEXT NOT NULL, FText12 TEXT NOT NULL,
  FText13 TEXT NOT NULL, FText14 TEXT NOT NULL, FText15 TEXT NOT NULL, FText16 TEXT NOT NULL,
  FText17 TEXT NOT NULL, FText18 TEXT NOT NULL, FText19 TEXT NOT NULL, FText20 TEXT NOT NULL,
  FText21 TEXT NOT NULL, FText22 TEXT NOT NULL, FText23 TEXT NOT NULL, FText24 TEXT NOT NULL,
  FText25 TEXT NOT NULL, FText26 TEXT NOT NULL, FText27 TEXT NOT NULL, FText28 TEXT NOT NULL,
  FText29 TEXT NOT NULL, FText30 TEXT NOT NULL, FText31 TEXT NOT NULL, FText32 TEXT NOT NULL,
  FText33 TEXT NOT NULL, FText34 TEXT NOT NULL, FText35 TEXT NOT NULL, FText36 TEXT NOT NULL,
  FWhole1 INTEGER NOT NULL, FWhole2 INTEGER NOT NULL, FWhole3 INTEGER NOT NULL,
  FWhole4 INTEGER NOT NULL, FWhole5 INTEGER NOT NULL, FWhole6 INTEGER NOT NULL,
  FWhole7 INTEGER NOT NULL, FWhole8 INTEGER NOT NULL, FWhole9 INTEGER NOT NULL,
  FWhole10 INTEGER NOT NULL, FWhole11 INTEGER NOT NULL, FWhole12 INTEGER NOT NULL,
  FWhole13 INTEGER NOT NULL, FWhole14 INTEGER NOT NULL, FWhole15 INTEGER NOT NULL,
  FWhole16 INTEGER NOT NULL, FWhole17 INTEGER NOT NULL, FWhole18 INTEGER NOT NULL,
  FMoney1 INTEGER NOT NULL, FMoney2 INTEGER NOT NULL, FMoney3 INTEGER NOT NULL,
  FMoney4 INTEGER NOT NULL, FMoney5 INTEGER NOT NULL, FMoney6 INTEGER NOT NULL,
  FMoney7 INTEGER NOT NULL, FMoney8 INTEGER NOT NULL, FMoney9 INTEGER NOT NULL,
  FMoney10 INTEGER NOT NULL, FMoney11 INTEGER NOT NULL, FMoney12 INTEGER NOT NULL,
  FReal1 REAL NOT NULL, FReal2 REAL NOT NULL, FReal3 REAL NOT NULL, FReal4 REAL NOT NULL,
  FReal5 REAL NOT NULL, FReal6 REAL NOT NULL, FReal7 REAL NOT NULL, FReal8 REAL NOT NULL,
  FReal9 REAL NOT NULL, FReal10 REAL NOT NULL, FReal11 REAL NOT NULL, FReal12 REAL NOT NULL,
  UNIQUE (FItemClassID, FNumber)
);
CREATE INDEX t_Item_Parent ON t_Item (FParentID) WHERE FParentID <> 0;
CREATE INDEX t_VoucherDetail_Item ON t_VoucherDetail (FItemID) WHERE FItemID <> 0;

-- Slots that items are searched by. Items marked deleted are left out without a look at them, and
-- an item's id makes lists of equal values orderly.
CREATE INDEX t_Item_FText1 ON t_Item (FItemClassID, FDeleted, FText1, FItemID);
CREATE INDEX t_Item_FText2 ON t_Item (FItemClassID, FDeleted, FText2, FItemID);
CREATE INDEX t_Item_FText3 ON t_Item (FItemClassID, FDeleted, FText3, FItemID);
CREATE INDEX t_Item_FText4 ON t_Item (FItemClassID, FDeleted, FText4, FItemID);
CREATE INDEX t_Item_FText5 ON t_Item (FItemClassID, FDeleted, FText5, FItemID);
CREATE INDEX t_Item_FText6 ON t_Item (FItemClassID, FDeleted, FText6, FItemID);
CREATE INDEX t_Item_FText7 ON t_Item (FItemClassID, FDeleted, FText7, FItemID);
CREATE INDEX t_Item_FText8 ON t_Item (FItemClassID, FDeleted, FText8, FItemID);
CREATE INDEX t_Item_FText9 ON t_Item (FItemClassID, FDeleted, FText9, FItemID);
CREATE INDEX t_Item_FText10 ON t_Item (FItemClassID, FDeleted, FText10, FItemID);
CREATE INDEX t_Item_FText11 ON t_Item (FItemClassID, FDeleted, FText11, FItemID);
CREATE INDEX t_Item_FText12 ON t_Item (FItemClassID, FDeleted, FText12, FItemID);
CREATE INDEX t_Item_FWhole1 ON t_Item (FItemClassID, FDeleted, FWhole1, FItemID);
CREATE INDEX t_Item_FWhole2 ON t_Item (FItemClassID, FDeleted, FWhole2, FItemID);
CREATE INDEX t_Item_FWhole3 ON t_Item (FItemClassID, FDeleted, FWhole3, FItemID);
CREATE INDEX t_Item_FWhole4 ON t_Item (FItemClassID, FDeleted, FWhole4, FItemID);
CREATE INDEX t_Item_FWhole5 ON t_Item (FItemClassID, FDeleted, FWhole5, FItemID);
CREATE INDEX t_Item_FWhole6 ON t_Item (FItemClassID, FDeleted, FWhole6, FItemID);
CREATE INDEX t_Item_FMoney1 ON t_Item (FItemClassID, FDeleted, FMoney1, FItemID);
CREATE INDEX t_Item_FMoney2 ON t_Item (FItemClassID, FDeleted, FMoney2, FItemID);
CREATE INDEX t_Item_FMoney3 ON t_Item (FItemClassID, FDeleted, FMoney3, FItemID);
CREATE INDEX t_Item_FMoney4 ON t_Item (FItemClassID, FDeleted, FMoney4, FItemID);
CREATE INDEX t_Item_FReal1 ON t_Item (FItemClassID, FDeleted, FReal1, FItemID);
CREATE INDEX t_Item_FReal2 ON t_Item (FItemClassID, FDeleted, FReal2, FItemID);
CREATE INDEX t_Item_FReal3 ON t_Item (FItemClassID, FDeleted, FReal3, FItemID);
CREATE INDEX t_Item_FReal4 ON t_Item (FItemClassID, FDeleted, FReal4, FItemID);
