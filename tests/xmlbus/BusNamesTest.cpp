// Addresses as one text, and the routing by it.
#include "libs/xmlbus/BusNames.h"
#include "libs/xmlbus/BusRoutes.h"
#include "xmlbus/BusTesting.h"

namespace kq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kInvalid = NumberOf(RuntimeError::InvalidProcedureCall);

TEST(BusNames, WritesTheTypeAloneWhenTheSubtypeIsEmpty) {
    EXPECT_EQ(BusNameOf({"ZEB", ""}), "ZEB");
}

TEST(BusNames, WritesTypeAndSubtypeWithASlash) {
    EXPECT_EQ(BusNameOf({"AS", "Broadcast"}), "AS/Broadcast");
}

TEST(BusNames, ReadsBackWhatItWrites) {
    for (const BusAddress& address :
         {BusAddress{"ZEB", ""}, BusAddress{"AS", "Broadcast"}, BusAddress{"a/b", "c/d%2F"},
          BusAddress{"100%", "%"}, BusAddress{"\xC3\xA4", "x y"}})
        EXPECT_EQ(BusAddressOf(BusNameOf(address)), address);
}

TEST(BusNames, KeepsAddressesApartThatDifferOnlyInTheirSlash) {
    EXPECT_NE(BusNameOf({"a/b", "c"}), BusNameOf({"a", "b/c"}));
}

TEST(BusNames, RefusesWhatIsNoAddress) {
    for (const BusAddress& address :
         {BusAddress{"", ""}, BusAddress{"", "x"}, BusAddress{"a\n", ""}, BusAddress{"a", "\x7F"},
          BusAddress{"\xFF", ""}, BusAddress{std::string(kMaxBusName + 1, 'a'), ""}})
        EXPECT_EQ(ErrorOf([&] { BusNameOf(address); }), kInvalid);
}

TEST(BusNames, TakesTheLongestAddress) {
    const std::string type(kMaxBusName, 'a');
    EXPECT_EQ(BusAddressOf(BusNameOf({type, ""})), (BusAddress{type, ""}));
}

TEST(BusNames, ReadsNothingThatItWouldNotWrite) {
    const std::string too_long(kMaxBusName + 1, 'a');
    for (const std::string_view name :
         {std::string_view(""), std::string_view("/x"), std::string_view("a/"), std::string_view("a%"),
          std::string_view("a%2f"), std::string_view("a%41"), std::string_view("a\0b", 3),
          std::string_view("\xC3"), std::string_view(too_long)})
        EXPECT_EQ(BusAddressOf(name), std::nullopt) << name;
}

struct BusRoutesTest : testing::Test {
    // Who takes the next message.
    std::vector<BusRoutes::PeerId> Next(const char* name = "ZEB") {
        std::vector<BusRoutes::PeerId> peers;
        routes.Deliver(name, [&](BusRoutes::PeerId peer) {
            peers.push_back(peer);
            return true;
        });
        return peers;
    }

    BusRoutes routes;
};

TEST_F(BusRoutesTest, TakesTurnsAmongThoseThatShare) {
    for (const BusRoutes::PeerId peer : {1U, 2U, 3U})
        routes.Subscribe(peer, "ZEB", BusSubscription::Shared);
    for (const BusRoutes::PeerId peer : {1U, 2U, 3U, 1U})
        EXPECT_THAT(Next(), ElementsAre(peer));
}

TEST_F(BusRoutesTest, GoesOnWithTheNextWhenTheOneWhoseTurnItWasIsGone) {
    for (const BusRoutes::PeerId peer : {1U, 2U, 3U})
        routes.Subscribe(peer, "ZEB", BusSubscription::Shared);
    Next();
    routes.Remove(1);
    routes.Remove(2);
    EXPECT_THAT(Next(), ElementsAre(3U));
    EXPECT_THAT(Next(), ElementsAre(3U));
}

TEST_F(BusRoutesTest, OffersASharedMessageToTheNextWhenOneDoesNotTakeIt) {
    for (const BusRoutes::PeerId peer : {1U, 2U, 3U})
        routes.Subscribe(peer, "ZEB", BusSubscription::Shared);
    EXPECT_EQ(routes.Deliver("ZEB", [](BusRoutes::PeerId peer) { return peer == 2; }), 1U);
    EXPECT_THAT(Next(), ElementsAre(3U));
}

TEST_F(BusRoutesTest, DeliversToNobodyWhenNobodyTakesIt) {
    routes.Subscribe(1, "ZEB", BusSubscription::Shared);
    routes.Subscribe(2, "ZEB", BusSubscription::Ordinary);
    EXPECT_EQ(routes.Deliver("ZEB", [](BusRoutes::PeerId) { return false; }), 0U);
    EXPECT_EQ(routes.Deliver("AS", [](BusRoutes::PeerId) { return true; }), 0U);
}

TEST_F(BusRoutesTest, LetsADeliveryRemoveEverySubscriber) {
    for (const BusRoutes::PeerId peer : {1U, 2U, 3U, 4U})
        routes.Subscribe(peer, "ZEB", peer < 3 ? BusSubscription::Ordinary : BusSubscription::Shared);
    const auto taken = routes.Deliver("ZEB", [&](BusRoutes::PeerId) {
        for (const BusRoutes::PeerId peer : {1U, 2U, 3U, 4U})
            routes.Remove(peer);
        return true;
    });
    EXPECT_EQ(taken, 3U);
    EXPECT_THAT(Next(), IsEmpty());
}

TEST_F(BusRoutesTest, CountsTheSubscriptionsOfAPeer) {
    routes.Subscribe(1, "ZEB", BusSubscription::Shared);
    routes.Subscribe(1, "ZEB", BusSubscription::Ordinary);
    routes.Subscribe(1, "AS", BusSubscription::Ordinary);
    EXPECT_EQ(routes.SubscriptionsOf(1), 2U);
    routes.Unsubscribe(1, "AS");
    routes.Unsubscribe(1, "Unknown");
    EXPECT_EQ(routes.SubscriptionsOf(1), 1U);
    routes.Remove(1);
    EXPECT_EQ(routes.SubscriptionsOf(1), 0U);
}

}  // namespace
}  // namespace kq
