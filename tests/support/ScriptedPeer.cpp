// The peer's own codec of frames and its reactions.
#include "support/ScriptedPeer.h"

#include <array>
#include <span>
#include <utility>

namespace kq {

namespace {

constexpr std::size_t kHeaderSize = 10;

std::string Frame(int data_type, const std::string& data, const std::string& tag) {
    std::string frame = "KQ";
    frame += '\1';
    frame += static_cast<char>(data_type);
    for (int shift : {8, 0})
        frame += static_cast<char>(tag.size() >> shift & 0xFF);
    for (int shift : {24, 16, 8, 0})
        frame += static_cast<char>(data.size() >> shift & 0xFF);
    return frame + tag + data;
}

std::size_t Number(const std::string& bytes, std::size_t at, std::size_t count) {
    std::size_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

}  // namespace

void ScriptedPeer::Link::SendFrame(int data_type, const std::string& data, const std::string& tag) {
    SendBytes(Frame(data_type, data, tag));
}

void ScriptedPeer::Link::SendBytes(const std::string& bytes) {
    out += bytes;
    Flush();
}

void ScriptedPeer::Link::Flush() {
    while (stream && !out.empty()) {
        const IoResult result = stream->Write(std::as_bytes(std::span(out)));
        if (result.kind != IoResult::Kind::Done) return;
        out.erase(0, result.count);
    }
}

void ScriptedPeer::Link::Drop() {
    stream.reset();
}

void ScriptedPeer::Link::Reset() {
    if (stream) peer->machine_.network->Cut(*stream);
    stream.reset();
}

ScriptedPeer::ScriptedPeer(FakePlatform& machine, std::string address, int port)
    : machine_(machine), listener_(machine.network->Listen(address, port)) {
    listener_->SetHandler(owner_.Bind([this] { Accept(); }));
}

ScriptedPeer::~ScriptedPeer() = default;

void ScriptedPeer::Accept() {
    std::int32_t error = 0;
    while (auto stream = listener_->Accept(&error)) {
        ++accepted_;
        auto link = std::make_shared<Link>();
        link->peer = this;
        link->stream = std::move(stream);
        links_.push_back(link);
        std::weak_ptr<Link> weak = link;
        link->stream->SetHandler(owner_.Bind([this, weak](SocketEvent event) {
            const auto held = weak.lock();
            if (!held || !held->stream) return;
            if (event == SocketEvent::Readable) Read(*held);
            if (event == SocketEvent::Writable) held->Flush();
        }));
    }
}

void ScriptedPeer::Read(Link& link) {
    std::array<std::byte, 4096> buffer{};
    const IoResult result = link.stream->Read(buffer);
    if (result.kind == IoResult::Kind::Ended || result.kind == IoResult::Kind::Failed) {
        link.stream.reset();
        return;
    }
    if (result.kind != IoResult::Kind::Done) return;
    link.in.append(reinterpret_cast<const char*>(buffer.data()), result.count);
    while (link.stream && link.in.size() >= kHeaderSize) {
        const std::size_t tag = Number(link.in, 4, 2);
        const std::size_t size = Number(link.in, 6, 4);
        if (link.in.size() < kHeaderSize + tag + size) return;
        const std::string data = link.in.substr(kHeaderSize + tag, size);
        link.in.erase(0, kHeaderSize + tag + size);
        XMLMessage message;
        message.LoadXML(data);
        Dispatch(link, message);
    }
}

void ScriptedPeer::Dispatch(Link& link, const XMLMessage& message) {
    heard_.push_back(message);
    if (auto& once = once_[message.Type()]; !once.empty()) {
        const Reaction reaction = std::move(once.front());
        once.pop_front();
        reaction(link, message);
    } else if (const auto found = always_.find(message.Type()); found != always_.end()) {
        const Reaction reaction = found->second;
        reaction(link, message);
    }
}

ScriptedPeer::Reaction ScriptedPeer::Answer(XMLMessage reply) {
    return [reply = std::move(reply)](Link& link, const XMLMessage&) { link.Send(reply); };
}

ScriptedPeer::Reaction ScriptedPeer::Silence() {
    return [](Link&, const XMLMessage&) {};
}

ScriptedPeer::Reaction ScriptedPeer::Drop() {
    return [](Link& link, const XMLMessage&) { link.Drop(); };
}

ScriptedPeer::Reaction ScriptedPeer::Reset() {
    return [](Link& link, const XMLMessage&) { link.Reset(); };
}

ScriptedPeer::Reaction ScriptedPeer::Text(std::string text) {
    return [text = std::move(text)](Link& link, const XMLMessage&) { link.SendFrame(128, text); };
}

ScriptedPeer::Reaction ScriptedPeer::Raw(std::string bytes) {
    return [bytes = std::move(bytes)](Link& link, const XMLMessage&) { link.SendFrame(0, bytes); };
}

ScriptedPeer::Reaction ScriptedPeer::HalfOf(XMLMessage reply) {
    return [reply = std::move(reply)](Link& link, const XMLMessage&) {
        const std::string frame = Frame(128, reply.ToXML(), "");
        link.SendBytes(frame.substr(0, frame.size() / 2));
    };
}

std::vector<std::string> ScriptedPeer::HeardTypes() const {
    std::vector<std::string> types;
    for (const auto& message : heard_)
        types.push_back(message.Type());
    return types;
}

XMLMessage ScriptedPeer::Latest(const std::string& type) const {
    for (auto it = heard_.rbegin(); it != heard_.rend(); ++it) {
        if (it->Type() == type) return *it;
    }
    return {};
}

int ScriptedPeer::Open() const {
    int open = 0;
    for (const auto& link : links_)
        open += link->stream != nullptr;
    return open;
}

void ScriptedPeer::DropAll() {
    for (const auto& link : links_)
        link->Drop();
}

}  // namespace kq
