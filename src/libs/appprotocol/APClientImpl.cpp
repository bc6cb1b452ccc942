// Receiving, sending and ending. Connecting.cpp makes connections.
#include "libs/appprotocol/APClientImpl.h"

#include <algorithm>
#include <atomic>
#include <utility>

#include <kqappsession/Error.h>

#include "base/ErrorSentences.h"
#include "base/Utf.h"

namespace kq {
namespace {

constexpr std::size_t kMostBlocks = 256;
constexpr std::size_t kMostFullFrames = 4;

std::string NextIdentifier() {
    static std::atomic<std::uint64_t> last{0};
    return std::to_string(++last);
}

[[noreturn]] void Raise(const Ending& ending) {
    throw kq::Error(ending.number, std::string(kAppProtocolSource), ending.sentence);
}

}  // namespace

// A call that waits for a block. What is left when it ends goes the way of the mode.
class APClient::Impl::Waiting {
 public:
    explicit Waiting(Impl& impl) : impl_(impl) {
        ++impl_.waiting_;
        impl_.UpdateReading();
    }
    ~Waiting() {
        --impl_.waiting_;
        impl_.UpdateReading();
        impl_.PostDeliver();
    }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

 private:
    Impl& impl_;
};

// A call that waits for the block with its tag.
class APClient::Impl::WaitingForAnswer {
 public:
    WaitingForAnswer(Impl& impl, AnswerWait& wait) : impl_(impl), wait_(wait) {
        impl_.answer_waits_.push_back(&wait_);
    }
    ~WaitingForAnswer() { std::erase(impl_.answer_waits_, &wait_); }
    WaitingForAnswer(const WaitingForAnswer&) = delete;
    WaitingForAnswer& operator=(const WaitingForAnswer&) = delete;

