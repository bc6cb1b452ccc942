// Timers.
var timer = new ActiveXObject("KQTimerLib.Timer");
var ticks = 0;
relay.Connect(timer, {
    Tick: function () {
        ticks++;
        timer.Enabled = ticks < 3;
    }
});
timer.Interval = 1;
timer.Enabled = true;
expect("stops itself", await(function () { return !timer.Enabled; }), true);
expect("ticks", ticks, 3);
relay.Disconnect(timer);
finish();
