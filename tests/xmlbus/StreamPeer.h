// A peer of the hub, or a hub for a client, that a test plays by hand over the network in memory: it says
// exactly what it is told to, byte by byte if need be.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "libs/appprotocol/Frame.h"
#include "libs/xmlbus/BusControl.h"
#include "platform/Crypto.h"
#include "support/FakePlatform.h"

namespace kq {

class StreamPeer {
 public:
    // Connects to a hub.
    StreamPeer(FakePlatform& machine, int port)
        : StreamPeer(machine, machine.network->Connect("127.0.0.1", port, std::string())) {}
    // Plays the other side of a connection that stands.
    StreamPeer(FakePlatform& machine, std::unique_ptr<StreamSocket> stream)
        : machine_(machine), stream_(std::move(stream)) {
        stream_->SetHandler([this](SocketEvent event) {
            if (event == SocketEvent::Readable) Read();
        });
        Settle();
    }

    void SaysBytes(std::string_view bytes) {
        stream_->Write(std::as_bytes(std::span(bytes.data(), bytes.size())));
        Settle();
    }
    void SaysBlock(const std::string& tag, const std::string& data, DataType type = DataType::XML) {
        const auto header = EncodeHeader(type, tag.size(), data.size());
        SaysBytes(std::string(header.data(), header.size()) + tag + data);
    }
    void SaysHeader(DataType type, std::size_t size) {
        const auto header = EncodeHeader(type, 0, size);
        SaysBytes(std::string(header.data(), header.size()));
    }
    using Fields = std::vector<std::pair<std::string, std::string>>;
    void Says(std::string_view type, const Fields& fields = {}) {
        auto message = MakeBusControl(type);
        for (const auto& [name, value] : fields)
            message.SetField(name, value);
        SaysBlock(std::string(), message.ToBusXML());
    }
    void SaysHello() { Says(BusHello::kType, {{"Client", "c1"}, {"Nonce", "a1"}, {"Taken", "0"}}); }
    void SaysProof(const std::string& key) {
        const BusGreeting greeting{"c1", "a1", Last().Field("Challenge")};
        Says(BusProof::kType, {{"Proof", BusProofOf(*machine_.crypto, key, kPeerRole, greeting)}});
    }
    // The whole way in.
    void Enters(const std::string& key) {
        SaysHello();
        SaysProof(key);
    }
    void Hears(const std::string& type, const std::string& option = "0") {
        Says(BusSubscribe::kType, {{"Type", type}, {"SubType", ""}, {"Option", option}});
    }
    void StopsReading() { stream_->SetReading(false); }
    void ReadsAgain() {
        stream_->SetReading(true);
        Settle();
    }

    XMLMessage Last() const { return blocks.empty() ? XMLMessage() : ParseBusControl(blocks.back().data); }
    // The types of the control messages heard so far.
    std::vector<std::string> Types() const {
        std::vector<std::string> types;
        for (const auto& block : blocks)
            if (block.tag.empty()) types.push_back(ParseBusControl(block.data).Type());
        return types;
    }

    std::vector<Block> blocks;
    bool ended = false;

 private:
    void Settle() { machine_.loop->RunReady(); }
    void Read() {
        std::array<std::byte, 4096> buffer{};
        for (;;) {
            const auto result = stream_->Read(buffer);
            ended = ended || result.kind == IoResult::Kind::Ended || result.kind == IoResult::Kind::Failed;
            if (result.kind != IoResult::Kind::Done) return;
            std::string_view bytes(reinterpret_cast<const char*>(buffer.data()), result.count);
            while (!bytes.empty() && !reader_.Failure())
                if (auto block = reader_.Take(bytes)) blocks.push_back(*std::move(block));
        }
    }

    FakePlatform& machine_;
    FrameReader reader_{FrameLimits{1U << 24, 1U << 24}};
    std::unique_ptr<StreamSocket> stream_;
};

}  // namespace kq
