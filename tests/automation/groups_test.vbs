' Voucher groups, whose server is components written in script.
Dim recorder, groups, group, walked, other, i, text, sameGroup, row, key
Const PROPS = """Initial catalog=ACC1;"""

Set recorder = CreateObject("QdclglTest.Recorder")
recorder.Take

Function Called()
  Called = Replace(recorder.Take(), vbCrLf, "|")
End Function

TestCase "the first object of an apartment asks once whether it is offline"
Set groups = CreateObject("QDCLGL.VoucherGroupSet")
Set other = CreateObject("QDCLGL.VoucherGroupSet")
Set other = CreateObject("QDCLGL.VoucherGroup")
Check Called(), "String BaseInfo.IsNeedOffline(" & PROPS & ", Integer -1, computer)|"

TestCase "the versioned ProgID activates the class too"
Set other = CreateObject("QDCLGL.VoucherGroupSet.1")
Check TypeName(other), "String _VoucherGroupSet"

TestCase "a list is read once, by a call with the set's fields"
groups.ListOptions = 2
groups.Filter = "FName<>''"
Check groups.Count, "Long 3"
Check groups.Count, "Long 3"
Check Called(), "String GroupInfo.GetList(" & PROPS & ", 2, ""FName<>''"", """")|"

TestCase "For Each walks the elements and leaves the cursor"
walked = ""
For Each group In groups
  walked = walked & group.VoucherGroupID & "=" & group.Name & ";"
Next
Check walked, "String 1=Group 1;2=Group 2;3=Group 3;"
Check groups.GetNext().Name, "String Group 1"

TestCase "For Each within For Each has a cursor of its own"
walked = ""
For Each group In groups
  For Each other In groups
    walked = walked & group.VoucherGroupID & other.VoucherGroupID & " "
  Next
Next
Check walked, "String 11 12 13 21 22 23 31 32 33 "

TestCase "the default member takes numbers and texts"
Check groups(2).VoucherGroupID, "Long 2"
Check groups("two").VoucherGroupID, "Long 2"
Check Called(), "String GroupInfo.GetDetail(" & PROPS & ", 2)|GroupInfo.GetDetailByNumber(" & PROPS & ", ""two"")|"

TestCase "text beyond ASCII crosses intact"
Check groups(2).Name, "String Gr" & Chr(246) & Chr(223) & "e 2"
Set group = groups.CreateNew("Caf" & Chr(233))
Check group.Name, "String Caf" & Chr(233)

TestCase "the server's Null reads as the member's default"
Set group = groups(1)
Check group.Standard, "Integer 0"
Check IsNull(group.Properties.Dictionary.Value("FStandard")), "Boolean True"

TestCase "an object comes back as the same object"
Set sameGroup = group.Properties.Dictionary
Check sameGroup Is group.Properties.Dictionary, "Boolean True"
Check sameGroup Is groups(1).Properties.Dictionary, "Boolean False"

TestCase "a change is saved with the whole row and an id by reference"
recorder.Take
group.Name = "Receipts"
group.SaveChanges
Check Called(), "String GroupUpdate.Update(" & PROPS & ", 1, {FGroupID: 1, FName: ""Receipts"", FStandard: Null, MachineName: here, IPAddress: here})|GroupInfo.GetDetail(" & PROPS & ", 1)|"

TestCase "an unchanged row is not saved"
Set group = groups(1)
recorder.Take
group.SaveChanges
Check Called(), "String "

TestCase "a new row is created and read again"
Set group = groups.CreateNew("New")
group.SaveChanges
Check group.VoucherGroupID, "Long 3"
Check Called(), "String GroupUpdate.Create(" & PROPS & ", {FName: ""New"", MachineName: here, IPAddress: here})|GroupInfo.GetDetail(" & PROPS & ", 3)|"

TestCase "an optional argument left out is its default"
groups.Remove 3
groups.Remove 2, 7
Check Called(), "String GroupUpdate.Delete(" & PROPS & ", 3, machine, address, 0)|GroupUpdate.Delete(" & PROPS & ", 2, machine, address, 7)|"

TestCase "an error of the server keeps its number"
On Error Resume Next
Set group = groups.Item(98)
Check Err.Number, "Long 1234"
Err.Clear
Set group = groups.Item(99)
Check Err.Number, "Long -2147221213"
Err.Clear
Set group = groups(1)
group.Name = "taken"
group.SaveChanges
Check Err.Number, "Long -2147220139"
Check group.Name, "String taken"
Err.Clear
On Error Goto 0

TestCase "an error of the library has its number"
Set group = groups(1)
On Error Resume Next
groups.Remove 0
Check Err.Number, "Long 5"
Err.Clear
Set other = groups.Item(Null)
Check Err.Number, "Long 5"
Err.Clear
Set other = CreateObject("QDCLGL.VoucherGroup")
other.Name = "x"
Check Err.Number, "Long 91"
Err.Clear
On Error Goto 0

TestCase "calls that don't fit are told apart"
On Error Resume Next
group.Nonsense = 1
Check Err.Number, "Long 438"
Err.Clear
group.VoucherGroupID = 1
Check Err.Number, "Long 438"
Err.Clear
group.Construct
Check Err.Number, "Long 450"
Err.Clear
group.Refresh 1
Check Err.Number, "Long 450"
Err.Clear
group.Standard = "no number"
Check Err.Number, "Long 13"
Err.Clear
group.Standard = 40000
Check Err.Number, "Long 6"
Err.Clear
On Error Goto 0
Check group.Standard, "Integer 0"

TestCase "a class that callers can't create is refused"
On Error Resume Next
Set other = CreateObject("QDCLGL.VoucherEntry")
Check Err.Number, "Long 429"
Err.Clear
On Error Goto 0

TestCase "arguments of a property go to the default member of what it reads as"
Set group = groups(2)
Check group.Properties("FGroupID").Name, "String FGroupID"
Check group.Properties("FGroupID"), "_Property 2"
group.Properties("FCRange") = "1-9"
Check group.CRange, "String 1-9"

TestCase "Nothing and a foreign object are taken as a transaction context"
Set group = CreateObject("QDCLGL.VoucherGroup")
group.Construct Nothing, Nothing
Check group.VoucherGroupID, "Long 0"
Set row = CreateObject("QDL.Dictionary")
row("FGroupID") = 7
group.Construct row, CreateObject("Scripting.Dictionary")
Check group.VoucherGroupID, "Long 7"

TestCase "a set takes a recordset and hands the same one out"
Set row = groups.RecordSet.Clone()
row.MoveNext
Set groups.RecordSet = row
Check groups.RecordSet Is row, "Boolean True"
Check groups.GetCurrent().Name, "String Group 2"

TestCase "the offline state is written to the registry under the user's name"
Set other = CreateObject("WScript.Shell")
Check other.RegRead("HKEY_LOCAL_MACHINE\SoftWare\Quenda\LocalDatabase\M" & Chr(252) & "ller\ACC1"), "String OFFLINE"

Finish
