-- Posted lines by account and day
-- A statement of an account reads the lines of its days and no others, in whatever order their
-- vouchers were saved.
CREATE TABLE t_PostedLine (
  FAccountID INTEGER NOT NULL,
  FDate TEXT NOT NULL,
  FVoucherID INTEGER NOT NULL,
  FEntryID INTEGER NOT NULL,
  PRIMARY KEY (FAccountID, FDate, FVoucherID, FEntryID)
) CLUSTERED;
INSERT INTO t_PostedLine (FAccountID, FDate, FVoucherID, FEntryID)
  SELECT e.FAccountID, v.FDate, e.FVoucherID, e.FEntryID
  FROM t_Voucher v JOIN t_VoucherEntry e ON e.FVoucherID = v.FVoucherID
  WHERE v.FPosted = 1;

-- What is not posted is found by its day.
CREATE INDEX t_Voucher_NotPosted ON t_Voucher (FDate) WHERE FPosted = 0;

-- The combinations that an item stands in.
CREATE INDEX t_ItemCombinationItem_Item ON t_ItemCombinationItem (FItemID);
