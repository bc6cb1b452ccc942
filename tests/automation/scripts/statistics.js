// Statistics.
var statistics = new ActiveXObject("KQStatisticsLib.Statistics");
statistics.Increment("logins");
statistics.Increment("logins", 2);
statistics.Value("clients") = 7;
expect("counter", statistics("logins"), 3);
expect("names", array(statistics.Names).join(), "clients,logins");
statistics.Record("login", 2.5);
expect("mean", statistics.DurationMean("login"), 2.5);
expectError("not finite", function () { statistics.Record("login", 1 / 0); }, "800A0005");
finish();
