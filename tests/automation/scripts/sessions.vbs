' Sessions of an application server: its clients and its login server are in this script, too.
Dim Server, Bus, Zeb, Requests, Heard, BusPort

' What came for the login server.
Class LoginServer
    Public Latest
    Sub ReceiveMessage(Msg, Handled)
        Set Latest = Msg
        Handled = True
    End Sub
    Function Awaited(MessageType)
        Dim I
        For I = 1 To 400
            If IsObject(Latest) Then
                If Latest.Type = MessageType Then Exit For
            End If
            Relay.Pump 50
        Next
        Set Awaited = Latest
        Latest = Empty
    End Function
End Class

' Every event as a line with its arguments.
Class Handler
    Public Lines
    Public Announced
    Sub Connected(Session)
        Lines = Lines & "Connected " & Session.SessionID & ";"
    End Sub
    Sub ReceivedData(Session, Data, DataType, Tag)
        Lines = Lines & "ReceivedData " & Session.SessionID & " " & Data & " " & DataType & " " & Tag & ";"
    End Sub
    Sub Disconnected(Session)
        Lines = Lines & "Disconnected " & Session.SessionID & ";"
    End Sub
    Sub Error(Number, Description)
        Lines = Lines & "Error " & Number & " " & Description & ";"
    End Sub
    Sub SessionError(Session, Client, Number, Description)
        ExpectTrue "the session's connection", Session.Client Is Client
        Lines = Lines & "SessionError " & Session.SessionID & " " & Number & " " & Description & ";"
    End Sub
    Sub XMLBusSend(Msg)
        Dim Info, SessionID
        If Msg.Type <> "ASBroadcastInfo" Then Exit Sub
        Set Info = Msg.Element("ApplicationInfos/ApplicationInfo")
        Announced = Announced & Info.TextOf("InfoState")
        If Info.Exists("Sessions") Then
            For Each SessionID In Info.Item("Sessions")
                Announced = Announced & " " & SessionID.Text
            Next
        End If
        Announced = Announced & ";"
    End Sub
    Sub XMLBusReceive(Msg, ErrorNumber, ErrorDescription)
        Lines = Lines & "XMLBusReceive " & Msg.Type & " " & ErrorNumber & " " & ErrorDescription & ";"
    End Sub
    Sub Forget
        Lines = ""
        Announced = ""
    End Sub
    Sub ExpectEvents(What, Wanted)
        Await Wanted
        Expect What, Lines, Wanted
        Forget
    End Sub
    Sub Await(Wanted)
        Dim I
        For I = 1 To 400
            If Len(Lines) >= Len(Wanted) Then Exit For
            Relay.Pump 50
        Next
    End Sub
End Class

' The same at the listener, whose values the session manager passes on.
Class ListenerHandler
    Public Failure
    Sub ClientError(Client, Number, Description)
        Failure = Number & " " & Description
    End Sub
    Sub Error(Number, Description)
        Failure = Number & " " & Description
    End Sub
End Class

Function NewMessage(MessageType)
    Set NewMessage = CreateObject("KQXMLMessageLib.XMLMessage")
    NewMessage.Type = MessageType
    NewMessage.Version = "1"
End Function

Function NewClient
    Set NewClient = CreateObject("KQAppProtocolLib.APClient")
    NewClient.Connect "127.0.0.1", Server.Listener.Port
    NewClient.ReceiveMode = 1
End Function

Function AnswerTo(Client)
    Set AnswerTo = CreateObject("KQXMLMessageLib.XMLMessage")
    AnswerTo.LoadXML Client.TakeBlock(20000).Data
End Function

Function Registration(SessionID, Version, AppID, LocaleID)
    Set Registration = NewMessage("ASRegisterRequest")
    Registration.Version = Version
    Registration("AppID") = AppID
    Registration("SessionID") = SessionID
    Registration("LocaleID") = LocaleID
End Function

Sub AnswerRequest(Request, Answer)
    Answer("TransID") = Request("TransID")
    Answer.SetDestination Request("ReturnMsgType"), Request("ReturnSubType")
    Zeb.Send Answer
End Sub

Function RegisteredClient(SessionID)
    Dim Answer, Info
    Set RegisteredClient = NewClient
    RegisteredClient.Send Registration(SessionID, "1", "Demo", "1033")
    Set Answer = NewMessage("ASRegistrationResponse")
    Set Info = NewMessage("SessionInfo")
    Info("UserUID") = "55"
    Info("OperatorID") = "99"
    Answer.SetMessageField "SessionInfo", Info
    AnswerRequest Requests.Awaited("RequestASRegistration"), Answer
    Expect "registered", AnswerTo(RegisteredClient).Field("ErrorNum"), "0"
End Function

Sub AwaitBus(Client)
    Dim I
    For I = 1 To 400
        If Client.Connected Then Exit For
        Relay.Pump 50
    Next
    ExpectTrue "a bus client is connected", Client.Connected
End Sub

Sub ServersAreThere
    BusPort = Relay.OpenBus
    Set Zeb = CreateObject("KQXMLBusClientLib.Client")
    Set Requests = New LoginServer
    Relay.Connect Zeb, Requests
    Zeb.Port = BusPort
    Zeb.AddSubscription "ZEB", 1
    Zeb.Start
    AwaitBus Zeb
    Set Bus = CreateObject("KQXMLBusClientLib.Client")
    Bus.Port = BusPort
    Set Server = CreateObject("KQAppSessionLib.KQAppSessServer")
    Set Heard = New Handler
    Relay.Connect Server, Heard
    Server.Initialize "Demo", Nothing, Bus, CreateObject("KQStatisticsLib.Statistics"), Array("1.0")
    Server.Listen 0, "127.0.0.1"
    AwaitBus Bus
    Expect "announced", Heard.Announced, "C;C;"
    Heard.Forget
