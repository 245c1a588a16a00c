' One of several that save vouchers in the same books at once: writer.vbs BOOK COUNT
Dim session, props, vouchers, voucher, i, debit, credit

Set session = CreateObject("QDSVGLSession.SessionUpdate")
props = session.Login(WScript.Arguments(0), "administrator", "")
Set vouchers = CreateObject("QDCLGL.VoucherSet")
For i = 1 To CLng(WScript.Arguments(1))
  Set voucher = vouchers.CreateNew
  voucher.VoucherDate = DateSerial(2024, 1, 31)
  voucher.GroupID = 1
  voucher.Entries.Add
  voucher.Entries(1).AccountNumber = "1000"
  voucher.Entries(1).Debit = 1
  voucher.Entries.Add
  voucher.Entries(2).AccountNumber = "3000"
  voucher.Entries(2).Credit = 1
  voucher.SaveChanges
Next
session.Logout props
WScript.Echo "END"
