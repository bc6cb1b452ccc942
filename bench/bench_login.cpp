// How long a silent login and a registration take over loopback, above the pauses that the two procedures
// prescribe.
//
// zebd is a process of its own, the application server a thread of this one with its own platform and loop,
// the client the main thread. The login server's password hash, slow by design, is done while the client
// pauses.
//
//   bench_login [LOGINS]     default 20
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <future>
#include <iomanip>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include <kqappsession/Error.h>
#include <kqappsession/EventLoop.h>
#include <kqappsession/KQAppSessClient.h>
#include <kqappsession/KQAppSessServer.h>

#include "tools/LoginServer.h"

namespace kq {
namespace {

using Clock = std::chrono::steady_clock;

// Two in each: after each of the login's two requests; before and after the registration's.
constexpr double kPauses = 2 * 250;  // ms

// A session manager on a thread of its own, on the bus when the constructor returns.
class AppServerThread {
 public:
    explicit AppServerThread(const std::string& bus_port) {
        std::promise<EventLoop*> ready;
        auto loop = ready.get_future();
        thread_ = std::thread([this, bus_port, &ready] { Run(std::stoi(bus_port), ready); });
        try {
            loop_ = loop.get();
        } catch (...) {
            thread_.join();
            throw;
        }
    }
    ~AppServerThread() {
        loop_->Post([this] { ended_ = true; });
        thread_.join();
    }
    AppServerThread(const AppServerThread&) = delete;
    AppServerThread& operator=(const AppServerThread&) = delete;

 private:
    void Run(std::int32_t bus_port, std::promise<EventLoop*>& ready) {
        const auto platform = MakePlatform();
        EventLoop& loop = *platform->Loop();
        KQAppSessServer server(platform);
        try {
            const auto bus = XMLBusClient::Create(platform, BusSettings{"127.0.0.1", bus_port, {}});
            server.Initialize("Bench", nullptr, bus, std::make_shared<Statistics>(),
                              InterfaceVersions("1.0"));
            server.Listen(0, "127.0.0.1");
            const auto on_the_bus = [&bus] { return bus->Connected() && bus->Statistics().waiting == 0; };
            if (!loop.RunUntil(on_the_bus, loop.Now() + std::chrono::seconds(10))) {
                throw std::runtime_error("the application server is not on the bus");
            }
        } catch (...) {
            ready.set_exception(std::current_exception());
            return;
        }
        ready.set_value(&loop);
        while (!ended_)
            loop.RunUntil([this] { return ended_; }, loop.Now() + std::chrono::hours(1));
        server.StopListening(true);
        server.Terminate();
    }

    EventLoop* loop_ = nullptr;
    bool ended_ = false;  // the loop's thread only
    std::thread thread_;
};

template <class Step>
double Milliseconds(Step step) {
    const auto start = Clock::now();
    step();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

void Print(const char* what, std::vector<double> times) {
    std::sort(times.begin(), times.end());
    const double median = times[times.size() / 2];
    std::cout << std::fixed << std::setprecision(1) << what << ": prescribed pauses " << kPauses
              << " ms, measured median " << median << " ms, over " << median - kPauses << " ms ("
              << times.size() << " runs, " << times.front() << " to " << times.back() << " ms)\n";
}

SystemLoginArguments ArgumentsFor(const LoginServer& zeb) {
    SystemLoginArguments arguments;
    arguments.AppID = "Bench";
    arguments.InterfaceVersion = "1.0";
    arguments.ClientVersion = "1.0.0";
    arguments.LoginID = LoginServer::kUser;
    arguments.Password = Secret(std::string_view(LoginServer::kPassword));
    arguments.Address = "127.0.0.1";
    arguments.Port = std::stoi(zeb.Port());
    arguments.TimeOut = 10'000;
    return arguments;
}

// The bus has taken the announcement of the application server; the login server may read it a moment later.
void AwaitAnnouncement(const PlatformPtr& platform, const SystemLoginArguments& arguments) {
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    for (;;) {
        try {
            KQAppSessClient(platform).SystemLogin(false, arguments);
            return;
        } catch (const Error& error) {
            if (error.Cause() != ErrorCause::Version || Clock::now() > deadline) throw;
        }
    }
}

void Measure(int logins) {
    LoginServer zeb(KQ_ZEBCTL, KQ_ZEBD);
    setenv("XDG_CONFIG_HOME", (zeb.Folder() + "/config").c_str(), 1);
    const AppServerThread app_server(zeb.BusPort());
    const auto platform = MakePlatform();
    const auto arguments = ArgumentsFor(zeb);
    AwaitAnnouncement(platform, arguments);
    std::vector<double> login_times;
    std::vector<double> registration_times;
    for (int i = 0; i < logins; ++i) {
        KQAppSessClient client(platform);
        login_times.push_back(Milliseconds([&] { client.SystemLogin(false, arguments); }));
        registration_times.push_back(Milliseconds([&] { client.ServerLogin(false); }));
    }
    Print("login", login_times);
    Print("registration", registration_times);
}

}  // namespace
}  // namespace kq

int main(int argc, char** argv) {
    try {
        const int logins = argc > 1 ? std::atoi(argv[1]) : 20;
        if (logins < 1) {
            std::cerr << "usage: bench_login [LOGINS]\n";
            return 2;
        }
        kq::Measure(logins);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "bench_login: " << error.what() << '\n';
        return 1;
    }
}
