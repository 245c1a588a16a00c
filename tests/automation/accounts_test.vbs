' Accounts, currencies and settings.
Dim accounts, account, currencies, currencyRow, profile, root, child, row, year, period, value

TestCase "what a member writes comes back in the variable, but not into an expression"
Set accounts = CreateObject("QDCLGL.AccountSet")
root = "  10"
child = "1001  "
Check accounts.IsSubAcct(root, child), "Boolean True"
Check "<" & root & child & ">", "String <101001>"
root = "  10"
Check accounts.IsSubAcct((root), "2001"), "Boolean False"
Check root, "String   10"

TestCase "a typed result comes back in a script variable"
Set profile = CreateObject("QDCLGL.SystemProfile")
year = 1
period = profile.GLGetPeriodByDate(DateSerial(2024, 3, 5), year)
Check period, "Long 3"
Check year, "Long 2024"
year = "2"
period = profile.GLGetPeriodByDate("2023-12-31", year)
Check period & "/" & year, "String 12/2023"

TestCase "a wrong type of argument is told"
On Error Resume Next
period = profile.GLGetPeriodByDate("no date", year)
Check Err.Number, "Long 13"
Err.Clear
value = accounts.IsSubAcct(Null, "1")
Check Err.Number, "Long 5"
Err.Clear
On Error Goto 0

TestCase "an account is written and read by its members"
Set account = CreateObject("QDCLGL.Account")
Set row = CreateObject("QDL.Dictionary")
row("FAccountID") = 12
row("FNumber") = "1001"
row("FName") = "Kasse"
account.Construct row, Nothing
Check account.AccountID, "Long 12"
Check account.Number, "String 1001"
account.Name = "Bank"
Check account.Name, "String Bank"
Check row("FName"), "String Kasse"

TestCase "a property that is only written takes its index arguments"
account.SetProps("FCustom") = 5
Check account.Properties("FCustom"), "_Property 5"
On Error Resume Next
value = account.SetProps("FCustom")
Check Err.Number, "Long 438"
Err.Clear
On Error Goto 0

TestCase "a currency keeps its rule and its state behind a refused value"
Set currencies = CreateObject("QDCLGL.CurrencySet")
Set currencyRow = currencies.CreateNew("usd", "Dollar")
Check currencyRow.Number & currencyRow.Name, "String USDDollar"
On Error Resume Next
currencyRow.Number = "no good number"
Check Err.Number, "Long 380"
Err.Clear
On Error Goto 0
Check currencyRow.Number, "String USD"

TestCase "the local override file of the system directory is read"
Dim files, path, stream
Set files = CreateObject("Scripting.FileSystemObject")
path = files.GetSpecialFolder(1) & "\SpecFun.ini"
Check profile.SpecItem("GL", "Forced"), "Long -1"
Set stream = files.CreateTextFile(path, True)
stream.WriteLine "[GL]"
stream.WriteLine "Forced=12"
stream.Close
Check profile.SpecItem("GL", "forced"), "Long 12"
Check profile.SpecItem("GL", "Other"), "Long 0"
files.DeleteFile path

TestCase "the client's online state is written by the caller's decision"
profile.SetGlobalQueryStatus False
Check CreateObject("WScript.Shell").RegRead("HKEY_LOCAL_MACHINE\SoftWare\Quenda\LocalDatabase\M" & Chr(252) & "ller\ACC1"), "String ONLINE"

Finish
