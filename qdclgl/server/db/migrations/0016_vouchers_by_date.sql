-- Vouchers by date
CREATE INDEX t_Voucher_Date ON t_Voucher (FDate, FVoucherID);