End Sub

Sub RegisteredClientsHaveSessions
    Dim Client, Session
    Set Client = RegisteredClient("S1")
    Heard.ExpectEvents "a registration", "Connected S1;XMLBusReceive ASRegistrationResponse 0 ;"
    Set Session = Server.Sessions("S1")
    ExpectTrue "by position", Server.Sessions(1) Is Session
    Expect "operator", Session.OperatorID, "55"
    Client.Disconnect
    Heard.ExpectEvents "the end", "Disconnected S1;"
    Expect "removed", Server.Sessions.Exists("S1"), False
    Expect "the record stays", Session.SessionID, "S1"
End Sub

Sub DataOfRegisteredClientsReachesTheHost
    Dim Client, Order
    Set Client = RegisteredClient("S1")
    Heard.Forget
    Set Order = NewMessage("Order")
    Order("Item") = "42"
    Client.Send Order, "tag"
    Heard.ExpectEvents "data", "ReceivedData S1 " & Order.ToXML & " 128 tag;"
    Client.Disconnect
    Heard.ExpectEvents "the end", "Disconnected S1;"
End Sub

Sub ErrorsOfSessionsReachTheHost
    Dim Client, AtListener
    Set AtListener = New ListenerHandler
    Relay.Connect Server.Listener, AtListener
    Server.Listener.AdmittedFrameLimit = 1000
    Set Client = RegisteredClient("S1")
    Heard.Forget
    Client.SendText String(1001, "x")
    Heard.Await "SessionError S1 10040 ;Disconnected S1;"
    Expect "the session's error", Heard.Lines, "SessionError S1 " & AtListener.Failure & ";Disconnected S1;"
    Expect "its number", Left(AtListener.Failure, 6), "10040 "
    Relay.Disconnect Server.Listener
    Heard.Forget
End Sub

Sub ErrorsOfTheListenerReachTheHost
    Dim Client, AtListener
    Set AtListener = New ListenerHandler
    Relay.Connect Server.Listener, AtListener
    Relay.FailNextAccept
    Set Client = NewClient
    Heard.Await "Error 10024 ;"
    Expect "the listener's error", Heard.Lines, "Error " & AtListener.Failure & ";"
    Expect "its number", Left(AtListener.Failure, 6), "10024 "
    Relay.Disconnect Server.Listener
    Heard.Forget
End Sub

Sub StrangersAreRefused
    Dim Client, Answer
    Set Client = NewClient
    Client.Send NewMessage("Order")
    Set Answer = AnswerTo(Client)
    Expect "a stranger", Answer.Type & " " & Answer("ErrorNum"), "ASUnknownResponse -2147218932"
    Set Client = NewClient
    Client.Send Registration("S1", "1.1", "Demo", "1033")
    Set Answer = AnswerTo(Client)
    Expect "another version", Answer.Version & " " & Answer("ErrorNum") & " " & Answer("ErrorDesc"), "1.1 -2147218931 Unknown interface version %0%.  Message cannot be handled."
    Set Client = NewClient
    Client.Send Registration("S1", "1.00", "ABC", "1046")
    Expect "another application", AnswerTo(Client).Field("ErrorDesc"), "This application server does not support AppID ABC."
    Set Client = NewClient
    Client.Send Registration("S1", "1", "ABC", "2058")
    Expect "in Spanish", AnswerTo(Client).Field("ErrorDesc"), "Esto servidor de aplicaci" & Chr(243) & "n no conoce el AppID ABC."
    Expect "no event", Heard.Lines, ""
End Sub

Sub TheLoginServerLogsOut
    Dim First, Second, Order, Sessions
    Set First = RegisteredClient("S1")
    Set Second = RegisteredClient("S2")
    Heard.Forget
    Set Sessions = CreateObject("KQXMLMessageLib.XMLElement")
    Sessions.Initialize "SessionIDs"
    Sessions.Add "SessionID", "S2"
    Sessions.Add "SessionID", "S1"
    Set Order = NewMessage("ASLogoutUser")
    Order.SetElementField Sessions
    Order.SetDestination "AS", "Broadcast"
    Zeb.Send Order
    Heard.Await "Disconnected S2;Disconnected S1;XMLBusReceive ASLogoutUser 0 ;"
    ExpectTrue "the first end is announced", InStr(Heard.Announced, "E S2;") > 0
    ExpectTrue "the second end is announced after it", InStr(Heard.Announced, "E S1;") > InStr(Heard.Announced, "E S2;")
    Heard.ExpectEvents "logged out", "Disconnected S2;Disconnected S1;XMLBusReceive ASLogoutUser 0 ;"
End Sub

Sub TheEndIsAnnouncedOnce
    Heard.Forget
    Server.StopListening True
    Expect "the end", Right(Heard.Announced, 2), "D;"
    Server.Terminate
    Relay.Disconnect Server
    Relay.Disconnect Zeb
    Zeb.Stop
End Sub

ServersAreThere
RegisteredClientsHaveSessions
DataOfRegisteredClientsReachesTheHost
ErrorsOfSessionsReachTheHost
ErrorsOfTheListenerReachTheHost
StrangersAreRefused
TheLoginServerLogsOut
TheEndIsAnnouncedOnce
Finish
