@echo off
rem Registers the automation server that lies beside this file. Run it as administrator.
"%SystemRoot%\System32\regsvr32.exe" /s "%~dp0qdclgl.dll"
if errorlevel 1 goto failed
echo QDCLGL is registered.
exit /b 0
:failed
echo QDCLGL could not be registered. Is this an administrator's prompt?
exit /b 1
