' Vouchers with their lines, whose server is components written in script.
Dim recorder, vouchers, voucher, line, lines, walked, other, copy

Set recorder = CreateObject("QdclglTest.Recorder")
Set vouchers = CreateObject("QDCLGL.VoucherSet")
recorder.Take

Function Called()
  Called = Replace(recorder.Take(), vbCrLf, "|")
End Function

TestCase "a voucher is read with its lines, amounts and date"
Set voucher = vouchers(2)
Check Called(), "String VoucherInfo.GetDetail(2, Boolean False)|"
Check voucher.VoucherID, "Long 2"
Check voucher.DebitTotal, "Currency 100.25"
Check voucher.CreditTotal, "Currency 100.25"
Check voucher.VoucherDate = DateSerial(2024, 2, 29), "Boolean True"
Check VarType(voucher.VoucherDate), "Integer 7"

TestCase "the lines are indexed and walked"
Check voucher.Entries.Count, "Long 2"
Check voucher.Entries(1).AccountID, "Long 1001"
Check voucher.Entries.Item(2).AccountID, "Long 2001"
walked = ""
For Each line In voucher.Entries
  walked = walked & line.AccountID & ":" & line.Debit & "/" & line.Credit & ";"
Next
Check walked, "String 1001:100.25/0;2001:0/100.25;"

TestCase "named parts of a key reach the server, left-out ones as their defaults"
Set other = vouchers.Item("5", 2024, 3, "Receipts", 7)
Set copy = vouchers.Item("5", 2024, , "Receipts")
Check Called(), "String VoucherInfo.GetDetailByNumber(2024, 3, ""Receipts"", 7, Boolean False)|VoucherInfo.GetDetailByNumber(2024, 0, ""Receipts"", 0, Boolean False)|"

TestCase "numbers of any width and text are taken as an amount"
Set line = voucher.Entries(1)
line.Debit = 7
Check line.Debit, "Currency 7"
line.Debit = 7.5
Check line.Debit, "Currency 7.5"
line.Debit = CLng(100000)
Check line.Debit, "Currency 100000"
line.Debit = "12.3456"
Check line.Debit, "Currency 12.3456"
Check voucher.Modified, "Boolean True"

TestCase "a changed voucher is saved as a whole tree"
voucher.SaveChanges
Check Called(), "String VoucherInfo.CheckExistCashProfit(2)|VoucherUpdate.ClearCashFlow(2)|VoucherUpdate.Update(2, {FVoucherID: 2, FDate: Date " & CStr(DateSerial(2024, 2, 29)) & ", FChecked: Boolean False, _Entries: [{FAccountID: Integer 1001, FDC: 1, FAmount: Currency 12.3456}, {FAccountID: Integer 2001, FDC: Integer 0, FAmount: Currency 100.25}], MachineName: here, IPAddress: here, FFootNote: "" ""})|"
Check voucher.Modified, "Boolean False"

TestCase "the details of a line are a list of their own"
Set lines = line.Details
Check lines.Count, "Long 0"
Check TypeName(lines), "String _VoucherDetailSet"

TestCase "a save is stamped with the machine's name and address"
Set other = voucher.Properties.Dictionary
Check other("MachineName"), "String " & UCase(CreateObject("WScript.Shell").ExpandEnvironmentStrings("%COMPUTERNAME%"))
Check UBound(Split(other("IPAddress"), ".")), "Long 3"

TestCase "a new voucher is created and read again"
Set other = vouchers.CreateNew(2024, 2)
other.SaveChanges
Check other.VoucherID, "Long 4"
Check Called(), "String VoucherUpdate.Create({FYear: 2024, FPeriod: 2, MachineName: here, IPAddress: here, FFootNote: "" ""})|VoucherInfo.GetDetail(4, Boolean False)|"

TestCase "a step of the workflow goes to the server, one that doesn't apply does not"
voucher.Check
voucher.Approve
Set other = vouchers(3)
recorder.Take
other.Check
other.Approve
Check Called(), "String VoucherUpdate.Approve(3, Boolean True)|VoucherInfo.GetDetail(3, Boolean False)|"

TestCase "a refused step keeps the server's number"
vouchers.Post 2
On Error Resume Next
vouchers.Post 99
Check Err.Number, "Long -2147219593"
Err.Clear
On Error Goto 0
Check Called(), "String VoucherUpdate.Post(2)|VoucherUpdate.Post(99)|"

TestCase "a set of vouchers is walked"
walked = ""
For Each other In vouchers
  walked = walked & other.VoucherID & ";"
Next
Check walked, "String 1;2;"

TestCase "an object property is put by Set and by plain assignment"
Set other = CreateObject("QDL.Dictionary")
other("FBill") = 1
voucher.BillInfo = other
Check voucher.BillInfo Is other, "Boolean True"
Set line.MGBill = other
Check line.MGBill Is other, "Boolean True"

TestCase "an object of the wrong class is refused"
On Error Resume Next
Set line.MGBill = CreateObject("QDL.Vector")
Check Err.Number, "Long 13"
Err.Clear
On Error Goto 0
Check line.MGBill Is other, "Boolean True"

TestCase "a copy is an object of its own"
Set copy = voucher.Clone()
copy.Entries(1).Debit = 1
Check copy.Entries(1).Debit, "Currency 1"
Check voucher.Entries(1).Debit, "Currency 100.25"

Finish
