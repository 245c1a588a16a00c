' Recordsets, Dictionaries and Vectors in the words that script programmers know such by.
Dim rows, other, row, list, field, key, element, text, table, number

Function NewRows()
  Dim made, place
  Set made = CreateObject("QDL.Recordset")
  made.Fields.Append "FNumber"
  made.Fields.Append "FName"
  made.Open
  For place = 1 To 4
    made.AddNew Array("FNumber", "FName"), Array(place, "name " & place)
  Next
  made.MoveFirst
  Set NewRows = made
End Function

' The numbers of all rows of a clone.
Function Numbers(of)
  Dim clone
  Numbers = ""
  Set clone = of.Clone
  Do Until clone.EOF
    Numbers = Numbers & clone("FNumber") & ";"
    clone.MoveNext
  Loop
End Function

' The elements of an array; not every VBScript has a Join.
Function Joined(elements)
  Dim part
  Joined = ""
  For Each part In elements
    If Joined <> "" Then Joined = Joined & ","
    Joined = Joined & part
  Next
End Function

TestCase "a field is read by its name alone, as a value and as a field"
Set rows = NewRows()
Check rows("FName").Value, "String name 1"
Check "<" & rows("FName") & ">", "String <name 1>"
text = rows("fnumber")
Check text, "Integer 1"
Check rows(1).Value, "String name 1"
Check rows("FNumber") + 1, "Integer 2"
Check rows("FName").Name, "String FName"
Check "" & rows.Fields("FName"), "String name 1"
Check rows.Fields.Item("FName").Value, "String name 1"

TestCase "a field is written by its name alone"
rows("FName") = "first"
Check rows.Fields("FName").Value, "String first"
rows("FName").Value = "again"
Check rows("FName").Value, "String again"
rows(1) = "name 1"
Check rows.Fields(1).Value, "String name 1"

TestCase "a field that is not there is an error by its name alone too"
On Error Resume Next
text = rows("FNone")
Check Err.Number & " " & Err.Description, "String 3265 No field FNone."
Err.Clear
rows("FNone") = 1
Check Err.Number & " " & Err.Description, "String 3265 No field FNone."
Err.Clear
text = "" & rows
Check Err.Number, "Long 450"
Err.Clear
On Error GoTo 0

TestCase "a cursor goes forth and back and stands before the first row"
rows.MoveLast
Check rows("FNumber").Value, "Integer 4"
rows.MovePrevious
Check rows("FNumber").Value, "Integer 3"
rows.MoveFirst
rows.MovePrevious
Check rows.BOF & rows.EOF, "String " & True & False
On Error Resume Next
rows.MovePrevious
Check Err.Number, "Long 3021"
Err.Clear
On Error GoTo 0
rows.MoveNext
Check rows("FNumber").Value, "Integer 1"

TestCase "GetRows reads all rows as an array of fields by rows"
table = rows.GetRows()
Check VarType(table), "Integer 8204"
Check LBound(table, 1) & UBound(table, 1) & LBound(table, 2) & UBound(table, 2), "String 0103"
Check table(0, 0), "Integer 1"
Check table(1, 0), "String name 1"
Check table(0, 3), "Integer 4"
Check table(1, 3), "String name 4"
Check rows.EOF, "Boolean True"

TestCase "GetRows reads so many rows from a place, and the fields that are asked for"
table = rows.GetRows(2, 1)
Check UBound(table, 2) & table(1, 1), "String 1name 2"
Check rows("FNumber").Value, "Integer 3"
table = rows.GetRows(1, 0, "FName")
Check UBound(table, 1) & table(0, 0), "String 0name 3"
table = rows.GetRows(-1, , Array("FName", 0))
Check UBound(table, 2) & table(0, 0) & table(1, 0), "String 0name 44"

TestCase "GetRows at the end is error 3021"
On Error Resume Next
table = rows.GetRows()
Check Err.Number, "Long 3021"
Err.Clear
On Error GoTo 0

TestCase "a deleted row is gone from all clones"
Set rows = NewRows()
Set other = rows.Clone
Do Until rows.EOF
  If rows("FNumber") Mod 2 = 0 Then rows.Delete
  rows.MoveNext
