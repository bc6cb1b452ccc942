// Making a connection: the name becomes addresses, and one after the other is tried until one answers. The
// loop runs meanwhile, so after every wait the attempt may have been given up.
#include <algorithm>
#include <utility>

#include <kqappsession/Error.h>

#include "libs/appprotocol/APClientImpl.h"
#include "platform/Resolver.h"

namespace kq {
namespace {

constexpr std::int32_t kLastPort = 65535;

// Numeric addresses need no resolver. A text that only looks like one fails when it is tried.
bool IsNumericAddress(const std::string& address) {
    if (address.find(':') != std::string::npos) return true;
    return std::count(address.begin(), address.end(), '.') == 3 &&
           address.find_first_not_of("0123456789.") == std::string::npos;
}

[[noreturn]] void RaiseGivenUp() {
    Raise(NetError::ConnectionAborted, kAppProtocolSource,
          "The connection was given up while it was being made.");
}

// Marks a call of Connect as running.
class Running {
 public:
    explicit Running(bool& flag) : flag_(flag) { flag_ = true; }
    ~Running() { flag_ = false; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

 private:
    bool& flag_;
};

}  // namespace

void APClient::Impl::Connect(const std::string& address, std::int32_t port, const std::string& local_address,
                             std::int32_t time_out) {
    if (connecting_) Raise(RuntimeError::InvalidProcedureCall, "The connection is being made already.");
    if (port < 1 || port > kLastPort) {
        Raise(NetError::InvalidArgument, kAppProtocolSource,
              "The port " + std::to_string(port) + " is outside 1 to 65535.");
    }
    if (address.empty())
        Raise(NetError::HostNotFound, kAppProtocolSource, "No address was given to connect to.");

    Disconnect();
    const Running running(connecting_);
    const auto mine = ++serial_;
    const auto deadline = loop_.Now() + Milliseconds(time_out > 0 ? time_out : kDefaultTimeOut);
    const auto addresses = Resolve(address, deadline, mine);
    auto error = static_cast<std::int32_t>(NetError::HostNotFound);
    for (std::size_t i = 0; i < addresses.size(); ++i) {
        // An address that never answers must not use up the time of those behind it.
        const auto share =
            (deadline - loop_.Now()) / static_cast<EventLoop::TimePoint::rep>(addresses.size() - i);
        error = TryAddress(addresses[i], port, local_address, loop_.Now() + share, mine);
        if (error == 0) return;
    }
    throw kq::Error(error, std::string(kAppProtocolSource), NetErrorText(error));
}

std::vector<std::string> APClient::Impl::Resolve(const std::string& address, EventLoop::TimePoint deadline,
                                                 std::uint64_t mine) {
    if (IsNumericAddress(address)) return {address};
    std::optional<std::vector<std::string>> found;
    const Owner owner;
    platform_->resolver->Resolve(
        address, owner, [&found](std::vector<std::string> addresses) { found = std::move(addresses); });
    loop_.RunUntil([&] { return found.has_value() || serial_ != mine; }, deadline);
    if (serial_ != mine) RaiseGivenUp();
    if (found) return *std::move(found);
    Raise(loop_.Quitting() ? NetError::Interrupted : NetError::TimedOut, kAppProtocolSource);
}

std::int32_t APClient::Impl::TryAddress(const std::string& address, int port,
                                        const std::string& local_address, EventLoop::TimePoint until,
                                        std::uint64_t mine) {
    connect_result_.reset();
    made_ = true;
    connection_ =
        std::make_unique<Connection>(loop_, platform_->network->Connect(address, port, local_address),
                                     Connection::State::Connecting, CurrentFrameLimits(), *this);
    loop_.RunUntil([&] { return connect_result_.has_value() || serial_ != mine; }, until);
    if (serial_ != mine) RaiseGivenUp();
    if (connect_result_ == 0) {
        // Another wait may have run on from here: what stood may have ended again.
        if (!Connected())
            throw kq::Error(last_ending_.number, std::string(kAppProtocolSource), last_ending_.sentence);
        return 0;
    }
    connection_.reset();
    if (connect_result_) return *connect_result_;
    if (loop_.Quitting()) Raise(NetError::Interrupted, kAppProtocolSource);
    return static_cast<std::int32_t>(NetError::TimedOut);
}

void APClient::Impl::OnConnected() {
    if (keep_alive_) connection_->Socket().SetKeepAlive(true);
    UpdateReading();
    connect_result_ = 0;
}

void APClient::Impl::OnConnectFailed(std::int32_t number) {
    connect_result_ = number;
}

}  // namespace kq
