' Timers.
Dim Timer
Set Timer = CreateObject("KQTimerLib.Timer")

Class Handler
    Public Ticks
    Sub Tick
        Ticks = Ticks + 1
        If Ticks = 2 Then Timer.Enabled = False
    End Sub
End Class

Sub TicksWhileItIsEnabled
    Dim Heard, I
    Set Heard = New Handler
    Heard.Ticks = 0
    Relay.Connect Timer, Heard
    Expect "enabled", Timer.Enabled, False
    Timer.Interval = 1
    Timer.Enabled = True
    Expect "interval", Timer.Interval, CLng(1)
    For I = 1 To 400
        If Not Timer.Enabled Then Exit For
        Relay.Pump 50
    Next
    Expect "ticks", Heard.Ticks, 2
    Relay.Disconnect Timer
    On Error Resume Next
    Timer.Interval = "soon"
    ExpectRunTimeError "a text", 13
End Sub

TicksWhileItIsEnabled
Finish
