' What the destructors of scripts' own objects do in the middle of an operation.
Dim list, row, i

' Its end appends to a list.
Class AppendsAtEnd
  Public List
  Private Sub Class_Terminate
    Dim n
    For n = 1 To 1000
      List.Append n
    Next
  End Sub
End Class

' Its end takes everything out of a list.
Class EmptiesAtEnd
  Public List
  Private Sub Class_Terminate
    If List.Count > 0 Then List.Remove 1, List.Count
  End Sub
End Class

Function NewEnder(ender)
  Set ender.List = list
  Set NewEnder = ender
End Function

TestCase "an element of a script's own may append when it ends"
Set list = CreateObject("QDL.Vector")
list.Append NewEnder(New AppendsAtEnd)
list.Append "last"
list.Remove 1
Check list.Count, "Long 1001"
Check list(1), "String last"

TestCase "an element of a script's own may empty the list when it ends"
Set list = CreateObject("QDL.Vector")
list.Append NewEnder(New EmptiesAtEnd)
For i = 1 To 10
  list.Append i
Next
list.Remove 1
Check list.Count, "Long 0"

TestCase "a value of a script's own may use the row when it is written over"
Set list = CreateObject("QDL.Vector")
Set row = CreateObject("QDL.Dictionary")
Set row("ender") = NewEnder(New AppendsAtEnd)
Set row("list") = list
row("ender") = 5
Check row("list").Count, "Long 1000"
Check row("ender"), "Integer 5"

Finish
