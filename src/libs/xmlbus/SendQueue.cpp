// Replacing costs the same however long the queue is: each application has a list of what its next "C"
// outdates, and a message leaves that list when it is replaced, when its turn comes, or when a "D" makes it
// final.
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

const XMLElement* ApplicationOf(const XMLMessage& message) {
    return message.Root().Find("ApplicationInfos/ApplicationInfo");
}

// Whose state it is: one process may announce several applications over one bus client.
std::string ApplicationName(const XMLMessage& message, const XMLElement& application) {
    std::string name;
    for (const auto& part :
         {message.Destination().type, message.Destination().subtype, message.Type(),
          application.TextOf("AppID"), application.TextOf("Address"), application.TextOf("Port")}) {
        name += part;
        name += '\n';
    }
    return name;
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

std::int64_t SendQueue::Push(const XMLMessage& message, BusSending option, TimePoint expiry) {
    const XMLElement* application = option == BusSending::State ? ApplicationOf(message) : nullptr;
    const std::string letter = application != nullptr ? application->TextOf("InfoState") : std::string();
    const std::string name = application != nullptr ? ApplicationName(message, *application) : std::string();

    Outdated* outdated = nullptr;
    if (const auto found = applications_.find(name); letter == "C" && found != applications_.end()) {
        outdated = &found->second;
    }
    const std::size_t replaced = outdated != nullptr ? outdated->size() : 0;
    std::size_t freed = 0;
    for (std::size_t i = 0; i < replaced; ++i)
        freed += (*outdated)[i]->bytes;
    const std::size_t size = Estimate(message);
    if (entries_.size() - replaced + 1 > limits_.waiting_messages) return -1;
    if (bytes_ - freed + size > limits_.waiting_bytes) return -1;

    entries_.push_back(Entry{message, size, nullptr, expiring_.end()});
    const auto entry = std::prev(entries_.end());
    if (expiry != kNever) entry->expiring = expiring_.emplace(expiry, entry);
    bytes_ += size;
    if (outdated != nullptr) {
        for (const auto& old : *outdated)
            entries_.erase(old);
        outdated->clear();
        bytes_ -= freed;
    }
    Enlist(entry, letter, name);
    return static_cast<std::int64_t>(replaced);
}

void SendQueue::Enlist(Entries::iterator entry, const std::string& letter, const std::string& application) {
    if (letter == "C" || letter == "E") {
        auto& outdated = applications_[application];
        outdated.push_back(entry);
        entry->outdated = &outdated;
    } else if (letter == "D") {
        const auto found = applications_.find(application);
        if (found == applications_.end()) return;
        for (const auto& final : found->second)
            final->outdated = nullptr;
        found->second.clear();
    }
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
    if (entry.outdated != nullptr) entry.outdated->pop_front();
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
