#include "tools/kqappserver/AppServer.h"

#include <kqappsession/Error.h>
#include <kqappsession/EventLoop.h>

#include "base/Convert.h"
#include "tools/kqappserver/EventLines.h"
#include "tools/program/KeyFile.h"
#include "tools/program/OneLine.h"

namespace kq {
namespace {

// Time for the clients' ends to arrive after the last word.
constexpr Milliseconds kFarewell{1'000};

// The application that is asked for its folder.
class Application : public AppObject {
 public:
    explicit Application(std::string path) : path_(std::move(path)) {}
    std::optional<std::string> Property(std::string_view name) const override {
        if (name == "Path" && !path_.empty()) return path_;
        return std::nullopt;
    }

 private:
    std::string path_;
};

BusSettings BusSettingsOf(const AppServerOptions& options) {
    BusSettings settings{options.bus_address, options.bus_port, {}};
    if (!options.bus_key_file.empty()) settings.key = ReadKeyFile(options.bus_key_file).Reveal();
    return settings;
}

}  // namespace

AppServer::AppServer(PlatformPtr platform, const AppServerOptions& options, WriteLine write_line)
    : platform_(std::move(platform)),
      options_(options),
      write_line_(std::move(write_line)),
      bus_(XMLBusClient::Create(platform_, BusSettingsOf(options))),
      statistics_(std::make_shared<Statistics>()),
      server_(platform_) {
    ListenToServer();
    ListenToBus();
}

AppServer::~AppServer() {
    Stop();
}

void AppServer::Start() {
    server_.SetInfoInterval(options_.info_interval);
    server_.Initialize(options_.app, std::make_shared<Application>(options_.path), bus_, statistics_,
                       InterfaceVersions(options_.interface_versions));
    server_.Listen(options_.port, options_.listen);
    const auto listener = server_.Listener();
    write_line_("kqappserver: listening on " + AddressAndPort(listener->BoundAddress(), listener->Port()));
}

void AppServer::Stop() {
    if (!server_.IsInitialized()) return;
    try {
        server_.StopListening(true);
        auto& loop = *platform_->Loop();
        loop.RunUntil([this] { return server_.Sessions()->Count() == 0; }, loop.Now() + kFarewell);
    } catch (const Error& error) {
        write_line_(ErrorEventLine("Error", error.Number(), error.Description()));
    }
    server_.Terminate();
}

void AppServer::Obey(const std::string& command) {
    constexpr std::string_view kDisconnect = "disconnect ";
    if (command == "sessions") {
        for (const auto& line : SessionsLines(*server_.Sessions()))
            write_line_(line);
    } else if (command == "quit") {
        End();
    } else if (command.starts_with(kDisconnect)) {
        const std::string id = command.substr(kDisconnect.size());
        if (!server_.Sessions()->Exists(id)) {
            write_line_("kqappserver: there is no session " + OneLine(id));
            return;
        }
        server_.Sessions()->Session(id)->Client()->Disconnect();
    } else {
        write_line_("kqappserver: the commands are sessions, disconnect ID and quit");
    }
}

void AppServer::ListenToServer() {
    const auto& write = write_line_;
    server_.Connected.Connect(owner_,
                              [&write](const auto& session) { write(SessionLine("Connected", *session)); });
    server_.ReceivedData.Connect(owner_, [&write](const auto& session, const Block& block) {
        write(ReceivedDataLine(*session, block));
    });
    server_.Disconnected.Connect(
        owner_, [&write](const auto& session) { write(SessionLine("Disconnected", *session)); });
    server_.Error.Connect(owner_, [&write](std::int32_t number, const std::string& description) {
        write(ErrorEventLine("Error", number, description));
    });
    server_.SessionError.Connect(owner_, [&write](const auto& session, const auto&, std::int32_t number,
                                                  const std::string& description) {
        write(ErrorEventLine(SessionLine("SessionError", *session), number, description));
    });
    server_.XMLBusSend.Connect(owner_,
                               [&write](const auto& message) { write(BusLine("XMLBusSend", *message)); });
    server_.XMLBusReceive.Connect(
        owner_, [&write](const auto& message, std::int32_t number, const std::string& description) {
            write(BusLine("XMLBusReceive", *message, number, description));
        });
    server_.Count.Connect(owner_,
                          [this] { write_line_("Count " + std::to_string(server_.Sessions()->Count())); });
}

void AppServer::ListenToBus() {
    bus_->ConnectionChanged.Connect(owner_, [this](bool connected, const std::string& why) {
        write_line_(connected ? "kqappserver: on the bus" : "kqappserver: off the bus: " + OneLine(why));
    });
}

}  // namespace kq
