-- Kinds of accounts
ALTER TABLE t_Account ADD COLUMN FKind TEXT NOT NULL DEFAULT '';

-- The vouchers that carry a year's result, which the year's statement leaves out.
CREATE INDEX t_Voucher_Carried ON t_Voucher (FYear) WHERE FInternalInd = 'TransferPL';
