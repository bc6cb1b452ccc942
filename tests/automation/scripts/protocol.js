// Connections and listeners over loopback.
var listener = new ActiveXObject("KQAppProtocolLib.Listener");
var client = new ActiveXObject("KQAppProtocolLib.APClient");
var heard = [];
relay.Connect(listener, {
    Receive: function (from, data, dataType, tag) {
        heard.push(data + "/" + dataType + "/" + tag);
        from.Send(message, tag);
    },
    Disconnected: function () { heard.push("gone"); }
});
var message = new ActiveXObject("KQXMLMessageLib.XMLMessage");
message.Type = "Answer";
message.Version = "1";

listener.Listen(0, "127.0.0.1");
client.Connect("127.0.0.1", listener.Port);
client.ReceiveMode = 1;
var reply = client.Request(message, "tag", 10000);
expect("reply", reply.Type, "Answer");
expect("heard", heard.join(), message.ToXML() + "/128/tag");
client.Disconnect();
expect("end", await(function () { return heard.length === 2; }), true);
expectError("not connected", function () { client.SendText("x"); }, "800A2749");
listener.StopListening(true);
relay.Disconnect(listener);
finish();
