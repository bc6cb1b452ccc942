#include "platform/net/TcpNetwork.h"

#include <string>
#include <utility>

#include <kqappsession/Error.h>

#include "platform/net/TcpListener.h"
#include "platform/net/TcpStream.h"

namespace kq {
namespace {

constexpr std::string_view kSource = "KQAppProtocolLib";

class TcpNetwork final : public Network {
 public:
    TcpNetwork(std::shared_ptr<SocketCalls> calls, std::shared_ptr<EventLoop> loop)
        : calls_(std::move(calls)), loop_(std::move(loop)) {}

    std::unique_ptr<StreamSocket> Connect(const std::string& address, int port,
                                          const std::string& local_address) override {
        return std::make_unique<TcpStream>(calls_, loop_, address, port, local_address);
    }

    std::unique_ptr<ListenSocket> Listen(const std::string& local_address, int port) override {
        if (port < 0 || port > 65535) Raise(NetError::InvalidArgument, kSource);
        const auto opened = local_address.empty() ? OpenOnAll(port) : OpenOn(local_address, port, false);
        if (opened.error != 0) Raise(static_cast<NetError>(opened.error), kSource);
        return std::make_unique<TcpListener>(calls_, loop_, opened.socket);
    }

    std::string OwnAddress() const override {
        for (const std::string& own : calls_->OwnAddresses())
            if (!own.starts_with("127.")) return own;
        return "127.0.0.1";
    }

 private:
    // A machine without IPv6 listens on IPv4 alone.
    SocketCalls::Opened OpenOnAll(int port) {
        const auto both = OpenOn("::", port, true);
        const bool no_ipv6 = both.error == SocketCalls::kNoSuchFamily ||
                             both.error == static_cast<std::int32_t>(NetError::AddressNotAvailable);
        return no_ipv6 ? OpenOn("0.0.0.0", port, false) : both;
    }

    SocketCalls::Opened OpenOn(const std::string& text, int port, bool both_families) {
        const auto address = calls_->Parse(text, port);
        if (!address) return {SocketCalls::kNone, static_cast<std::int32_t>(NetError::AddressNotAvailable)};
        auto opened = calls_->Open(*address);
        if (opened.error != 0) return opened;
        opened.error = calls_->PrepareListener(opened.socket, *address, both_families);
        if (opened.error == 0) opened.error = calls_->Bind(opened.socket, *address);
        if (opened.error == 0) opened.error = calls_->Listen(opened.socket);
        if (opened.error != 0) calls_->Close(opened.socket);
        return opened;
    }

    std::shared_ptr<SocketCalls> calls_;
    std::shared_ptr<EventLoop> loop_;
};

}  // namespace

std::shared_ptr<Network> MakeTcpNetwork(std::shared_ptr<SocketCalls> calls, std::shared_ptr<EventLoop> loop) {
    return std::make_shared<TcpNetwork>(std::move(calls), std::move(loop));
}

}  // namespace kq