Loop
Check Numbers(rows), "String 1;3;"
Check Numbers(other), "String 1;3;"
Check other.RecordCount, "Long 2"
other.MoveNext
Check other("FNumber").Value, "Integer 3"

TestCase "a deleted row is no current one"
other.Delete
On Error Resume Next
text = other("FNumber").Value
Check Err.Number, "Long 3021"
Err.Clear
other.Delete 2
Check Err.Number, "Long 3001"
Err.Clear
On Error GoTo 0
other.MovePrevious
Check other("FNumber").Value, "Integer 1"

TestCase "AddNew takes one field with its value, or arrays"
rows.AddNew "FName", "alone"
Check IsNull(rows("FNumber").Value) & rows("FName"), "String " & True & "alone"
rows.AddNew Array(1, 0), Array("both", 9)
Check rows("FNumber") & rows("FName"), "String 9both"
rows.AddNew
rows("FNumber") = 10
rows.Update
Check rows.RecordCount, "Long 4"
On Error Resume Next
rows.AddNew Array("FNumber", "FName"), Array(1)
Check Err.Number, "Long 3001"
Err.Clear
rows.AddNew "FNone", 1
Check Err.Number, "Long 3265"
Err.Clear
On Error GoTo 0
Check rows.RecordCount, "Long 4"

TestCase "AddNew takes Vectors for arrays"
Set list = CreateObject("QDL.Vector")
list.Append "FName"
Set other = CreateObject("QDL.Vector")
other.Append "of a Vector"
rows.AddNew list, other
Check rows("FName").Value, "String of a Vector"

TestCase "a Dictionary has Add, Exists, Keys and Items"
Set row = CreateObject("QDL.Dictionary")
row.Add "a", 1
row.Add "b", "two"
row.Add "c", list
Check row.Exists("a") & row.Exists("A"), "String " & True & False
Check TypeName(row.Keys) & UBound(row.Keys), "String Variant()2"
Check Joined(row.Keys), "String a,b,c"
element = row.Items
Check element(0) & element(1), "String 1two"
Check element(2) Is list, "Boolean True"
On Error Resume Next
row.Add "a", 2
Check Err.Number, "Long 457"
Err.Clear
On Error GoTo 0
Check row("a"), "Integer 1"
row.Remove "a"
row.Remove "b"
row.Remove "c"
Check UBound(row.Keys) & UBound(row.Items), "String -1-1"

TestCase "For Each over a Dictionary passes the keys that were there at its beginning"
row("x") = 1
row("y") = 2
row("z") = 3
text = ""
For Each key In row
  text = text & key & row(key) & ";"
  row.Remove "y"
  row(key & "'") = 0
Next
Check text, "String x1;y;z3;"
Check Joined(row.Keys), "String x,z,x',y',z'"

TestCase "For Each over a Vector passes its elements by their places"
Set list = CreateObject("QDL.Vector")
list.LowerBound = 5
list.Append 1
list.Append "two"
list.Append row
number = 0
text = ""
For Each element In list
  number = number + 1
  text = text & TypeName(element) & ";"
  If number = 1 Then list.Append 4
Next
Check text, "String Integer;String;_Dictionary;Integer;"
text = ""
For Each element In list
  text = text & "passed;"
  list.Remove list.LowerBound
Next
Check text & list.Count, "String passed;passed;2"

TestCase "Empty and Null are Nothing where an object is asked for"
Set other = CreateObject("QDCLGL.VoucherGroupSet")
Set other.RecordSet = rows
Check other.RecordSet Is rows, "Boolean True"
other.RecordSet = Null
Check other.RecordSet Is Nothing, "Boolean True"
Set other.RecordSet = rows
other.RecordSet = Empty
Check other.RecordSet Is Nothing, "Boolean True"
On Error Resume Next
other.RecordSet = 5
Check Err.Number, "Long 438"
Err.Clear
On Error GoTo 0

TestCase "an array that no member asks for is refused"
On Error Resume Next
row("array") = Array(1, 2)
Check Err.Number, "Long 13"
Err.Clear
On Error GoTo 0
Check row.Exists("array"), "Boolean False"

Finish
