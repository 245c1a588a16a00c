-- Vouchers by their year
CREATE INDEX t_Voucher_Year ON t_Voucher (FYear, FVoucherID);
