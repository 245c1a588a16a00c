-- Vouchers that revalue
CREATE INDEX t_Voucher_Revalues ON t_Voucher (FYear, FPeriod) WHERE FInternalInd = 'Revaluation';
