// Making a connection: the name is resolved to addresses, which are tried one after the other until one
// answers. All of it runs by events; Connect only waits for the end of what BeginConnect has started.
#include <algorithm>
#include <utility>

#include <kqappsession/Error.h>

#include "base/ErrorSentences.h"
#include "libs/appprotocol/APClientImpl.h"
#include "platform/Machine.h"
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

// Counts a call of Connect for as long as it waits.
class Waits {
 public:
    explicit Waits(std::size_t& count) : count_(count) { ++count_; }
    ~Waits() { --count_; }
    Waits(const Waits&) = delete;
    Waits& operator=(const Waits&) = delete;

 private:
    std::size_t& count_;
};

}  // namespace

void APClient::Impl::Connect(const std::string& address, std::int32_t port, const std::string& local_address,
                             std::int32_t time_out) {
    BeginConnect(address, port, local_address, time_out);
    // The caller's texts may be destroyed from here on.
    attempt_->waited = true;
    const auto mine = serial_;
    {
        const Waits waits(connects_waiting_);
        loop_.RunUntil([&] { return serial_ != mine || !attempt_; }, attempt_->deadline);
    }
    if (serial_ != mine) {
        kq::Raise(ErrorSentence::GivenUp, kAppProtocolSource);
    }
    if (attempt_) {
        EndAttempt(static_cast<std::int32_t>(loop_.Quitting() ? NetError::Interrupted : NetError::TimedOut));
    }
    if (connect_result_ != 0) {
        throw kq::Error(connect_result_, std::string(kAppProtocolSource), NetErrorText(connect_result_));
    }
    // Another wait may have run since: the connection may have ended again.
    if (!Connected())
        throw kq::Error(last_ending_.number, std::string(kAppProtocolSource), last_ending_.sentence);
}

void APClient::Impl::BeginConnect(const std::string& address, std::int32_t port,
                                  const std::string& local_address, std::int32_t time_out) {
    if (attempt_)
        kq::Raise(RuntimeError::InvalidProcedureCall, "A connection attempt is already in progress");
    if (port < 1 || port > kLastPort) {
        kq::Raise(ErrorSentence::PortOutOfRange, kAppProtocolSource, {std::to_string(port)});
    }
    if (address.empty()) kq::Raise(ErrorSentence::NoAddress, kAppProtocolSource);

    Disconnect();
    ++serial_;
    attempt_ = std::make_unique<Attempt>();
    attempt_->port = port;
    attempt_->local_address = local_address;
    attempt_->deadline = loop_.Now() + Milliseconds(time_out > 0 ? time_out : kDefaultTimeOut);
    if (IsNumericAddress(address)) {
        attempt_->addresses = {address};
        TryNextAddress();
        return;
    }
    LimitAttempt(attempt_->deadline, [this] { EndAttempt(static_cast<std::int32_t>(NetError::TimedOut)); });
    platform_->Parts().resolver->Resolve(address, attempt_->owner,
                                         [this](std::vector<std::string> addresses) {
                                             attempt_->addresses = std::move(addresses);
                                             TryNextAddress();
                                         });
}

void APClient::Impl::TryNextAddress() {
    Attempt& attempt = *attempt_;
    connection_.reset();
    if (attempt.tried == attempt.addresses.size()) return EndAttempt(attempt.error);
    const auto left = static_cast<EventLoop::TimePoint::rep>(attempt.addresses.size() - attempt.tried);
    const auto& address = attempt.addresses[attempt.tried++];
    made_ = true;
    connection_ = std::make_unique<Connection>(
        loop_, platform_->Parts().network->Connect(address, attempt.port, attempt.local_address),
        Connection::State::Connecting, CurrentFrameLimits(), *this);
    // An address that never answers must not use up the time of those behind it.
    const auto now = loop_.Now();
    LimitAttempt(now + (attempt.deadline - now) / left,
                 [this] { OnConnectFailed(static_cast<std::int32_t>(NetError::TimedOut)); });
}

void APClient::Impl::LimitAttempt(EventLoop::TimePoint until, EventLoop::Task task) {
    loop_.CancelTimer(attempt_->timer);
    const auto delay = std::chrono::ceil<Milliseconds>(until - loop_.Now());
    attempt_->timer = loop_.StartTimer(delay, attempt_->owner.Bind(std::move(task)));
}

void APClient::Impl::OnConnected() {
    if (keep_alive_) connection_->Socket().SetKeepAlive(true);
    UpdateReading();
    EndAttempt(0);
}

void APClient::Impl::OnConnectFailed(std::int32_t number) {
    attempt_->error = number;
    TryNextAddress();
}

void APClient::Impl::EndAttempt(std::int32_t result) {
    if (result != 0) connection_.reset();
    connect_result_ = result;
    const auto attempt = GiveUpAttempt();
    if (attempt->waited) return;
    const auto self = face_.shared_from_this();
    face_.ConnectEnded(result, result == 0 ? std::string() : NetErrorText(result));
}

std::unique_ptr<APClient::Impl::Attempt> APClient::Impl::GiveUpAttempt() {
    if (attempt_) loop_.CancelTimer(attempt_->timer);
    return std::exchange(attempt_, nullptr);
}

}  // namespace kq
