' The containers that a server component needs.
Dim row, list, rows, other, text, item, d, bytes, value, field

TestCase "a Dictionary is read and written by its default member"
Set row = CreateObject("QDL.Dictionary")
row("FName") = "Receipts"
row("FID") = 5
Check row("FName"), "String Receipts"
Check row.Value("FID"), "Integer 5"
Check row.Count, "Long 2"
Check row.Name(2), "String FID"

TestCase "a property may stand alone as a statement, with and without arguments"
On Error Resume Next
row.Count
row.Value "FID"
Check Err.Number, "Long 0"
On Error GoTo 0

TestCase "a Dictionary keeps each value's own type"
row("truth") = True
row("long") = 100000
row("double") = 1.5
row("currency") = CCur("12345.6789")
row("date") = DateSerial(2024, 2, 29)
row("single") = CSng(0.5)
row("byte") = CByte(200)
row("null") = Null
row("empty") = Empty
Check row("truth"), "Boolean True"
Check row("long"), "Long 100000"
Check row("double"), "Double 1.5"
Check row("currency"), "Currency 12345.6789"
Check row("date") = DateSerial(2024, 2, 29), "Boolean True"
Check VarType(row("date")), "Integer 7"
Check row("single"), "Single 0.5"
Check row("byte"), "Byte 200"
Check row("null"), "Null"
Check VarType(row("empty")), "Integer 0"

TestCase "an object value is put by Set and by plain assignment"
Set other = CreateObject("QDL.Dictionary")
other("inner") = "x"
Set row("object") = other
Check row("object")("inner"), "String x"
Check row("object") Is other, "Boolean True"
Set row("nothing") = Nothing
Check row("nothing") Is Nothing, "Boolean True"

TestCase "a foreign object is held as it is"
Set other = CreateObject("Scripting.Dictionary")
other.Add "k", "v"
Set row("foreign") = other
Check row("foreign") Is other, "Boolean True"
Check row("foreign").Item("k"), "String v"

TestCase "an optional argument that is left out reaches the method"
Check VarType(row.ValueOrDefault("absent")), "Integer 0"
Check row.ValueOrDefault("absent", 7), "Integer 7"
Check row.Lookup("FName"), "Boolean True"
Check row.Lookup("fname"), "Boolean False"

TestCase "a Vector begins at 1"
Set list = CreateObject("QDL.Vector")
list.Append "a"
list.Append 2
list.Insert 1, "first"
Check list.Count & " " & list.LowerBound & " " & list.UpperBound, "String 3 1 3"
Check list(1) & list(2) & list(3), "String firsta2"
list(2) = "changed"
Check list.Item(2), "String changed"
list.Remove 1
Check list.Count, "Long 2"

TestCase "an error of a container has its number"
On Error Resume Next
value = list(9)
Check Err.Number, "Long 9"
Err.Clear
row.Value(Nothing) = 1
Check Err.Number, "Long 13"
Err.Clear
On Error Goto 0

TestCase "a Recordset is made in the vocabulary of a disconnected one"
Set rows = CreateObject("QDL.Recordset")
rows.Fields.Append "FID", 3
rows.Fields.Append "FName", 200, 40
rows.Open
rows.AddNew
rows.Fields("FID").Value = 1
rows.Fields("FName") = "one"
rows.Update
rows.AddNew
rows.Fields(0) = 2
rows.Fields(1).Value = "two"
rows.Update
rows.MoveFirst
text = ""
Do While Not rows.EOF
  text = text & rows.Fields("FID") & rows.Fields("FName").Value & ";"
  rows.MoveNext
Loop
Check text, "String 1one;2two;"
Check rows.RecordCount, "Long 2"

TestCase "the fields of a Recordset are walked"
rows.MoveFirst
text = ""
For Each field In rows.Fields
  text = text & field.Name & "=" & field.Value & ";"
Next
Check text, "String FID=1;FName=one;"

TestCase "a Recordset tells an unknown field and its own state"
On Error Resume Next
value = rows.Fields("FNone").Value
Check Err.Number, "Long 3265"
Check Err.Description, "String No field FNone."
Check Err.Source, "String Recordset"
Err.Clear
rows.Close
rows.MoveFirst
Check Err.Number, "Long 3704"
Err.Clear
On Error Goto 0
Check rows.State, "Long 0"

Finish
