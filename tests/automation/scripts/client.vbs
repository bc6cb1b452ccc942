' The client object.
Dim Client
Set Client = CreateObject("KQAppSessionLib.KQAppSessClient")

Sub StartsNotLoggedIn
    Expect "LoginState", Client.LoginState, CLng(0)
    ExpectTrue "UseProfiles", Client.UseProfiles
    ExpectTrue "no table", Client.TranslationTable Is Nothing
    ExpectTrue "no profile", Client.CurrentProfile Is Nothing
    ExpectTrue "no connection", Client.SessionClient Is Nothing
    ExpectTrue "an empty record", Not Client.SessionInfo.IsInitialized
End Sub

Sub KeepsLiteralsVariablesAndExpressions
    Dim Port, Address
    Port = 80
    Address = "host"
    Client.AppServerPort = Port
    Client.AppServerAddress = Address & ".example"
    Client.AppServerTimeOut = 5000
    Client.UseProfiles = False
    Client.RestrictIP = (Address)
    Expect "port", Client.AppServerPort, CLng(80)
    Expect "the variable's subtype", VarType(Port), VarType(CInt(1))
    Expect "address", Client.AppServerAddress, "host.example"
    Expect "time-out", Client.AppServerTimeOut, CLng(5000)
    Expect "use", Client.UseProfiles, False
    Expect "restriction", Client.RestrictIP, "host"
    Client.RestrictPort = 7001
    Client.UseASServerForLogin = True
    Expect "restriction's port", Client.RestrictPort, CLng(7001)
    Expect "through the application server", Client.UseASServerForLogin, True
    Client.AppServerPort = "7001"
    Expect "a text that is a number", Client.AppServerPort, CLng(7001)
End Sub

Sub ResolvesHostNames
    Dim Host
    Host = "127.0.0.1"
    Expect "dotted", Client.IPAddressFromHostName(Host), "127.0.0.1"
    Expect "unknown", Client.IPAddressFromHostName("no such host"), ""
End Sub

Sub RaisesErrorsWithNumberSourceAndDescription
    On Error Resume Next
    Client.ServerLogin False
    ExpectError "ServerLogin", &H80040A63, "KQAppSessionLib", "A system login must be performed before a server login, or the proper state must first be set."
    Client.SetSystemConnectState "host", 5000, 30
    ExpectError "SetSystemConnectState", &H80040A13, "KQAppSessionLib", "No session info is present.  Either perform a system login or call SetSystemLoginState before calling this method."
    Client.ChangeConfiguration
    ExpectError "ChangeConfiguration", &H80040A13, "KQAppSessionLib", "No session info is present.  Either perform a system login or call SetSystemLoginState before calling this method."
    Client.ChangePassword "KQScripts"
    ExpectError "ChangePassword", &H80004001, "KQAppSessionLib", "ChangePassword is not implemented"
    Client.SystemLogin False, "KQScripts", "1.0", , , , , "ann", "secret", "host", 0, 5
    ExpectError "SystemLogin without a port", &H80040A04, "KQAppSessionLib", "Invalid address (host), port (0), or timeout value (5) was specified."
    Client.SystemLogin2 False, "KQScripts", "1.0", , , , , , , "host", 1, 5, True
    ExpectError "SystemLogin2 without a user", &H80040A05, "KQAppSessionLib", "Invalid login ID () or password () was specified."
    Client.SystemLogin False, "KQScripts", "1.0", , , , , "ann", "secret", "127.0.0.1", 1, 5000
    ExpectError "SystemLogin where nobody listens", &H80040A06, "KQAppSessionLib", "Could not connect to login server: The connection was refused."
End Sub

Sub RaisesRunTimeErrors
    On Error Resume Next
    Client.AppServerPort = "no number"
    ExpectRunTimeError "a text for a port", 13
    Client.AppServerPort = 1E+12
    ExpectRunTimeError "a port that is too large", 6
    Client.ServerLogin
    ExpectRunTimeError "too few arguments", 449
    Client.ServerLogin False, True
    ExpectRunTimeError "too many arguments", 450
    Client.Nonsense
    ExpectRunTimeError "an unknown member", 438
    Set Client.CurrentProfile = Nothing
    ExpectError "Nothing as a profile", 91, "KQAppSessionLib", "Object variable or With block variable not set"
    Set Client.CurrentProfile = Client
    ExpectRunTimeError "another object as a profile", 13
    Dim AppID
    AppID = Client.SessionInfo.AppID
    ExpectError "an empty record", 91, "KQAppSessionLib", "Object variable or With block variable not set"
    Client.SystemLogin True, "KQScripts", "1.0"
    ExpectRunTimeError "an interactive login without dialogs", 5
    Client.Login "KQScripts", "1.0", Nothing
    ExpectRunTimeError "a login without dialogs", 5
End Sub

Sub TakesALoginThatTheCallerHolds
    Dim Profiles
    Set Profiles = CreateObject("KQWebDataLib.Profiles")
    Profiles.LoadXML SampleProfiles
    Client.SetSystemLoginState SampleSession, Empty, Profiles, "Home", "host", 7000, 5000
    Expect "LoginState", Client.LoginState, CLng(1)
    ExpectTrue "the very collection", Client.Profiles Is Profiles
    Expect "current", Client.CurrentProfile.Name, "Home"
    ExpectTrue "the collection's object", Client.CurrentProfile Is Profiles("Home")
    Expect "address", Client.AppServerAddress, "host"
    Set Client.CurrentProfile = Profiles(1)
    Expect "set", Client.CurrentProfile.Name, "Work"
    Set Client.CurrentProfile = Profiles("Home").Copy("Elsewhere")
    Expect "an unknown one is ignored", Client.CurrentProfile.Name, "Work"
