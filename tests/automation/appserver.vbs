' An application server for the login by script: takes one client in, shows its session in every way, and ends the
' session when a file tells it to.
'   appserver.vbs APPLICATION BUSPORT FILE
Dim Server, Bus, Heard, Files

Class Application
    Public Property Get Path
        Path = "C:\nowhere"
    End Property
End Class

Class Handler
    Public Session
    Public Gone
    Public Events
    Sub Connected(NewSession)
        Set Session = NewSession
        Events = Events & "Connected "
    End Sub
    Sub Disconnected(OldSession)
        ExpectTrue "the session that has gone", OldSession Is Session
        Gone = True
        Events = Events & "Disconnected "
    End Sub
    Sub Count
        Events = Events & "Count "
    End Sub
    Sub XMLBusReceive(Msg, ErrorNumber, ErrorDescription)
        Events = Events & "XMLBusReceive(" & Msg.Type & "," & ErrorNumber & "," & ErrorDescription & ") "
    End Sub
End Class

Sub ShowSessions
    Dim Sessions, Session, Visited
    Set Sessions = Server.Sessions
    Set Session = Heard.Session
    For Each Visited In Sessions
        Relay.Print "Session of " & Visited.LoginID
        ExpectTrue "for each", Visited Is Session
    Next
    Expect "count", Sessions.Count, CLng(1)
    ExpectTrue "by number", Sessions(1) Is Session
    ExpectTrue "by identifier", Sessions(Session.SessionID) Is Session
    ExpectTrue "by identifier through the server", Server.Sessions.Session(Session.SessionID) Is Session
    ExpectTrue "exists", Sessions.Exists(Session.SessionID)
    ExpectTrue "its connection", Session.Client Is Server.Listener.Client(1)
    Expect "its application", Session.AppID, "Demo"
End Sub

Set Files = CreateObject("Scripting.FileSystemObject")
Set Bus = CreateObject("KQXMLBusClientLib.Client")
Set Server = CreateObject("KQAppSessionLib.KQAppSessServer")
Set Heard = New Handler
Relay.Connect Server, Heard
Bus.Port = CLng(WScript.Arguments(1))
Server.Initialize WScript.Arguments(0), New Application, Bus, CreateObject("KQStatisticsLib.Statistics"), Array("0.9", "1.0")
Server.Listen 0, "127.0.0.1"
Do Until Bus.Connected
    Relay.Pump 50
Loop
Relay.Print "READY"
Do Until IsObject(Heard.Session)
    Relay.Pump 50
Loop
ShowSessions
Do Until Files.FileExists(WScript.Arguments(2))
    Relay.Pump 50
Loop
Heard.Session.Client.Disconnect
Do Until Heard.Gone
    Relay.Pump 50
Loop
Expect "no session is left", Server.Sessions.Count, CLng(0)
Expect "events", Heard.Events, "Count Connected XMLBusReceive(ASRegistrationResponse,0,) Count Disconnected "
Server.StopListening True
Server.Terminate
Relay.Disconnect Server
Finish
