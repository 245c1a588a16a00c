# Lists the voucher groups of books, with the number of vouchers in all of them:
#   powershell -File list_groups.ps1 books.db
# The password comes from QDCLGL_PASSWORD.
param([Parameter(Mandatory)] [string] $Books)
$session = New-Object -ComObject QDSVGLSession.SessionUpdate
$props = $session.Login((Resolve-Path $Books).Path, "administrator", "$env:QDCLGL_PASSWORD")
foreach ($group in (New-Object -ComObject QDCLGL.VoucherGroupSet)) {
  "$($group.VoucherGroupID)  $($group.Name)"
}
"$((New-Object -ComObject QDCLGL.VoucherSet).Count) vouchers"
$session.Logout($props)
