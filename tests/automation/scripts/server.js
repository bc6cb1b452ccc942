// The session manager.
var server = new ActiveXObject("KQAppSessionLib.KQAppSessServer");
var bus = new ActiveXObject("KQXMLBusClientLib.Client");
var statistics = new ActiveXObject("KQStatisticsLib.Statistics");

function mustBeInitialized() {
    expect("IsInitialized", server.IsInitialized, false);
    expectError("Listen", function () { server.Listen(0); }, "80040A01",
        "Must initialize before using this object.");
    expectError("a number as versions", function () { server.Initialize("Demo", null, bus, statistics, 1); },
        "80040A03");
    server.Initialize("Demo", null, bus, statistics, "1.0");
    expect("IsInitialized", server.IsInitialized, true);
}

function tellsWhatItSends() {
    var sent = [];
    relay.Connect(server, { XMLBusSend: function (message) { sent.push(message.Type); } });
    server.Listen(0, "127.0.0.1");
    expect("sent", sent.join(), "ASBroadcastInfo,ASBroadcastInfo");
    server.StopListening();
    relay.Disconnect(server);
}

function hasNoSessions() {
    var sessions = server.Sessions;
    expect("the same object", sessions === server.Sessions, true);
    expect("at the end", new Enumerator(sessions).atEnd(), true);
    expectError("by number", function () { sessions.Session(1); }, "800A0005",
        "Invalid procedure call or argument");
}

mustBeInitialized();
tellsWhatItSends();
hasNoSessions();
finish();
