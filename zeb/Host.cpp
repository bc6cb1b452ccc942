// From a configuration to a running login server. The server is a client of its own hub, like every other
// peer.
#include "zeb/Host.h"

#include <functional>

#include <kqappsession/Error.h>

#include "tools/program/KeyFile.h"
#include "tools/program/OneLine.h"
#include "zeb/admin/Admin.h"

namespace kq::zeb {
namespace {

ZebSettings SettingsOf(const Config& config) {
    ZebSettings settings;
    settings.listen = config.listen;
    settings.port = config.port;
    settings.max_connections = config.max_connections;
    settings.max_request = static_cast<std::size_t>(config.max_request) << 10;
    settings.sessions.time_to_register = std::chrono::seconds(config.register_time);
    return settings;
}

// Adds the address to the error of what listens there.
void Naming(const std::string& address, std::int32_t port, const std::function<void()>& listen) {
    try {
        listen();
    } catch (const Error& error) {
        throw Error(error.Number(), error.Source(),
                    AddressAndPort(address.empty() ? "*" : address, port) + ": " + error.Description());
    }
}

}  // namespace

Host::Host(PlatformPtr platform, const Config& config, const std::shared_ptr<spdlog::logger>& log)
    : platform_(std::move(platform)), store_(OpenData(config.data)) {
    lock_ = std::make_unique<FolderLock>(config.data);
    Argon2Hasher::Cost cost;
    cost.passes = static_cast<std::uint64_t>(config.password_passes);
    cost.memory = static_cast<std::uint64_t>(config.password_memory) << 20;
    hasher_ = std::make_unique<Argon2Hasher>(cost);
    executor_ = std::make_unique<ThreadPool>(static_cast<std::size_t>(config.password_threads),
                                             static_cast<std::size_t>(config.password_queue));
    Secret key;
    if (!config.bus_key_file.empty()) key = ReadKeyFile(config.bus_key_file);
    hub_ = std::make_unique<Hub>(platform_);
    hub_->Note.Connect(owner_, [log](const std::string& note) { log->warn("Bus: {}", note); });
    Naming(config.bus_address, config.bus_port,
           [&] { hub_->Listen(config.bus_address, config.bus_port, key.Reveal()); });

    BusSettings bus;
    const bool everywhere = config.bus_address.empty() || config.bus_address == "0.0.0.0";
    bus.address = everywhere ? "127.0.0.1" : config.bus_address == "::" ? "::1" : config.bus_address;
    bus.port = hub_->Port();
    bus.key = key.Reveal();
    zeb_ = std::make_unique<Zeb>(platform_, *store_, *executor_, *hasher_,
                                 XMLBusClient::Create(platform_, bus), log, SettingsOf(config));
    Wipe(bus.key);
    hub_->Reachable.Connect(
        owner_, [this](const BusAddress& address, bool there) { zeb_->Reachable(address, there); });
    Naming(config.listen, config.port, [&] { zeb_->Start(); });
}

Host::~Host() = default;

std::string Host::Listening() const {
    return AddressAndPort(zeb_->BoundAddress(), zeb_->Port());
}

std::string Host::BusListening() const {
    return AddressAndPort(hub_->BoundAddress(), hub_->Port());
}

void Host::Stop() {
    zeb_->Stop();
    hub_->Stop();
}

}  // namespace kq::zeb
