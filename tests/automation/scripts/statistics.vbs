' Statistics.
Dim Statistics
Set Statistics = CreateObject("KQStatisticsLib.Statistics")

Sub Counts
    Dim By
    By = 4
    Statistics.Increment "logins"
    Statistics.Increment "logins", By
    Statistics("clients") = 7
    Expect "counter", Statistics("logins"), CDbl(5)
    Expect "gauge", Statistics.Value("clients"), CDbl(7)
    Expect "unknown", Statistics("nothing"), CDbl(0)
    Expect "names", JoinTexts(Statistics.Names), "[clients][logins]"
    Statistics("large") = 3000000000
    Expect "more than a Long", Statistics("large"), CDbl(3000000000)
End Sub

Sub GathersDurations
    Statistics.Record "login", 10
    Statistics.Record "login", 20.5
    Expect "count", Statistics.DurationCount("login"), CDbl(2)
    Expect "total", Statistics.DurationTotal("login"), 30.5
    Expect "minimum", Statistics.DurationMinimum("login"), CDbl(10)
    Expect "maximum", Statistics.DurationMaximum("login"), 20.5
    Expect "mean", Statistics.DurationMean("login"), 15.25
    Expect "names", JoinTexts(Statistics.DurationNames), "[login]"
    On Error Resume Next
    Statistics.Record "login", -1
    ExpectError "a negative one", 5, "KQAppSessionLib", "Invalid procedure call or argument"
    Statistics("x") = 1E+300
    ExpectError "too large", 6, "KQAppSessionLib", "Overflow"
    Statistics("x") = "text"
    ExpectRunTimeError "a text", 13
End Sub

Sub IsATextAndCanBeCleared
    ExpectTrue "text", InStr(Statistics.Text, "logins 5") > 0
    Statistics.Clear
    Expect "cleared", Statistics.Text, ""
End Sub

Counts
GathersDurations
IsATextAndCanBeCleared
Finish
