#include "libs/appprotocol/WriteQueue.h"

#include <span>

namespace kq {
namespace {

constexpr std::size_t kChunk = 64U << 10;

}  // namespace

void WriteQueue::Append(std::string_view bytes) {
    if (bytes.empty()) return;
    size_ += bytes.size();
    if (!chunks_.Empty() && chunks_.Back().size() + bytes.size() <= kChunk) {
        chunks_.Back().append(bytes);
    } else {
        chunks_.Push(std::string(bytes));
    }
}

WriteQueue::State WriteQueue::WriteTo(StreamSocket& socket, std::int32_t& error) {
    while (!chunks_.Empty()) {
        std::string_view rest = std::string_view(chunks_.Front()).substr(written_);
        const std::size_t before = rest.size();
        const State state = Write(socket, rest, error);
        size_ -= before - rest.size();
        written_ += before - rest.size();
        if (state != State::Written) return state;
        chunks_.Pop();
        written_ = 0;
    }
    return State::Written;
}

WriteQueue::State WriteQueue::Write(StreamSocket& socket, std::string_view& bytes, std::int32_t& error) {
    while (!bytes.empty()) {
        const IoResult result = socket.Write(std::as_bytes(std::span(bytes)));
        switch (result.kind) {
            case IoResult::Kind::Done:
                bytes.remove_prefix(result.count);
                break;
            case IoResult::Kind::WouldBlock:
                return State::Blocked;
            default:
                error = result.error;
                return State::Failed;
        }
    }
    return State::Written;
}

}  // namespace kq
