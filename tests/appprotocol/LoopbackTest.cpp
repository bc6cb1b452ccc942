// The same over real sockets of this machine.
#include "appprotocol/APTesting.h"

namespace kq {
namespace {

class Loopback : public testing::Test {
 protected:
    Loopback()
        : platform_(MakePlatform()),
          listener_(Listener::Create(platform_)),
          client_(APClient::Create(platform_)) {
        listener_->Receive.Connect(owner_, [](const Listener::ClientPtr& client, const Block& block) {
            client->Admit();
            if (block.data_type == DataType::XML) {
                client->SendText(block.data, block.tag);
            } else {
                client->SendBytes(block.data, block.tag);
            }
            if (block.tag == "last") client->Disconnect();
        });
        listener_->Listen(0, "127.0.0.1");
        client_->SetReceiveMode(ReceiveMode::Take);
    }
    void Connect() { client_->Connect("127.0.0.1", listener_->Port(), "", 5000); }
    bool RunUntil(const std::function<bool()>& done) {
        return platform_->Loop()->RunUntil(done, platform_->Loop()->Now() + Milliseconds(5000));
    }

    PlatformPtr platform_;
    std::shared_ptr<Listener> listener_;
    std::shared_ptr<APClient> client_;
    Owner owner_;
};

TEST_F(Loopback, AnswersARequest) {
    Connect();
    const XMLMessage question("ASLoginRequest", "1");
    EXPECT_EQ(client_->Request(question, "t", 5000), question);
    EXPECT_EQ(client_->RemotePort(), listener_->Port());
    EXPECT_EQ(client_->LocalAddress(), "127.0.0.1");
}

TEST_F(Loopback, CarriesABlockThatFillsEveryBuffer) {
    Connect();
    client_->SendBytes("first");
    EXPECT_EQ(client_->TakeBlock(5000).data, "first");
    APLimits limits;
    limits.unsent = 32U << 20;
    client_->SetLimits(limits);
    listener_->Clients().front()->SetLimits(limits);
    std::string large(9'000'000, '\0');
    for (std::size_t i = 0; i < large.size(); ++i)
        large[i] = static_cast<char>(i * 31 >> 8);
    client_->SendBytes(large, "t");
    EXPECT_TRUE(client_->TakeBlock(20'000).data == large);
}

TEST_F(Loopback, DeliversTheLastWordOfAPeerThatDisconnects) {
    Connect();
    client_->SendText("bye", "last");
    client_->SendText("unread");
    EXPECT_EQ(client_->TakeBlock(5000).data, "bye");
    EXPECT_EQ(NumberRaisedBy([&] { client_->TakeBlock(5000); }), 10054);
    EXPECT_TRUE(RunUntil([&] { return listener_->Count() == 0; }));
}

TEST_F(Loopback, IsRefusedWhereNobodyListens) {
    const auto port = listener_->Port();
    listener_->StopListening(false);
    EXPECT_EQ(NumberRaisedBy([&] { client_->Connect("127.0.0.1", port, "", 5000); }), 10061);
}

TEST_F(Loopback, FindsTheLocalHostByName) {
    client_->Connect("localhost", listener_->Port(), "", 5000);
    EXPECT_TRUE(client_->Connected());
}

TEST_F(Loopback, TimesOutInRealTime) {
    Connect();
    const auto start = platform_->Loop()->Now();
    EXPECT_EQ(NumberRaisedBy([&] { client_->TakeBlock(60); }), 10060);
    EXPECT_GE(platform_->Loop()->Now() - start, Milliseconds(60));
}

TEST_F(Loopback, RaisesThatThePortIsInUse) {
    const auto other = Listener::Create(platform_);
    EXPECT_EQ(NumberRaisedBy([&] { other->Listen(listener_->Port(), "127.0.0.1"); }), 10048);
}

TEST_F(Loopback, ServesManyConnectionsAtOnce) {
    std::vector<std::shared_ptr<APClient>> clients;
    for (int i = 0; i < 50; ++i) {
        clients.push_back(APClient::Create(platform_));
        clients.back()->SetReceiveMode(ReceiveMode::Take);
        clients.back()->Connect("127.0.0.1", listener_->Port(), "", 5000);
        clients.back()->SendText(std::to_string(i));
    }
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(clients[static_cast<std::size_t>(i)]->TakeBlock(5000).data, std::to_string(i));
    EXPECT_EQ(listener_->Count(), 50);
}

}  // namespace
}  // namespace kq
