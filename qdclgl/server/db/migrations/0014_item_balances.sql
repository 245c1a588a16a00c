-- Balances by items
-- Combinations of items that posted lines name: an item of each class, in the order of the classes,
-- as in "1:5,3:7". That of none is there from the beginning.
CREATE TABLE t_ItemCombination (
  FCombinationID IDENTITY,
  FItems TEXT NOT NULL UNIQUE
);
INSERT INTO t_ItemCombination (FCombinationID, FItems) VALUES (0, '');

CREATE TABLE t_ItemCombinationItem (
  FCombinationID INTEGER NOT NULL REFERENCES t_ItemCombination (FCombinationID),
  FItemClassID INTEGER NOT NULL,
  FItemID INTEGER NOT NULL,
  PRIMARY KEY (FCombinationID, FItemClassID)
) CLUSTERED;

-- What t_Balance has of accounts that ask for items, by combination.
CREATE TABLE t_ItemBalance (
  FAccountID INTEGER NOT NULL REFERENCES t_Account (FAccountID),
  FCombinationID INTEGER NOT NULL REFERENCES t_ItemCombination (FCombinationID),
  FCurrencyID INTEGER NOT NULL REFERENCES t_Currency (FCurrencyID),
  FYear INTEGER NOT NULL,
  FPeriod INTEGER NOT NULL,
  FDebit INTEGER NOT NULL,
  FCredit INTEGER NOT NULL,
  FDebitFor INTEGER NOT NULL,
  FCreditFor INTEGER NOT NULL,
  FDebitQty INTEGER NOT NULL,
  FCreditQty INTEGER NOT NULL,
  PRIMARY KEY (FAccountID, FCombinationID, FCurrencyID, FYear, FPeriod)
) CLUSTERED;

-- Lines could name items before there were any: each gets its item, under its id. One id in two
-- classes is an item of the first.
INSERT INTO t_Item (FItemID, FVersion, FItemClassID, FParentID, FNumber, FName, FFullNumber,
  FFullName, FLevel, FDetail, FUNDetail, FHelpCode, FModel, FChkUserID, FRemark, FDeleted, UUID)
SELECT FItemID, 1, FItemClassID, 0, '' || FItemID, FName, '' || FItemID, FName, 1, 1, 0, '', '', 0,
  '', 0, ''
FROM (
  SELECT d.FItemID, MIN(d.FItemClassID) AS FItemClassID,
    COALESCE(NULLIF(SUBSTR(MAX(d.FItemName), 1, 255), ''), '' || d.FItemID) AS FName
  FROM t_VoucherDetail d
  JOIN t_VoucherEntry e ON e.FVoucherID = d.FVoucherID AND e.FEntryID = d.FEntryID
  JOIN t_AccountItem a ON a.FAccountID = e.FAccountID AND a.FItemClassID = d.FItemClassID
  JOIN t_ItemClass c ON c.FItemClassID = d.FItemClassID
  WHERE d.FItemID > 0 AND NOT EXISTS (SELECT 1 FROM t_Item i WHERE i.FItemID = d.FItemID)
  GROUP BY d.FItemID
) AS named;
