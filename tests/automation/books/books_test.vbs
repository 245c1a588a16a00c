' The server components that come with the server, on books in a file: a script alone makes them,
' keeps them and prints their trial balance.
Dim files, folder, book, session, props, group, vouchers, voucher, balance, i, answer

Set files = CreateObject("Scripting.FileSystemObject")
folder = files.GetParentFolderName(WScript.ScriptFullName)
book = folder & "\b" & Chr(252) & "cher.db"

Sub AddAccount(number, name)
  Dim row
  Set row = CreateObject("QDL.Dictionary")
  row("FNumber") = number
  row("FName") = name
  CreateObject("QDSVGLAccount.AccountUpdate").Create props, row
End Sub

Sub AddLine(number, debit, credit)
  Dim line
  voucher.Entries.Add
  Set line = voucher.Entries(voucher.Entries.Count)
  line.AccountNumber = number
  If debit <> 0 Then line.Debit = debit
  If credit <> 0 Then line.Credit = credit
End Sub

' The number of an error that a call raised, and its words.
Function Raised()
  Raised = Hex(Err.Number) & " " & Err.Description
  Err.Clear
End Function

' An amount as other programs read it, whatever the machine's country.
Function Amount(value)
  Amount = Replace(FormatNumber(value, 4, True, False, False), ",", ".")
End Function

TestCase "books are made in a file, whatever its name"
CreateObject("QDSVGLBooks.BooksUpdate").Create book, "EUR", 2024, 12, 1, "administrator", "", True
Check files.FileExists(book), "Boolean True"

TestCase "books that are there stay"
On Error Resume Next
CreateObject("QDSVGLBooks.BooksUpdate").Create book, "EUR", 2024, 12, 1, "administrator", "", True
answer = Raised()
On Error GoTo 0
Check answer, "String 80044205 There is a file " & book & " already."

TestCase "books in a folder that is not there are refused in words"
On Error Resume Next
CreateObject("QDSVGLBooks.BooksUpdate").Create folder & "\nowhere\a.db", "EUR", 2024, 12, 1, "administrator", "", True
answer = Raised()
On Error GoTo 0
Check answer, "String 80044204 There is no folder " & folder & "\nowhere for the books."

TestCase "books in PostgreSQL are refused in words"
On Error Resume Next
CreateObject("QDSVGLSession.SessionUpdate").Login "Provider=PostgreSQL;Initial catalog=books;", "administrator", ""
answer = Raised()
On Error GoTo 0
Check answer, "String 80044203 Books in PostgreSQL can't be opened here: the server components for Windows know SQLite alone."

TestCase "a login tells the session, which the classes find"
Set session = CreateObject("QDSVGLSession.SessionUpdate")
props = session.Login(book, "administrator", "")
Set session = Nothing
Check InStr(props, "Initial catalog=b" & Chr(252) & "cher;") > 0, "Boolean True"
Check CreateObject("QDCLGL.VoucherGroupSet").Count, "Long 0"

TestCase "a voucher group is saved by its class"
Set group = CreateObject("QDCLGL.VoucherGroupSet").CreateNew
group.Name = "General"
group.SaveChanges
Check group.VoucherGroupID, "Long 1"
Check CreateObject("QDCLGL.VoucherGroupSet").Count, "Long 1"

AddAccount "1000", "Cash"
AddAccount "3000", "Sales"
AddAccount "5000", "Rent"

TestCase "vouchers are entered and posted"
Set vouchers = CreateObject("QDCLGL.VoucherSet")
For i = 1 To 20
  Set voucher = vouchers.CreateNew
  voucher.VoucherDate = DateSerial(2024, 1, i)
  voucher.GroupID = 1
  If i Mod 5 = 0 Then
    AddLine "5000", 40, 0
    AddLine "1000", 0, 40
  Else
    AddLine "1000", i + 0.25, 0
    AddLine "3000", 0, i + 0.25
  End If
  voucher.SaveChanges
  vouchers.Post voucher.VoucherID
Next
Check vouchers.Count, "Long 20"
Check voucher.Number, "Long 20"

TestCase "a voucher that doesn't balance is refused in words and nothing is saved"
Set voucher = vouchers.CreateNew
voucher.VoucherDate = DateSerial(2024, 1, 31)
voucher.GroupID = 1
AddLine "1000", 10, 0
AddLine "3000", 0, 9
On Error Resume Next
voucher.SaveChanges
answer = Raised()
On Error GoTo 0
Check Left(answer, 8), "String 80044221"
Set vouchers = CreateObject("QDCLGL.VoucherSet")
Check vouchers.Count, "Long 20"

TestCase "the books pass the check"
Check CreateObject("QDSVGLBooks.BooksInfo").Check(props).RecordCount, "Long 0"

TestCase "the trial balance is written"
Set balance = CreateObject("QDSVGLBalance.BalanceInfo").GetList(props, 0, 0, 0, "FCurrencyID = 0")
Set answer = files.CreateTextFile(folder & "\balance.csv", True)
answer.Write "account,debit,credit,balance" & vbLf
Do Until balance.EOF
  answer.Write balance.Fields("FAccountNumber").Value & "," & Amount(balance.Fields("FDebit").Value) & "," & _
    Amount(balance.Fields("FCredit").Value) & "," & Amount(balance.Fields("FEndBalance").Value) & vbLf
  balance.MoveNext
Loop
answer.Close
Check balance.RecordCount, "Long 3"

TestCase "behind the logout there is no session"
CreateObject("QDSVGLSession.SessionUpdate").Logout props
On Error Resume Next
CreateObject("QDSVGLBooks.BooksInfo").Check props
answer = Raised()
On Error GoTo 0
Check Left(answer, 8), "String 80044200"

' Made by the program of the machine that Wine runs on, which looks at them afterwards.
TestCase "books of another system are opened and go on"
props = CreateObject("QDSVGLSession.SessionUpdate").Login(folder & "\from-elsewhere.db", "administrator", "")
AddAccount "4711", "Caf" & Chr(233)
Check CreateObject("QDCLGL.AccountSet").Item("4711").Name, "String Caf" & Chr(233)

Finish
