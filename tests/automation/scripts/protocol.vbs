' Connections and listeners over loopback.
Dim Listener, Client, Heard
Set Listener = CreateObject("KQAppProtocolLib.Listener")
Set Client = CreateObject("KQAppProtocolLib.APClient")

Class Handler
    Public Text
    Sub Accepted(Client)
        Text = Text & "accepted;"
    End Sub
    Sub Receive(Client, Data, DataType, Tag)
        Text = Text & Data & "," & DataType & "," & Tag & ";"
        Client.SendText "answer", Tag
    End Sub
    Sub Disconnected(Client)
        Text = Text & "gone;"
    End Sub
End Class

Sub AwaitClients(Count)
    Dim I
    For I = 1 To 400
        If Listener.Count = Count Then Exit For
        Relay.Pump 50
    Next
    Expect "clients", Listener.Count, CLng(Count)
End Sub

Sub ConnectsAndTellsBothEnds
    Set Heard = New Handler
    Relay.Connect Listener, Heard
    Listener.Listen 0, "127.0.0.1"
    Client.Connect "127.0.0.1", Listener.Port
    Expect "connected", Client.Connected, True
    Expect "remote port", Client.RemotePort, Listener.Port
    AwaitClients 1
    Expect "the other end", Listener.Client(1).RemotePort, Client.LocalPort
End Sub

Sub TellsItsEndsAndKeepsItsSettings
    Dim Accepted
    Set Accepted = Listener.Client(1)
    Expect "local address", Client.LocalAddress, "127.0.0.1"
    Expect "remote address", Accepted.RemoteAddress, "127.0.0.1"
    Expect "listener's address", Listener.LocalAddress, "127.0.0.1"
    Expect "receive mode", Accepted.ReceiveMode, CLng(0)
    Expect "send type", Accepted.SendType, CLng(128)
    Expect "receive type", Accepted.ReceiveType, CLng(64)
    Client.FrameLimit = 1000
    Client.AdmittedFrameLimit = 2000
    Client.RawFrameLimit = 3000
    Client.UnsentLimit = 4000
    Client.FirstFrameTimeOut = 5000
    Expect "limits", Client.FrameLimit & " " & Client.AdmittedFrameLimit & " " & Client.RawFrameLimit & " " & Client.UnsentLimit & " " & Client.FirstFrameTimeOut, "1000 2000 3000 4000 5000"
    Client.FrameLimit = 65536
    Client.AdmittedFrameLimit = 65536
    Client.UnsentLimit = 65536
    Client.SetKeepAlive True
    Accepted.Admit
    Listener.ReceiveType = 64
    Listener.KeepAlive = True
    Listener.MaxClients = 10
    Listener.FrameLimit = 1000
    Listener.AdmittedFrameLimit = 2000
    Listener.UnsentLimit = 4000
    Listener.FirstFrameTimeOut = 5000
    Expect "listener's settings", Listener.ReceiveType & " " & Listener.KeepAlive & " " & Listener.MaxClients & " " & Listener.FrameLimit & " " & Listener.AdmittedFrameLimit & " " & Listener.UnsentLimit & " " & Listener.FirstFrameTimeOut, "64 True 10 1000 2000 4000 5000"
    On Error Resume Next
    Client.FrameLimit = -1
    ExpectRunTimeError "a limit below 0", 5
End Sub

Sub FindsClientsByIdentifierAndPosition
    Dim Found, Each_
    Set Found = Listener(1)
    ExpectTrue "by identifier", Listener(Found.Identifier) Is Found
    ExpectTrue "exists", Listener.Exists(Found.Identifier)
    For Each Each_ In Listener
        ExpectTrue "for each", Each_ Is Found
    Next
    On Error Resume Next
    Set Found = Listener.Client("nobody")
    ExpectError "an unknown one", 5, "KQAppSessionLib", "Invalid procedure call or argument"
    Set Found = Listener.Client(2)
    ExpectError "a position that is none", 5, "KQAppSessionLib", "Invalid procedure call or argument"
End Sub

Sub SendsAndTakesBlocks
    Dim Block
    Client.ReceiveMode = 1
    Client.SendType = 128
    Client.SendText "question", "t1"
    Set Block = Client.TakeBlock(10000)
    Expect "default member", "" & Block, "answer"
    Expect "tag", Block.Tag, "t1"
    Expect "type", Block.DataType, CLng(128)
    Expect "events", Heard.Text, "accepted;question,128,t1;"
    On Error Resume Next
    Client.TakeBlock 1
    ExpectError "nothing comes", 10060, "KQAppProtocolLib", "The connection timed out"
    Client.SendType = 7
    ExpectError "a type that is none", 5, "KQAppSessionLib", "Invalid procedure call or argument"
End Sub

Sub EndsAndRefuses
    Client.Disconnect
    Expect "connected", Client.Connected, False
    AwaitClients 0
    ExpectTrue "heard", Right(Heard.Text, 5) = "gone;"
    Listener.StopListening
    On Error Resume Next
    Client.SendText "x"
    ExpectTrue "not connected", Err.Number = 10057 And Err.Source = "KQAppProtocolLib"
    Err.Clear
    Client.Connect "127.0.0.1", 70000
    ExpectTrue "no such port", Err.Number = 10022
    Err.Clear
    Client.Send Nothing
    ExpectError "Nothing", 91, "KQAppSessionLib", "Object variable or With block variable not set"
    Listener.MaxClients = "many"
    ExpectRunTimeError "no number", 13
    Listener.FrameLimit = -1
    ExpectError "a negative limit", 5, "KQAppSessionLib", "Invalid procedure call or argument"
End Sub

Sub HasLimits
    Listener.FrameLimit = 1000
    Listener.FirstFrameTimeOut = 5000
    Client.UnsentLimit = 2000000
    Expect "frame", Listener.FrameLimit, CLng(1000)
    Expect "first frame", Listener.FirstFrameTimeOut, CLng(5000)
    Expect "unsent", Client.UnsentLimit, CLng(2000000)
    Listener.KeepAlive = True
    Expect "keep-alive", Listener.KeepAlive, True
End Sub

ConnectsAndTellsBothEnds
TellsItsEndsAndKeepsItsSettings
FindsClientsByIdentifierAndPosition
SendsAndTakesBlocks
EndsAndRefuses
HasLimits
Finish
