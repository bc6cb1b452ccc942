// The list against its document and the sample files, both of which KQ_UPDATE_GOLDEN=1 rewrites.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "messages/MessageDocument.h"
#include "messages/SampleMessages.h"

namespace kq {
namespace {

const std::filesystem::path kSource = KQ_SOURCE_DIR;
const std::filesystem::path kSamples = kSource / "tests/golden/messages";

void ExpectFile(const std::filesystem::path& path, const std::string& text) {
    if (std::getenv("KQ_UPDATE_GOLDEN")) std::ofstream(path, std::ios::binary) << text;
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    EXPECT_EQ(content.str(), text) << path;
}

std::string TextOf(MessageChannel channel, const XMLMessage& message) {
    return (channel == MessageChannel::Bus ? message.ToBusXML() : message.ToXML()) + "\n";
}

TEST(MessageCatalogue, IsWhatTheDocumentShows) {
    ExpectFile(kSource / "docs/messages.md", MessageDocument());
}

TEST(MessageCatalogue, HasASampleOfEveryMessageThatIsWrittenJustSo) {
#define KQ_NO_FIELD(kind, name, meaning)
#define KQ_COMPARE(channel, type, purpose, fields) \
    ExpectFile(kSamples / #type ".xml", TextOf(MessageChannel::channel, Sample<type>().Build()));
    KQ_AS_MESSAGES(KQ_COMPARE, KQ_NO_FIELD)
#undef KQ_COMPARE
}

TEST(MessageCatalogue, ReadsEverySampleAndWritesItAgain){
#define KQ_AGAIN(channel, type, purpose, fields)                \
    {                                                           \
        const XMLMessage message = Sample<type>().Build();      \
        EXPECT_EQ(type::Read(message).Build(), message);        \
        EXPECT_EQ(type::Read(message.Root()).Build(), message); \
    }
    KQ_AS_MESSAGES(KQ_AGAIN, KQ_NO_FIELD)
#undef KQ_AGAIN
}

TEST(MessageCatalogue, ReadsEveryMessageWithoutFields) {
#define KQ_EMPTY(channel, type, purpose, fields) EXPECT_EQ(type::Read(XMLMessage()).Build(), type().Build());
    KQ_AS_MESSAGES(KQ_EMPTY, KQ_NO_FIELD)
#undef KQ_EMPTY
#undef KQ_NO_FIELD
}

TEST(MessageCatalogue, KnowsEveryMessageOfTheSystemOnce) {
    std::multiset<std::string> types;
    for (const auto& row : MessageCatalogue())
        types.emplace(row.type);
    const std::multiset<std::string> expected = {"ASValidateClientRequest",
                                                 "ASValidateClientResponse",
                                                 "ASLoginRequest",
                                                 "ASLoginResponse",
                                                 "ASPasswordChangeRequest",
                                                 "ASPasswordChangeResponse",
                                                 "ASProfilesUpdate",
                                                 "ASProfilesUpdateResponse",
                                                 "ASRegisterRequest",
                                                 "ASRegisterResponse",
                                                 "ASUnknownResponse",
                                                 "ASDownloadClientRequest",
                                                 "ASDownloadClientResponse",
                                                 "RequestBroadcastAS",
                                                 "ASBroadcastInfo",
                                                 "ASRequestInfo",
                                                 "ApplicationInfos",
                                                 "ApplicationInfo",
                                                 "ASRegistrationResponse",
                                                 "SessionInfo",
                                                 "ErrorResponse",
                                                 "ASLogoutUser",
                                                 "RequestASRegistration"};
    EXPECT_EQ(types, expected);
}

TEST(MessageCatalogue, HasNoSampleOfAMessageThatIsGone) {
    std::set<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(kSamples))
        files.insert(entry.path().filename().string());
    std::set<std::string> expected;
    for (const auto& row : MessageCatalogue())
        expected.insert(std::string(row.type) + ".xml");
    EXPECT_EQ(files, expected);
}

}  // namespace
}  // namespace kq
