// The bus client where there is no bus.
var bus = new ActiveXObject("KQXMLBusClientLib.Client");
bus.Port = 1;
expect("port", bus.Port, 1);
expect("running", bus.Running, false);
var changes = [];
relay.Connect(bus, { ConnectionChanged: function (connected, reason) { changes.push(connected); } });
bus.Start();
expect("running", bus.Running, true);
expect("told of the loss", await(function () { return changes.length > 0; }), true);
expect("not connected", changes[0], false);
expectError("a hub while running", function () { bus.Port = 2; }, "800A0005");
bus.Stop();
relay.Disconnect(bus);
finish();