 private:
    Impl& impl_;
    AnswerWait& wait_;
};

APClient::Impl::Impl(APClient& face, PlatformPtr platform)
    : face_(face), platform_(std::move(platform)), loop_(*platform_->Loop()), identifier_(NextIdentifier()) {}

APClient::Impl::~Impl() {
    GiveUpAttempt();
    if (Connected()) connection_->Leave();
}

void APClient::Impl::Adopt(std::unique_ptr<StreamSocket> socket, std::shared_ptr<Strangers> strangers) {
    made_ = false;
    ++serial_;
    if (!admitted_) {
        place_ = std::make_unique<Strangers::Place>(
            std::move(strangers), socket->RemoteAddress(),
            [this](std::int32_t number, const std::string& sentence) { Cut(number, sentence); });
    }
    connection_ = std::make_unique<Connection>(loop_, std::move(socket), Connection::State::Open,
                                               CurrentFrameLimits(), *this);
    if (keep_alive_) connection_->Socket().SetKeepAlive(true);
    if (limits_.first_frame.count() > 0) connection_->LimitFirstFrame(limits_.first_frame);
    SetDeadline(limits_.proof);
}

void APClient::Impl::Disconnect() {
    if (GiveUpAttempt()) ++serial_;
    DropBlocks();
    if (Connected()) {
        connection_->Leave();
        NoteEnd({NumberOf(ErrorSentence::EndedByThisSide), TextOf(ErrorSentence::EndedByThisSide), false},
                true);
    }
    connection_.reset();
    unlearned_ = false;
    PostDeliver();
}

void APClient::Impl::Send(DataType type, std::string_view data, std::string_view tag) {
    if (!Connected()) kq::Raise(NetError::NotConnected, kAppProtocolSource);
    if (tag.size() > kMaxTagSize) {
        kq::Raise(ErrorSentence::TagTooLong, kAppProtocolSource, {std::to_string(kMaxTagSize)});
    }
    if (!IsValidUtf8(tag)) kq::Raise(ErrorSentence::TagNotText, kAppProtocolSource);
    if (data.size() > kMaxSentData) kq::Raise(ErrorSentence::BlockTooLong, kAppProtocolSource);
    // A stranger may be sent one large answer, but not one more while much of the last one waits.
    const bool deaf_stranger = place_ && connection_->Unsent() > limits_.stranger_unsent;
    const std::size_t most = deaf_stranger ? limits_.stranger_unsent : limits_.unsent;
    if (connection_->Send(type, tag, data, most)) {
        UpdateReading();
        UpdateHeld();
        return;
    }
    const Ending ending{NumberOf(ErrorSentence::PeerDoesNotRead),
                        TextOf(ErrorSentence::PeerDoesNotRead, {std::to_string(most)}), true};
    connection_.reset();
    NoteEnd(ending, true);
    PostDeliver();
    Raise(ending);
}

void APClient::Impl::Await(const std::function<bool()>& done, std::int32_t time_out) {
    const auto deadline = loop_.Now() + Milliseconds(time_out > 0 ? time_out : kDefaultTimeOut);
    const bool stood = Connected();
    const auto mine = serial_;
    const auto stands = [&] { return Connected() && serial_ == mine; };
    loop_.RunUntil([&] { return done() || !stands(); }, deadline);
    if (done() && serial_ == mine) return;
    if (!stands()) RaiseNotConnected(stood);
    kq::Raise(loop_.Quitting() ? NetError::Interrupted : NetError::TimedOut, kAppProtocolSource);
}

Block APClient::Impl::TakeBlock(std::int32_t time_out) {
    const Waiting waiting(*this);
    Await([this] { return BlockWaits(); }, time_out);
    return PopBlock();
}

Block APClient::Impl::TakeAnswer(std::string_view tag, std::int32_t time_out) {
    AnswerWait wait{std::string(tag), serial_, std::nullopt};
    const WaitingForAnswer waiting(*this, wait);
    Await([&wait] { return wait.answer.has_value(); }, time_out);
    return std::move(*wait.answer);
}

// A call that waited learns why the connection ended, and so does the first one after an end that no call has
// learned of; for all others there is no connection.
void APClient::Impl::RaiseNotConnected(bool waited) {
    if (!waited && !unlearned_) kq::Raise(NetError::NotConnected, kAppProtocolSource);
    unlearned_ = false;
    if (!inbox_.Empty()) {
        if (auto* const end = std::get_if<End>(&inbox_.Front())) end->told = true;
    }
    Raise(last_ending_);
}

void APClient::Impl::OnBlock(Block block) {
    for (auto* const wait : answer_waits_) {
        if (wait->answer || wait->serial != serial_ || wait->tag != block.tag) continue;
        wait->answer = std::move(block);
        return;
    }
    ++blocks_;
    bytes_ += block.tag.size() + block.data.size();
    inbox_.Push(std::move(block));
    UpdateReading();
}

Block APClient::Impl::PopBlock() {
    Block block = std::get<Block>(inbox_.Pop());
    --blocks_;
    bytes_ -= block.tag.size() + block.data.size();
    UpdateReading();
    return block;
}

void APClient::Impl::OnRead() {
    const auto self = face_.shared_from_this();
    if (const auto completion = connection_->TakeCompletion()) RaiseProgress(*completion);
    Deliver();
    UpdateHeld();
    if (!Connected() || !face_.Progress.HasHandlers()) return;
    if (const auto progress = connection_->TakeProgress()) RaiseProgress(*progress);
}

void APClient::Impl::OnWritten() {
    const auto self = face_.shared_from_this();
    UpdateHeld();
    if (!std::exchange(clogged_, false)) return;
    UpdateReading();
    Deliver();
}

bool APClient::Impl::CallWaitsInVain() const {
    const auto unanswered = [](const AnswerWait* wait) { return !wait->answer; };
    return waiting_ > blocks_ || connects_waiting_ > 0 || std::ranges::any_of(answer_waits_, unanswered);
}

void APClient::Impl::OnOver(Ending ending) {
    const auto self = face_.shared_from_this();
    const auto completion = connection_->TakeCompletion();
    // The other side may have stopped sending only; it still gets what waits for it.
    if (!ending.failure) connection_->Leave();
    connection_.reset();
    NoteEnd(std::move(ending), CallWaitsInVain());
    if (completion) RaiseProgress(*completion);
    Deliver();
}

void APClient::Impl::NoteEnd(Ending ending, bool told) {
    last_ending_ = ending;
    unlearned_ = !told;
    place_.reset();
    clogged_ = false;
    inbox_.Push(End{std::move(ending), told});
}

void APClient::Impl::Cut(std::int32_t number, const std::string& sentence) {
    connection_.reset();
    NoteEnd({number, sentence, true}, CallWaitsInVain());
    PostDeliver();
}

void APClient::Impl::UpdateHeld() {
    if (place_) place_->Holds(bytes_ + (connection_ ? connection_->Held() : 0));
}

void APClient::Impl::DropBlocks() {
    Fifo<Item> ends;
    while (!inbox_.Empty()) {
        Item item = inbox_.Pop();
        if (std::holds_alternative<End>(item)) ends.Push(std::move(item));
    }
    inbox_ = std::move(ends);
    blocks_ = 0;
    bytes_ = 0;
}

void APClient::Impl::Deliver() {
    const auto self = face_.shared_from_this();
    while (!inbox_.Empty()) {
        if (!BlockWaits()) {
            const End end = std::get<End>(inbox_.Pop());
            if (end.ending.failure && !end.told) face_.Error(end.ending.number, end.ending.sentence);
            face_.Disconnected();
        } else {
            if (HoldsBlocks()) return;
            if (Clogged()) {
                clogged_ = true;
                return;
            }
            const Block block = PopBlock();
            if (Wanted(block.data_type)) face_.Receive(block);
        }
    }
}

void APClient::Impl::PostDeliver() {
    if (deliver_posted_ || inbox_.Empty()) return;
    deliver_posted_ = true;
    loop_.Post(owner_.Bind([this] {
        deliver_posted_ = false;
        Deliver();
    }));
}

void APClient::Impl::RaiseProgress(const BlockProgress& progress) {
    if (!HoldsBlocks() && !Wanted(progress.data_type)) return;
    face_.Progress(progress.tag, static_cast<std::int64_t>(progress.so_far),
                   static_cast<std::int64_t>(progress.total));
}

// Neither blocks that only a call will take nor answers that the peer does not read may pile up: the rest of
// its blocks waits with the peer.
void APClient::Impl::UpdateReading() {
    if (!Connected()) return;
    const bool full =
        blocks_ >= kMostBlocks || bytes_ > std::uint64_t{kMostFullFrames} * CurrentFrameLimits().xml;
    const bool clogged = Clogged();
    clogged_ = clogged_ || clogged;
    connection_->SetReading(!clogged && !(HoldsBlocks() && full));
}

void APClient::Impl::SetMode(kq::ReceiveMode mode) {
    if (mode != kq::ReceiveMode::Events && mode != kq::ReceiveMode::Take) {
        kq::Raise(RuntimeError::InvalidProcedureCall);
    }
    mode_ = mode;
    UpdateReading();
    PostDeliver();
}

void APClient::Impl::SetSendType(DataType type) {
    if (type != DataType::Raw && type != DataType::XML) kq::Raise(RuntimeError::InvalidProcedureCall);
    send_type_ = type;
}

void APClient::Impl::SetReceiveType(DataType type) {
    if (type != DataType::Raw && type != DataType::Any && type != DataType::XML) {
        kq::Raise(RuntimeError::InvalidProcedureCall);
    }
    receive_type_ = type;
}

FrameLimits APClient::Impl::CurrentFrameLimits() const {
    if (made_) return {limits_.admitted_frame, limits_.raw_frame};
    const std::size_t frame = admitted_ ? limits_.admitted_frame : limits_.frame;
    return {frame, frame};
}

void APClient::Impl::SetLimits(const APLimits& limits) {
    limits_ = limits;
    if (connection_) connection_->SetFrameLimits(CurrentFrameLimits());
    UpdateReading();
}

void APClient::Impl::Admit() {
    admitted_ = true;
    place_.reset();
    if (connection_) connection_->CancelTimes();
    SetLimits(limits_);
}

void APClient::Impl::SetDeadline(Milliseconds time) {
    if (place_ && connection_) connection_->SetDeadline(time);
}

void APClient::Impl::SetKeepAlive(bool on) {
    keep_alive_ = on;
    if (Connected()) connection_->Socket().SetKeepAlive(on);
}

}  // namespace kq
