' Settlement dictionaries, notes and voucher templates: one of each is made, saved, found, walked and
' removed. Their server is components written in script, which keep what they are sent.
Dim shell, store, recorder, kind, records, record, walked, template
Const CLASSES = "HKLM\Software\Classes\"
Const DICTIONARIES = "{6f0d7a10-51d5-4be6-9d52-0c4f6a5d0011}"
Const NOTES = "{6f0d7a10-51d5-4be6-9d52-0c4f6a5d0012}"
Const TEMPLATES = "{6f0d7a10-51d5-4be6-9d52-0c4f6a5d0013}"

Set shell = CreateObject("WScript.Shell")
Set store = CreateObject("QdclglTest.Store")
Set recorder = CreateObject("QdclglTest.Recorder")

' One script serves the reading and the writing component of a kind.
Sub ServeBy(id, kind)
  Dim half
  For Each half In Array("Info", "Update")
    shell.Run "reg add " & CLASSES & "QDSVGL" & kind & "." & kind & half & "\CLSID /ve /d " & id & " /f", 0, True
  Next
End Sub

Sub EndService(kind)
  Dim half
  For Each half In Array("Info", "Update")
    shell.Run "reg delete " & CLASSES & "QDSVGL" & kind & "." & kind & half & " /f", 0, True
  Next
End Sub

For Each kind In Array("SettType", "SettAcct", "CheckType", "Payment")
  ServeBy DICTIONARIES, kind
  store.Begin "FItemID"
  Set records = CreateObject("QDCLGL." & kind & "Set")

  TestCase "a " & kind & " is made and saved"
  Set record = records.CreateNew("chq", "Cheque")
  Check TypeName(record), "String _" & kind
  record.SaveChanges
  Check record.ItemID, "Long 1"
  Check record.Number, "String CHQ"
  record.Name = "Cheques"
  record.SaveChanges
  records.CreateNew("bill", "Bill").SaveChanges

  TestCase "a " & kind & " is found by its id and by its number"
  Check records.Item(1).Name, "String Cheques"
  Check records.Item("BILL").ItemID, "Long 2"
  Check records.Item("none").ItemID, "Long 0"

  TestCase kind & "s are counted, read one by one, and walked as currencies"
  Check records.Count, "Long 2"
  Set record = records.GetNext()
  Check TypeName(record) & " " & record.Number, "String _" & kind & " CHQ"
  walked = ""
  For Each record In records
    walked = walked & TypeName(record) & "=" & record.Number & ";"
  Next
  Check walked, "String _Currencyx=CHQ;_Currencyx=BILL;"

  TestCase "a " & kind & " is removed"
  records.Remove 1
  records.Refresh
  Check records.Count, "Long 1"
  Check records.Item(1).ItemID, "Long 0"
Next

ServeBy NOTES, "Note"
store.Begin "FNoteID"
Set records = CreateObject("QDCLGL.NoteSet")

TestCase "a note is made and saved with its data"
Set record = records.CreateNew("Receipt")
record.NoteType = "Receipts"
record.Data = "format"
record.SaveChanges
Check record.NoteID, "Long 1"
Check record, "_Note Receipt"

TestCase "a note is found by its id and by its name"
Check records.Item(1).Data, "String format"
Check records.Item("Receipt").NoteType, "String Receipts"

TestCase "notes are walked as notes"
records.CreateNew("Bill").SaveChanges
walked = ""
For Each record In records
  walked = walked & TypeName(record) & "=" & record.NoteID & record.Name & ";"
Next
Check walked, "String _Note=1Receipt;_Note=2Bill;"

TestCase "a note is removed"
records.Remove 1
records.Refresh
Check records.Count, "Long 1"

ServeBy TEMPLATES, "VoucherTemp"
store.Begin "FVoucherTempID"
Set records = CreateObject("QDCLGL.VoucherTempSet")

TestCase "a template is made and saved with its lines"
Set template = CreateObject("QDCLGL.VoucherTemp")
template.Construct Nothing, Nothing
template.Name = "Rent"
template.Entries.Add
template.Entries.Item(1).Explanation = "Rent"
recorder.Take
template.SaveChanges
Check template.VoucherTempID, "Long 1"
Check Replace(recorder.Take(), vbCrLf, "|"), "String Templates.Create({FName: ""Rent"", _Entries: [{FExplanation: ""Rent""}]})|"

TestCase "a template is found by its id, and by period, group and number whatever the key"
Check records.Item(1).Name, "String Rent"
recorder.Take
Check records.Item("Rent", 1, "Receipts", 7).Name, "String Rent"
Check Replace(recorder.Take(), vbCrLf, "|"), "String Templates.GetDetailByNumber(1, ""Receipts"", 7)|"

TestCase "templates are walked as vouchers and read one by one as templates"
walked = ""
For Each record In records
  walked = walked & TypeName(record) & ";"
Next
Check walked, "String _Voucher;"
Check TypeName(records.GetNext()), "String _VoucherTemp"

TestCase "a set of templates makes none"
On Error Resume Next
records.CreateNew
Check Err.Number, "Long 13"
Err.Clear
On Error Goto 0

TestCase "a template is removed"
records.Remove 1
records.Refresh
Check records.Count, "Long 0"

For Each kind In Array("SettType", "SettAcct", "CheckType", "Payment", "Note", "VoucherTemp")
  EndService kind
Next

Finish
