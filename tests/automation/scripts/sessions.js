// Sessions of an application server: its client and its login server are in this script, too.
var busPort = relay.OpenBus();
var zeb = new ActiveXObject("KQXMLBusClientLib.Client");
var bus = new ActiveXObject("KQXMLBusClientLib.Client");
var server = new ActiveXObject("KQAppSessionLib.KQAppSessServer");
var requests = [];
var heard = [];
var failures_at_listener = [];
var listener;

function message(type, fields) {
    var made = new ActiveXObject("KQXMLMessageLib.XMLMessage");
    made.Type = type;
    made.Version = "1";
    for (var name in fields) made.Field(name) = fields[name];
    return made;
}

function serversAreThere() {
    relay.Connect(zeb, { ReceiveMessage: function (received) { requests.push(received); } });
    zeb.Port = busPort;
    zeb.AddSubscription("ZEB", 1);
    zeb.Start();
    expect("the login server's bus", await(function () { return zeb.Connected; }), true);
    bus.Port = busPort;
    relay.Connect(server, {
        Connected: function (session) { heard.push("Connected " + session.SessionID); },
        ReceivedData: function (session, data, dataType, tag) {
            heard.push("ReceivedData " + [session.SessionID, data, dataType, tag].join(" "));
        },
        Disconnected: function (session) { heard.push("Disconnected " + session.SessionID); },
        Error: function (number, description) { heard.push("Error " + number + " " + description); },
        SessionError: function (session, client, number, description) {
            expect("the session's connection", session.Client === client, true);
            heard.push("SessionError " + [session.SessionID, number, description].join(" "));
        },
        XMLBusReceive: function (received, number, description) {
            heard.push("XMLBusReceive " + [received.Type, number, description].join(" "));
        }
    });
    server.Initialize("Demo", null, bus, new ActiveXObject("KQStatisticsLib.Statistics"), ["1.0", "2.0"]);
    server.Listen(0, "127.0.0.1");
    expect("the application server's bus", await(function () { return bus.Connected; }), true);
    listener = server.Listener;
    relay.Connect(listener, {
        ClientError: function (client, number, description) { failures_at_listener.push(number + " " + description); },
        Error: function (number, description) { failures_at_listener.push(number + " " + description); }
    });
}

function newClient() {
    var client = new ActiveXObject("KQAppProtocolLib.APClient");
    client.Connect("127.0.0.1", listener.Port);
    client.ReceiveMode = 1;
    return client;
}

// The next message of the type that came for the login server.
function request(type) {
    var found = null;
    await(function () {
        while (!found && requests.length > 0) {
            var first = requests.shift();
            if (first.Type === type) found = first;
        }
        return found;
    });
    return found;
}

function registeredClient(id) {
    var client = newClient();
    client.Send(message("ASRegisterRequest", { AppID: "Demo", SessionID: id }));
    var registration = request("RequestASRegistration");
    var answer = message("ASRegistrationResponse", { TransID: registration.Field("TransID") });
    answer.SetMessageField("SessionInfo", message("SessionInfo", { UserUID: "55", BUIDUnionList: "7|9|" }));
    answer.SetDestination(registration.Field("ReturnMsgType"), registration.Field("ReturnSubType"));
    zeb.Send(answer);
    var reply = message("Reply", {});
    reply.LoadXML(client.TakeBlock(20000).Data);
    expect("registered", reply.Field("ErrorNum"), "0");
    heard = [];
    return client;
}

function expectEvents(what, wanted) {
    await(function () { return heard.length >= wanted.length; });
    expect(what, heard.join(";"), wanted.join(";"));
    heard = [];
}

function dataReachesTheHost() {
    var client = registeredClient("S1");
    var order = message("Order", { Item: "42" });
    expect("units", array(server.Sessions("S1").BUIDList).join(), "7,9,");
    client.Send(order, "tag");
    expectEvents("data", ["ReceivedData S1 " + order.ToXML() + " 128 tag"]);
    client.Disconnect();
    expectEvents("the end", ["Disconnected S1"]);
}

function errorsReachTheHost() {
    listener.AdmittedFrameLimit = 1000;
    var client = registeredClient("S1");
    client.SendText(new Array(1002).join("x"));
    await(function () { return heard.length >= 2; });  // the listener's own failure is known then
    expectEvents("a session's error", ["SessionError S1 " + failures_at_listener[0], "Disconnected S1"]);
    relay.FailNextAccept();
    client = newClient();
    await(function () { return heard.length >= 1; });
    expectEvents("the listener's error", ["Error " + failures_at_listener[1]]);
    expect("their numbers", parseInt(failures_at_listener[0], 10) + " " + parseInt(failures_at_listener[1], 10),
        "10040 10024");
}

run(serversAreThere);
run(dataReachesTheHost);
run(errorsReachTheHost);
server.StopListening(true);
server.Terminate();
relay.Disconnect(listener);
relay.Disconnect(server);
relay.Disconnect(zeb);
zeb.Stop();
finish();
