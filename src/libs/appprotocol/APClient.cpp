// The public class: converts, and holds itself as long as a call runs.
#include <utility>

#include <kqappsession/APClient.h>
#include <kqappsession/Error.h>

#include "libs/appprotocol/APClientImpl.h"
#include "platform/Machine.h"

namespace kq {

std::shared_ptr<APClient> APClient::Create(PlatformPtr platform) {
    return std::shared_ptr<APClient>(new APClient(RequirePlatform(std::move(platform), "A connection")));
}

APClient::APClient(PlatformPtr platform) : impl_(std::make_unique<Impl>(*this, std::move(platform))) {}

APClient::~APClient() = default;

void APClient::Connect(const std::string& address, std::int32_t port, const std::string& local_address,
                       std::int32_t time_out) {
    const auto self = shared_from_this();
    impl_->Connect(address, port, local_address, time_out);
}

void APClient::BeginConnect(const std::string& address, std::int32_t port, const std::string& local_address,
                            std::int32_t time_out) {
    impl_->BeginConnect(address, port, local_address, time_out);
}

void APClient::Disconnect() {
    impl_->Disconnect();
}

bool APClient::Connected() const {
    return impl_->Connected();
}

void APClient::Send(const XMLMessage& message, std::string_view tag) {
    impl_->Send(DataType::XML, message.ToXML(), tag);
}

void APClient::SendText(std::string_view text, std::string_view tag) {
    impl_->Send(impl_->SendType(), text, tag);
}

void APClient::SendBytes(std::string_view bytes, std::string_view tag) {
    impl_->Send(DataType::Raw, bytes, tag);
}

Block APClient::TakeBlock(std::int32_t time_out) {
    const auto self = shared_from_this();
    return impl_->TakeBlock(time_out);
}

XMLMessage APClient::Request(const XMLMessage& message, std::string_view tag, std::int32_t time_out) {
    const auto self = shared_from_this();
    Send(message, tag);
    const Block reply = tag.empty() ? impl_->TakeBlock(time_out) : impl_->TakeAnswer(tag, time_out);
    if (reply.data_type != DataType::XML) {
        throw kq::Error(XMLMessage::kNotAMessage, std::string(kAppProtocolSource),
                        "The reply is not a message but a block of bytes");
    }
    XMLMessage answer;
    answer.LoadXML(reply.data);
    return answer;
}

ReceiveMode APClient::ReceiveMode() const {
    return impl_->Mode();
}

void APClient::SetReceiveMode(kq::ReceiveMode mode) {
    impl_->SetMode(mode);
}

DataType APClient::SendType() const {
    return impl_->SendType();
}

void APClient::SetSendType(DataType type) {
    impl_->SetSendType(type);
}

DataType APClient::ReceiveType() const {
    return impl_->ReceiveType();
}

void APClient::SetReceiveType(DataType type) {
    impl_->SetReceiveType(type);
}

const APLimits& APClient::Limits() const {
    return impl_->Limits();
}

void APClient::SetLimits(const APLimits& limits) {
    impl_->SetLimits(limits);
}

void APClient::Admit() {
    impl_->Admit();
}

void APClient::SetDeadline(Milliseconds time) {
    impl_->SetDeadline(time);
}

void APClient::SetKeepAlive(bool on) {
    impl_->SetKeepAlive(on);
}

const std::string& APClient::Identifier() const {
    return impl_->Identifier();
}

std::string APClient::LocalAddress() const {
    const auto* const socket = impl_->Socket();
    return socket ? socket->LocalAddress() : std::string();
}

std::int32_t APClient::LocalPort() const {
    const auto* const socket = impl_->Socket();
    return socket ? socket->LocalPort() : 0;
}

std::string APClient::RemoteAddress() const {
    const auto* const socket = impl_->Socket();
    return socket ? socket->RemoteAddress() : std::string();
}

std::int32_t APClient::RemotePort() const {
    const auto* const socket = impl_->Socket();
    return socket ? socket->RemotePort() : 0;
}

}  // namespace kq
