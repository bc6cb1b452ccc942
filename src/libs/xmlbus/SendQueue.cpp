// Removing what a state outdates costs the same however long the queue is: each subject has a list of what
// its next state may outdate. A message leaves that list when it is outdated, when its turn comes, or when a
// later state makes it final.
#include "libs/xmlbus/SendQueue.h"

#include <utility>

namespace kq {
namespace {

// Bytes of a text when every character is escaped that may have to be ("&quot;" is the longest).
std::size_t EscapedSize(std::string_view text) {
    std::size_t size = text.size();
    for (const char c : text) {
        if (c == '&' || c == '<' || c == '>' || c == '"' || c == '\'' || static_cast<unsigned char>(c) < ' ')
            size += 5;
    }
    return size;
}

constexpr std::size_t kMarkup = 16;  // brackets and a slash of both tags, with some to spare
constexpr std::size_t kHeader = 256;

std::size_t EstimateElement(const XMLElement& element) {
    std::size_t size = 2 * element.Name().size() + EscapedSize(element.Text()) + kMarkup;
    for (const auto& attribute : element.Attributes())
        size += attribute.name.size() + EscapedSize(attribute.value) + kMarkup;
    for (const auto& child : element.Children())
        size += EstimateElement(child);
    return size;
}

std::size_t CountElements(const XMLElement& element) {
    std::size_t count = 1;
    for (const auto& child : element.Children())
        count += CountElements(child);
    return count;
}

}  // namespace

std::size_t SendQueue::Estimate(const XMLMessage& message) {
    return kHeader + EscapedSize(message.Version()) + EscapedSize(message.Schema()) +
           EscapedSize(message.Destination().type) + EscapedSize(message.Destination().subtype) +
           EstimateElement(message.Root());
}

std::size_t SendQueue::Elements(const XMLMessage& message) {
    return CountElements(message.Root());
}

bool SendQueue::HasRoom(std::size_t size, std::size_t removed, std::size_t freed) const {
    return entries_.size() - removed < limits_.waiting_messages &&
           bytes_ - freed + size <= limits_.waiting_bytes;
}

SendQueue::Entries::iterator SendQueue::Append(const XMLMessage& message, std::size_t size) {
    entries_.push_back(Entry{message, size, subjects_.end(), expiring_.end()});
    bytes_ += size;
    return std::prev(entries_.end());
}

std::int64_t SendQueue::Push(const XMLMessage& message, TimePoint expiry) {
    const std::size_t size = Estimate(message);
    if (!HasRoom(size, 0, 0)) return -1;
    const auto entry = Append(message, size);
    if (expiry != kNever) entry->expiring = expiring_.emplace(expiry, entry);
    return 0;
}

std::int64_t SendQueue::Push(const XMLMessage& message, const BusState& state) {
    const std::pair<BusAddress, std::string> subject(message.Destination(), state.subject);
    const auto earlier = subjects_.find(subject);
    std::size_t removed = 0;
    std::size_t freed = 0;
    if (state.outdates == BusOutdates::Earlier && earlier != subjects_.end()) {
        removed = earlier->second.size();
        for (const auto& outdated : earlier->second)
            freed += outdated->bytes;
    }
    const std::size_t size = Estimate(message);
    if (!HasRoom(size, removed, freed)) return -1;

    const auto entry = Append(message, size);
    if (state.outdates != BusOutdates::Nothing && earlier != subjects_.end()) {
        state.outdates == BusOutdates::Earlier ? Remove(earlier) : MakeFinal(earlier);
    }
    if (state.outdates != BusOutdates::Final) {
        entry->subject = subjects_.try_emplace(subject).first;
        entry->subject->second.push_back(entry);
    }
    return static_cast<std::int64_t>(removed);
}

void SendQueue::Remove(SubjectMap::iterator subject) {
    for (const auto& outdated : subject->second) {
        bytes_ -= outdated->bytes;
        entries_.erase(outdated);
    }
    subjects_.erase(subject);
}

void SendQueue::MakeFinal(SubjectMap::iterator subject) {
    for (const auto& final : subject->second)
        final->subject = subjects_.end();
    subjects_.erase(subject);
}

std::int64_t SendQueue::DropExpired(TimePoint now) {
    std::int64_t dropped = 0;
    for (; !expiring_.empty() && expiring_.begin()->first <= now; ++dropped) {
        const auto entry = expiring_.begin()->second;
        expiring_.erase(expiring_.begin());
        bytes_ -= entry->bytes;
        entries_.erase(entry);
    }
    return dropped;
}

SendQueue::Waiting SendQueue::Pop() {
    auto& entry = entries_.front();
    if (entry.subject != subjects_.end()) {
        entry.subject->second.pop_front();
        if (entry.subject->second.empty()) subjects_.erase(entry.subject);
    }
    Waiting waiting{std::move(entry.message), kNever};
    if (entry.expiring != expiring_.end()) {
        waiting.expiry = entry.expiring->first;
        expiring_.erase(entry.expiring);
    }
    bytes_ -= entry.bytes;
    entries_.pop_front();
    return waiting;
}

}  // namespace kq
