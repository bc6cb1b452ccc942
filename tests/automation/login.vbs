' Logs a user in, registers with the application server and waits until that ends the session.
'   cscript //nologo login.vbs APPLICATION USER ADDRESS PORT       the password: environment variable KQ_PASSWORD
Option Explicit
Dim Given, Password, Client
Set Given = WScript.Arguments
Password = CreateObject("WScript.Shell").Environment("PROCESS")("KQ_PASSWORD")
Set Client = CreateObject("KQAppSessionLib.KQAppSessClient")
Client.SystemLogin False, Given(0), "1.0", "1.0.0", , , , Given(1), Password, Given(2), CLng(Given(3)), 10000
Client.ServerLogin False
WScript.Echo "LoginState " & Client.LoginState
WScript.Echo "Hello " & Client.SessionInfo.FirstName
On Error Resume Next
Client.SessionClient.TakeBlock 60000 ' serves events; data ends it, the session's end and a minute's silence are errors
WScript.Echo Err.Description
WScript.Echo "LoginState " & Client.LoginState
