' The bus client where there is no bus.
Dim Bus, Message
Set Bus = CreateObject("KQXMLBusClientLib.Client")
Set Message = CreateObject("KQXMLMessageLib.XMLMessage")

Sub KeepsItsSettings
    Expect "address", Bus.Address, "127.0.0.1"
    Bus.Port = 7711
    Bus.Key = "secret"
    Expect "port", Bus.Port, CLng(7711)
    Bus.EnterpriseID = "E1"
    Expect "enterprise", Bus.EnterpriseID, "E1"
    Expect "reply type", Bus.ReplyType, "Reply"
    ExpectTrue "reply subtype", Len(Bus.ReplySubType) > 0
    On Error Resume Next
    Dim Key
    Key = Bus.Key
    ExpectTrue "the key cannot be read", Err.Number <> 0 And Key <> "secret"
End Sub

Sub KeepsSubscriptions
    Bus.AddSubscription "AS", , "Broadcast"
    Bus.AddSubscription "ZEB", 1
    Bus.RemoveSubscription "AS", "Broadcast"
    On Error Resume Next
    Bus.RemoveSubscription "AS", "Broadcast"
    ExpectError "an unknown one", 5, "KQAppSessionLib", "There is no subscription for this address"
    Bus.AddSubscription "AS", 7
    ExpectError "an option that is none", 5, "KQAppSessionLib", "Invalid procedure call or argument"
End Sub

Class Handler
    Public Stopped
    Public Sent
    Sub ConnectionChanged(Connected, Reason)
        If Not Connected Then Stopped = True
    End Sub
    Sub Statistics(SentNow, Written, Replaced, Received, Malformed, Reconnects, Waiting)
        Sent = SentNow
    End Sub
End Class

Sub SendsOnlyWhileItRuns
    Dim Heard
    Set Heard = New Handler
    Message.Type = "Note"
    Message.SetDestination "ZEB"
    On Error Resume Next
    Bus.Send Message
    ExpectTrue "not running", Err.Number = 5
    Err.Clear
    On Error GoTo 0
    Bus.Port = 1
    Relay.Connect Bus, Heard
    Bus.Start
    Expect "running", Bus.Running, True
    Expect "connected", Bus.Connected, False
    Bus.Send Message
    Bus.Stop
    Expect "stopped", Bus.Running, False
    Expect "sent", Heard.Sent, CDbl(1)
    Relay.Disconnect Bus
End Sub

KeepsItsSettings
KeepsSubscriptions
SendsOnlyWhileItRuns
Finish
