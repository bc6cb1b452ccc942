#include "libs/appprotocol/Linger.h"

#include <map>
#include <mutex>
#include <utility>

#include "libs/appprotocol/ReadBuffer.h"

namespace kq {
namespace {

constexpr Milliseconds kBound{1000};

}  // namespace

// Never destroyed: loops may outlive the static objects of this library.
class Linger::Table {
 public:
    static Table& Get() {
        static Table* const table = new Table;
        return *table;
    }

    Linger& Add(std::unique_ptr<Linger> linger) {
        const std::lock_guard lock(mutex_);
        Linger& added = *linger;
        lingers_.emplace(&added, std::move(linger));
        return added;
    }

    void Remove(Linger* linger) {
        std::unique_ptr<Linger> gone;  // closes its socket without the lock
        const std::lock_guard lock(mutex_);
        const auto entry = lingers_.find(linger);
        if (entry == lingers_.end()) return;
        gone = std::move(entry->second);
        lingers_.erase(entry);
    }

 private:
    std::mutex mutex_;
    std::map<Linger*, std::unique_ptr<Linger>> lingers_;
};

// Part of the timer's task, whose end is the end of the Linger, however it comes.
class Linger::Ticket {
 public:
    explicit Ticket(Linger* linger) : linger_(linger) {}
    ~Ticket() { Table::Get().Remove(linger_); }
    Ticket(const Ticket&) = delete;
    Ticket& operator=(const Ticket&) = delete;

 private:
    Linger* linger_;
};

void Linger::Start(EventLoop& loop, std::unique_ptr<StreamSocket> socket, WriteQueue queue, bool peer_ended) {
    std::unique_ptr<Linger> linger(new Linger(loop, std::move(socket), std::move(queue), peer_ended));
    if (linger->Write() || loop.Quitting()) return;
    Linger& added = Table::Get().Add(std::move(linger));
    added.timer_ = loop.StartTimer(kBound, [ticket = std::make_shared<Ticket>(&added)] {});
    added.socket_->SetHandler([raw = &added](SocketEvent event) { raw->OnSocket(event); });
    added.socket_->SetReading(!peer_ended);
}

void Linger::OnSocket(SocketEvent event) {
    const bool over = event == SocketEvent::Readable   ? Drain()
                      : event == SocketEvent::Writable ? Write()
                                                       : true;
    if (over) loop_.CancelTimer(timer_);  // destroys this object
}

bool Linger::Write() {
    if (!finished_) {
        std::int32_t error = 0;
        const auto state = queue_.WriteTo(*socket_, error);
        if (state == WriteQueue::State::Blocked) return false;
        if (state == WriteQueue::State::Failed) return true;
        socket_->FinishWriting();
        finished_ = true;
    }
    return peer_ended_;
}

bool Linger::Drain() {
    const IoResult result = socket_->Read(SharedReadBuffer());
    if (result.kind == IoResult::Kind::Failed) return true;
    if (result.kind == IoResult::Kind::Ended) {
        peer_ended_ = true;
        socket_->SetReading(false);
    }
    return peer_ended_ && finished_;
}

}  // namespace kq