End Sub

Sub KeepsATableThatIsAnObjectAndDropsATextOne
    Dim Table
    Set Table = CreateObject("KQWebDataLib.TranslationTable")
    Table.SetText "Hello", "Hola"
    Client.SetSystemLoginState SampleSession, Table, SampleProfiles, "", "", 0, 5000
    ExpectTrue "the object", Client.TranslationTable Is Table
    Client.SetSystemLoginState SampleSession, Table.ToXML, SampleProfiles, "", "", 0, 5000
    ExpectTrue "still the object", Client.TranslationTable Is Table
    Client.SetSystemLoginState SampleSession, Nothing, SampleProfiles, "", "", 0, 5000
    ExpectTrue "nothing", Client.TranslationTable Is Nothing
    On Error Resume Next
    Client.SetSystemLoginState SampleSession, 5, SampleProfiles, "", "", 0, 5000
    ExpectError "a number", 13, "KQAppSessionLib", "Type mismatch"
    Client.SetSystemLoginState SampleSession, "<no table", SampleProfiles, "", "", 0, 5000
    ExpectTrue "a text that is none", Err.Number = &H80040B11
    Err.Clear
    Client.SetSystemLoginState Replace(SampleSession, "KQScripts", "KQEmpty"), Nothing, SampleProfiles, "", "", 0, 0
    ExpectError "no time-out anywhere", 13, "KQAppSessionLib", "Type mismatch"
End Sub

Sub ShowsTheSessionRecord
    Dim Session
    Client.SetSystemLoginState SampleSession, Nothing, SampleProfiles, "", "", 0, 5000
    Set Session = Client.SessionInfo
    ExpectTrue "the same object", Session Is Client.SessionInfo
    ExpectTrue "filled", Session.IsInitialized
    Expect "AppID", Session.AppID, "KQScripts"
    Expect "SessionID", Session.SessionID, "S1"
    Expect "LoginID", Session.LoginID, "ann"
    Expect "FirstName", Session.FirstName, "Ann"
    Expect "UserUID", Session.UserUID, CLng(17)
    Expect "Language", Session.Language, "en"
    Expect "EnterpriseID", Session.EnterpriseID, "E1"
    Expect "OperatorID", Session.OperatorID, "O1"
    Expect "DST", Session.DST, "1"
    Expect "BUID", Session.BUID, "7"
    Expect "TZ", Session.TZ, ""
    Expect "Password", Session.Password, ""
    Expect "BUIDList", JoinTexts(Session.BUIDList), "[7][9][]"
    Expect "its upper bound", UBound(Session.BUIDList), CLng(2)
    Expect "its second element", Session.BUIDList(1), "9"
    Expect "PrivilegeList", JoinTexts(Session.PrivilegeList), "[read][write]"
    ExpectTrue "no connection", Session.Client Is Nothing
    ExpectTrue "the message itself", Session.Export Is Session.Export
    Session.Export.Field("LastName") = "Sample"
    Expect "a change in the message", Session.LastName, "Sample"
End Sub

' What a member fills in is seen in variables, and only there.
Sub ShowsTheCallerTheAddressThatWasUsed
    Dim Address, Port, TimeOut
    Client.SetSystemConnectState "127.0.0.1", 1, 2000
    On Error Resume Next
    Client.UpdateProfilesEx False, Address, Port, TimeOut
    ExpectError "UpdateProfilesEx", &H80040A06, "KQAppSessionLib", "Could not connect to login server: The connection was refused."
    Expect "address", Address, "127.0.0.1"
    Expect "port", Port, CLng(1)
    Expect "time-out", TimeOut, CLng(2000)
    Client.UpdateProfilesEx False, "", 0
    ExpectError "UpdateProfilesEx with literals", &H80040A06, "KQAppSessionLib", "Could not connect to login server: The connection was refused."
End Sub

Sub UploadsProfiles
    Dim Profile, Sent
    Client.SetSystemLoginState SampleSession, Nothing, SampleProfiles, "", "", 0, 5000
    Client.SetSystemConnectState2 "127.0.0.1", 1, 2000, False
    Set Profile = Client.Profiles("Home").Copy("Elsewhere")
    On Error Resume Next
    Client.AddReplaceProfileASP Profile
    ExpectError "AddReplaceProfileASP", &H80040A06, "KQAppSessionLib", "Could not connect to login server: The connection was refused."
    ExpectTrue "added all the same", Client.Profiles.Exists("Elsewhere")
    Client.AddReplaceProfile Profile
    ExpectRunTimeError "AddReplaceProfile without dialogs", 5
    Client.UpdateProfiles
    ExpectRunTimeError "UpdateProfiles without dialogs", 5
    Client.UseProfiles = True
    Sent = Client.UpdateProfilesEx(False, "127.0.0.1", 1, 2000)
    ExpectError "UpdateProfilesEx", &H80040A06, "KQAppSessionLib", "Could not connect to login server: The connection was refused."
End Sub

Sub KeepsItsStateWhenItIsTerminated
    Client.SetSystemLoginState SampleSession, Nothing, SampleProfiles, "", "host", 7000, 5000
    Client.TerminateClient
    Expect "LoginState", Client.LoginState, CLng(1)
End Sub

StartsNotLoggedIn
KeepsLiteralsVariablesAndExpressions
ResolvesHostNames
RaisesErrorsWithNumberSourceAndDescription
RaisesRunTimeErrors
TakesALoginThatTheCallerHolds
KeepsATableThatIsAnObjectAndDropsATextOne
ShowsTheSessionRecord
ShowsTheCallerTheAddressThatWasUsed
UploadsProfiles
KeepsItsStateWhenItIsTerminated
Finish
