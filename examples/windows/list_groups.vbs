' Lists the voucher groups of books, with the number of vouchers in all of them:
'   cscript //nologo list_groups.vbs books.db
' The password comes from QDCLGL_PASSWORD.
Option Explicit
Dim session, props, group

Set session = CreateObject("QDSVGLSession.SessionUpdate")
props = session.Login(WScript.Arguments(0), "administrator", _
  CreateObject("WScript.Shell").Environment("Process")("QDCLGL_PASSWORD"))
For Each group In CreateObject("QDCLGL.VoucherGroupSet")
  WScript.Echo group.VoucherGroupID & "  " & group.Name
Next
WScript.Echo CreateObject("QDCLGL.VoucherSet").Count & " vouchers"
session.Logout props
