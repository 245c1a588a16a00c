@echo off
rem Takes out what register.cmd has registered. Run it as administrator.
"%SystemRoot%\System32\regsvr32.exe" /s /u "%~dp0qdclgl.dll"
if errorlevel 1 goto failed
echo QDCLGL is registered no longer.
exit /b 0
:failed
echo QDCLGL could not be taken out. Is this an administrator's prompt?
exit /b 1
