// What names a registration on the bus: written, read back, and told from what names none.
#include <gtest/gtest.h>

#include "messages/ASMessages.h"
#include "messages/TransactionId.h"

namespace kq {
namespace {

TEST(TransactionId, IsReadAsItWasWritten) {
    const std::string text = TransactionId{"S17", "C-4"}.Text();
    EXPECT_EQ(text, "S17|C-4");
    const auto id = TransactionId::Read(text);
    ASSERT_TRUE(id);
    EXPECT_EQ(id->session_id, "S17");
    EXPECT_EQ(id->client, "C-4");
}

TEST(TransactionId, HasExactlyTwoParts) {
    for (const char* text : {"", "S17", "S17|C-4|x", "||"})
        EXPECT_FALSE(TransactionId::Read(text)) << text;
}

TEST(TransactionId, MayHaveEmptyParts) {
    const auto id = TransactionId::Read("|");
    ASSERT_TRUE(id);
    EXPECT_EQ(id->session_id + id->client, "");
}

TEST(TransactionId, CannotNameASessionWhoseIdWouldEndEarly) {
    EXPECT_TRUE(TransactionId::CanName("S17"));
    EXPECT_FALSE(TransactionId::CanName("S|17"));
}

TEST(ASMessages, KnowTheNamesOfTheirFields) {
    ASLoginRequest request;
    request.LoginID = "ann";
    EXPECT_EQ(ASLoginRequest::kLoginID, "LoginID");
    EXPECT_EQ(request.Build().Field(ASLoginRequest::kLoginID), "ann");
}

}  // namespace
}  // namespace kq
