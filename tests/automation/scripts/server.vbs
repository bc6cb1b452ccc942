' The session manager.
Dim Server, Bus, Statistics
Set Server = CreateObject("KQAppSessionLib.KQAppSessServer")
Set Bus = CreateObject("KQXMLBusClientLib.Client")
Set Statistics = CreateObject("KQStatisticsLib.Statistics")

Class Application
    Public Property Get Path
        Path = "C:\nowhere"
    End Property
End Class

Sub MustBeInitialized
    Expect "IsInitialized", Server.IsInitialized, False
    On Error Resume Next
    Server.Listen 0
    ExpectError "Listen", &H80040A01, "KQAppSessionLib", "Must initialize before using this object."
    Server.StopListening
    ExpectError "StopListening", &H80040A01, "KQAppSessionLib", "Must initialize before using this object."
    Dim Listener
    Set Listener = Server.Listener
    ExpectError "Listener", &H80040A01, "KQAppSessionLib", "Must initialize before using this object."
    Server.Initialize "Demo", Nothing, Bus, Nothing, "1.0"
    Expect "IsInitialized without statistics", Server.IsInitialized, False
End Sub

Sub Accepts(Versions)
    On Error Resume Next
    Server.Initialize "Demo", New Application, Bus, Statistics, Versions
    If Err.Number <> 0 Then Fail "interface versions as " & TypeName(Versions) & ": " & Err.Description
    Err.Clear
End Sub

Sub Refuses(Versions)
    On Error Resume Next
    Server.Initialize "Demo", Nothing, Bus, Statistics, Versions
    ExpectError "interface versions", &H80040A03, "KQAppSessionLib", "Invalid interfaces were specified.  Must be a collection, comma- or pipe-separated string, string or variant array, or collection."
End Sub

Sub TakesInterfaceVersionsInEveryForm
    Dim List(1), Names
    List(0) = "1.0"
    List(1) = "2.0"
    Set Names = CreateObject("Scripting.Dictionary")
    Names.Add "1.0", 1
    Accepts "1.0|2.0,3"
    Accepts ""
    Accepts Array("1.0", "2.0")
    Accepts List
    Accepts Names
    Accepts Names.Keys
    Refuses 1.0
    Refuses Nothing
    Refuses Empty
    Refuses Server
    Expect "IsInitialized", Server.IsInitialized, True
End Sub

Sub KeepsTheInterval
    Expect "default", Server.InfoInterval, CLng(120)
    Server.InfoInterval = 60
    Expect "set", Server.InfoInterval, CLng(60)
    On Error Resume Next
    Server.InfoInterval = 3000000
    ExpectError "too long", 6, "KQAppSessionLib", "Overflow"
    Expect "stored all the same", Server.InfoInterval, CLng(3000000)
End Sub

Sub HasNoSessionsYet
    Dim Session, Visited
    ExpectTrue "the same object", Server.Sessions Is Server.Sessions
    Expect "count", Server.Sessions.Count, CLng(0)
    Expect "exists", Server.Sessions.Exists("S1"), False
    For Each Session In Server.Sessions
        Fail "a session"
    Next
    On Error Resume Next
    Set Session = Server.Sessions.Session("S1")
    ExpectError "by identifier", 5, "KQAppSessionLib", "Invalid procedure call or argument"
    Set Session = Server.Sessions.Session(1)
    ExpectError "by number", 5, "KQAppSessionLib", "Invalid procedure call or argument"
End Sub

Class Handler
    Public Sent
    Sub XMLBusSend(Msg)
        Sent = Sent & Msg.Type & " "
    End Sub
End Class

Sub ListensAndAnnouncesItself
    Dim Heard
    Set Heard = New Handler
    Relay.Connect Server, Heard
    Server.Initialize "Demo", Nothing, Bus, Statistics, "1.0"
    Server.InfoInterval = 60
    Server.Listen 0, "127.0.0.1"
    ExpectTrue "listening", Server.Listener.Listening
    ExpectTrue "the same listener", Server.Listener Is Server.Listener
    Expect "announced", Heard.Sent, "ASBroadcastInfo ASBroadcastInfo "
    On Error Resume Next
    Server.Listen 0
    ExpectError "again", &H80040A02, "KQAppSessionLib", "Listener is already connected on port " & Server.Listener.Port & ".  Please disconnect before attempting to connect again."
    On Error GoTo 0
    Server.StopListening True
    Expect "stopped", Server.Listener.Listening, False
    Relay.Disconnect Server
    Server.setInstallExeFile "Other.exe"
    Server.Terminate
    Expect "terminated", Server.IsInitialized, False
End Sub

Sub ChecksMessages
    Dim Message
    Set Message = CreateObject("KQXMLMessageLib.XMLMessage")
    Message.Type = "ASLogoutUser"
    Message.Schema = "urn:zebschemas"
    Expect "ours", Server.CheckMessage(Message), True
    Message.Type = "ASLoginRequest"
    Expect "another's", Server.CheckMessage(Message), False
    Expect "none", Server.CheckMessage(Nothing), False
End Sub

MustBeInitialized
TakesInterfaceVersionsInEveryForm
KeepsTheInterval
HasNoSessionsYet
ListensAndAnnouncesItself
ChecksMessages
Finish
