' What every test script stands on. A case begins with TestCase and holds until the next one; each
' Check compares a whole result. The last line of a script is Finish: without its END the runner
' counts the script as failed.
Option Explicit

Dim CaseName, CaseProblem, Failures
CaseName = ""
CaseProblem = ""
Failures = 0

Sub EndCase()
  If CaseName = "" Then Exit Sub
  If CaseProblem = "" Then
    WScript.Echo "ok " & CaseName
  Else
    WScript.Echo "FAILED " & CaseName & ":" & CaseProblem
    Failures = Failures + 1
  End If
End Sub

Sub TestCase(name)
  EndCase
  CaseName = name
  CaseProblem = ""
End Sub

' Both as text, so that numbers of different types compare by what they are.
Sub Check(actual, expected)
  Dim shown
  If IsNull(actual) Then
    shown = "Null"
  Else
    shown = TypeName(actual) & " " & CStr(actual)
  End If
  If shown <> expected Then
    CaseProblem = CaseProblem & " got <" & shown & "> instead of <" & expected & ">"
  End If
End Sub

Sub Finish()
  EndCase
  WScript.Echo "END"
  WScript.Quit Failures
End Sub
