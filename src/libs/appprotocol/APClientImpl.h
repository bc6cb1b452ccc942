// The inside of APClient: the open connection, the blocks that are queued for the program, and the calls that
// wait for blocks.
//
// Everything that is reported to the program is in one queue, oldest first, the end of a connection included.
// So Disconnected comes after the blocks, and once for every connection, even if a new one is open already.
// Only Deliver raises events; it is called from the loop, never from inside a member that the program calls.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <kqappsession/APClient.h>
#include <kqappsession/Error.h>

#include "libs/appprotocol/Connection.h"
#include "libs/appprotocol/Fifo.h"
#include "libs/appprotocol/Strangers.h"

namespace kq {

class APClient::Impl final : public Connection::Sink {
 public:
    Impl(APClient& face, PlatformPtr platform);
    ~Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    void Connect(const std::string& address, std::int32_t port, const std::string& local_address,
                 std::int32_t time_out);
    void BeginConnect(const std::string& address, std::int32_t port, const std::string& local_address,
                      std::int32_t time_out);
    // Takes over an accepted stream; nothing is raised before this returns.
    void Adopt(std::unique_ptr<StreamSocket> socket, std::shared_ptr<Strangers> strangers);
    void Disconnect();
    bool Connected() const { return connection_ && connection_->GetState() == Connection::State::Open; }
    // Null when not connected.
    const StreamSocket* Socket() const { return Connected() ? &connection_->Socket() : nullptr; }
    const std::string& Identifier() const { return identifier_; }

    void Send(DataType type, std::string_view data, std::string_view tag);
    Block TakeBlock(std::int32_t time_out);
    // Waits for the block with the tag, which must not be empty.
    Block TakeAnswer(std::string_view tag, std::int32_t time_out);

    kq::ReceiveMode Mode() const { return mode_; }
    void SetMode(kq::ReceiveMode mode);
    DataType SendType() const { return send_type_; }
    void SetSendType(DataType type);
    DataType ReceiveType() const { return receive_type_; }
    void SetReceiveType(DataType type);
    const APLimits& Limits() const { return limits_; }
    void SetLimits(const APLimits& limits);
    void Admit();
    void SetDeadline(Milliseconds time);
    void SetKeepAlive(bool on);

 private:
    // A call that waits for the block with its tag. That block is never put into the inbox.
    struct AnswerWait {
        std::string tag;
        std::uint64_t serial;
        std::optional<Block> answer;
    };
    struct End {
        Ending ending;
        bool told;  // a call has reported it, or caused it
    };
    using Item = std::variant<Block, End>;
    // A connection that is being made.
    struct Attempt {
        std::int32_t port = 0;
        std::string local_address;
        EventLoop::TimePoint deadline;
        std::vector<std::string> addresses;
        std::size_t tried = 0;  // of the addresses
        std::int32_t error = static_cast<std::int32_t>(NetError::HostNotFound);
        EventLoop::TimerId timer = 0;
        bool waited = false;  // by a call of Connect, which returns the result
        Owner owner;
    };
    class Waiting;
    class WaitingForAnswer;

    void OnConnected() override;
    void OnConnectFailed(std::int32_t number) override;
    void OnBlock(Block block) override;
    void OnRead() override;
    void OnWritten() override;
    void OnOver(Ending ending) override;

    void TryNextAddress();
    void LimitAttempt(EventLoop::TimePoint until, EventLoop::Task task);
    // 0: connected; else the error's number.
    void EndAttempt(std::int32_t result);
    std::unique_ptr<Attempt> GiveUpAttempt();

    // The connection has ended: the queued blocks stay, its end is queued behind them.
    void NoteEnd(Ending ending, bool told);
    void DropBlocks();
    void Deliver();
    void PostDeliver();
    void RaiseProgress(const BlockProgress& progress);
    bool BlockWaits() const { return !inbox_.Empty() && std::holds_alternative<Block>(inbox_.Front()); }
    Block PopBlock();
    // Blocks are kept for calls instead of raising events.
    bool HoldsBlocks() const { return mode_ == kq::ReceiveMode::Take || waiting_ > 0; }
    bool Wanted(DataType type) const { return receive_type_ == DataType::Any || receive_type_ == type; }
    // So much is queued for the peer that nothing more is done for it until it reads.
    bool Clogged() const { return !made_ && Connected() && connection_->Unsent() >= limits_.reading_stops; }
    void UpdateReading();
    // Reports the bytes that this stranger holds. That may close other strangers, or this one.
    void UpdateHeld();
    void Cut(std::int32_t number, const std::string& sentence);
    // Runs the loop until `done` returns true or the connection has ended. Raises the reason if `done` is
    // still false.
    void Await(const std::function<bool()>& done, std::int32_t time_out);
    bool CallWaitsInVain() const;
    [[noreturn]] void RaiseNotConnected(bool waited);
    FrameLimits CurrentFrameLimits() const;

    APClient& face_;
    const PlatformPtr platform_;
    EventLoop& loop_;
    const std::string identifier_;

    kq::ReceiveMode mode_ = kq::ReceiveMode::Events;
    DataType send_type_ = DataType::XML;
    DataType receive_type_ = DataType::Any;
    APLimits limits_;
    bool keep_alive_ = false;
    bool made_ = true;  // by Connect; else accepted
    bool admitted_ = false;
    std::unique_ptr<Strangers::Place> place_;  // of an accepted connection that is not admitted
    bool clogged_ = false;                     // blocks or bytes wait for OnWritten

    // Number of the connection or attempt. A wait that finds another number is over.
    std::uint64_t serial_ = 0;
    std::unique_ptr<Attempt> attempt_;
    std::int32_t connect_result_ = 0;
    std::size_t connects_waiting_ = 0;  // calls of Connect
    std::unique_ptr<Connection> connection_;

    Fifo<Item> inbox_;
    std::size_t blocks_ = 0;  // in the inbox
    std::size_t bytes_ = 0;
    std::size_t waiting_ = 0;  // calls of TakeBlock
    std::vector<AnswerWait*> answer_waits_;
    Ending last_ending_;
    bool unlearned_ = false;  // no call has reported the last ending
    bool deliver_posted_ = false;
    Owner owner_;
};

}  // namespace kq
