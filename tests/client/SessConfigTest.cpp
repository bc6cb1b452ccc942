// The settings file of one application.
#include <fstream>
#include <sstream>

#include "client/LoginFixture.h"
#include "platform/ProfileFile.h"

namespace kq {
namespace {

class SessConfigTest : public LoginFixture {};

TEST_F(SessConfigTest, LiesInTheUsersDocuments) {
    Settings().SetSetting("Address", "a");
    EXPECT_THAT(machine.profile_file->files,
                ElementsAre(testing::Key("/home/user/Documents/HLXApps/AppSess_Demo.ini")));
}

TEST_F(SessConfigTest, ASeparatorInTheIdentifierDoesNotLeaveTheFolder) {
    Settings("a/../b\\c").SetSetting("Address", "a");
    EXPECT_THAT(machine.profile_file->files,
                ElementsAre(testing::Key("/home/user/Documents/HLXApps/AppSess_a_.._b_c.ini")));
}

TEST_F(SessConfigTest, NeverTellsItsIdentifier) {
    EXPECT_EQ(Settings().AppID(), "");
}

TEST_F(SessConfigTest, ReadsAMissingOrEmptyKeyAsTheDefault) {
    EXPECT_EQ(Settings().Setting("Port", "7"), "7");
    Settings().SetSetting("Port", "");
    EXPECT_EQ(Settings().Setting("Port", "7"), "7");
}

TEST_F(SessConfigTest, KeepsAllKeysInTheSectionDefault) {
    Settings().SetSetting("Port", "1");
    EXPECT_THAT(machine.profile_file->files.begin()->second, ElementsAre(testing::Key("DEFAULT")));
}

TEST_F(SessConfigTest, AWriteThatFailsIsSilent) {
    machine.profile_file->read_only = true;
    Settings().SetSetting("Port", "1");
    EXPECT_EQ(Settings().Setting("Port", "none"), "none");
}

TEST_F(SessConfigTest, CutsAValueToTheBuffersLength) {
    Settings().SetSetting("Address", std::string(2000, 'x'));
    EXPECT_EQ(Settings().Setting("Address", "").size(), 1023U);
}

// --- the list of settings

class SettingListTest : public SessConfigTest {
 protected:
    // The error of reading a setting whose key has this text.
    template <class Form>
    std::int32_t ErrorAt(const setting::Row<Form>& row, const std::string& text) {
        config.SetSetting(row.key, text);
        return ErrorOf([&] { config.Read(row); }).Number();
    }
    template <class Form>
    auto ReadAt(const setting::Row<Form>& row, const std::string& text) {
        config.SetSetting(row.key, text);
        return config.Read(row);
    }
    template <class Form>
    std::string Written(const setting::Row<Form>& row, const typename Form::Value& value) {
        EXPECT_TRUE(config.Write(row, value));
        return config.Setting(row.key, "none");
    }
    SessConfig config = Settings();
};

TEST_F(SettingListTest, AMissingKeyReadsAsItsDefault) {
    EXPECT_EQ(config.Read(setting::Address), "");
    EXPECT_EQ(config.Read(setting::Port), 0);
    EXPECT_EQ(config.Read(setting::TimeOut), 10'000);
    EXPECT_EQ(config.Read(setting::TimeOutIfAny), 0);
    EXPECT_TRUE(config.Read(setting::UseASServerForLogin));
    EXPECT_FALSE(config.Read(setting::ShowDetails));
    EXPECT_FALSE(config.Read(setting::AskForProfile));
}

TEST_F(SettingListTest, TheTimeOutOfAnUploadIsAWholeNumberAndNotMissing) {
    constexpr auto kTypeMismatch = NumberOf(RuntimeError::TypeMismatch);
    EXPECT_EQ(ErrorAt(setting::RequiredTimeOut, ""), kTypeMismatch);
    EXPECT_EQ(ErrorAt(setting::RequiredTimeOut, "4000ms"), kTypeMismatch);
    EXPECT_EQ(ReadAt(setting::RequiredTimeOut, " 4000 "), 4000);
}

TEST_F(SettingListTest, OtherNumbersAreReadUpToWhatIsNotANumber) {
    EXPECT_EQ(ReadAt(setting::Port, "8080abc"), 8080);
    EXPECT_EQ(ReadAt(setting::Port, "abc"), 0);
    EXPECT_EQ(ReadAt(setting::TimeOut, "4000ms"), 4000);
    EXPECT_EQ(ReadAt(setting::TimeOutIfAny, "4000ms"), 4000);
    EXPECT_EQ(ErrorAt(setting::Port, "99999999999"), NumberOf(RuntimeError::Overflow));
}

TEST_F(SettingListTest, AFlagIsReadInEveryFormAndWrittenInItsOwn) {
    EXPECT_TRUE(ReadAt(setting::UseASServerForLogin, "true"));
    EXPECT_TRUE(ReadAt(setting::ShowDetails, "1"));
    EXPECT_FALSE(ReadAt(setting::AskForProfile, "0"));
    EXPECT_EQ(ErrorAt(setting::UseASServerForLogin, "yes"), NumberOf(RuntimeError::TypeMismatch));
    EXPECT_EQ(Written(setting::UseASServerForLogin, true), "1");
    EXPECT_EQ(Written(setting::UseASServerForLogin, false), "0");
    EXPECT_EQ(Written(setting::ShowDetails, true), "True");
    EXPECT_EQ(Written(setting::AskForProfile, false), "False");
}

TEST_F(SettingListTest, TextsAndNumbersAreWrittenAsTheyAre) {
    EXPECT_EQ(Written(setting::LoginID, "ann"), "ann");
    EXPECT_EQ(Written(setting::Port, -7710), "-7710");
}

TEST_F(SettingListTest, AWriteReportsThatTheFileDoesNotHoldTheValue) {
    machine.profile_file->read_only = true;
    EXPECT_FALSE(config.Write(setting::Port, 1));
    EXPECT_FALSE(WriteServerAddress(config, {}));
    EXPECT_FALSE(WriteServerSettings(config, {}));
}

// A file that takes every key but one, and notes what it is given.
struct WithoutKey : ProfileFile {
    WithoutKey(std::shared_ptr<ProfileFile> under, std::string key)
        : file(std::move(under)), refused(std::move(key)) {}
    std::string Read(const std::string& section, const std::string& key, const std::string& default_value,
                     std::size_t size, const std::string& path) const override {
        return file->Read(section, key, default_value, size, path);
    }
    bool Write(const std::string& section, const std::string& key, const std::string& value,
               const std::string& path) override {
        given.push_back(key);
        return key != refused && file->Write(section, key, value, path);
    }
    std::shared_ptr<ProfileFile> file;
    std::string refused;
    std::vector<std::string> given;
};

TEST_F(SettingListTest, AServerIsWrittenInOrderAsFarAsTheFileTakesIt) {
    const std::vector<std::string> keys = {"Address", "Port", "TimeOut", "UseASServerForLogin"};
    for (const std::string& refused : keys) {
        Platform::Machine parts = platform->Parts();
        const auto file = std::make_shared<WithoutKey>(machine.profile_file, refused);
        parts.profile_file = file;
        SessConfig partly(MakeBundle(parts));
        partly.Initialize("No" + refused);
        EXPECT_FALSE(WriteServerSettings(partly, {"zeb", 7710, 4000, true})) << refused;
        EXPECT_EQ(file->given, keys);
        for (const std::string& key : keys)
            EXPECT_EQ(partly.Setting(key, "none") == "none", key == refused) << refused << " " << key;
    }
}

TEST_F(SettingListTest, StandsInTheDocumentAsTheListSays) {
    std::ostringstream table;
#define KQ_X(name, key, form, default_text, what)                                                         \
    table << "| `" << (key) << "` | " << setting::form::kName << " | "                                    \
          << (*(default_text) ? "`" + std::string(default_text) + "`" : std::string()) << " | " << (what) \
          << " |\n";
    KQ_SETTINGS(KQ_X)
#undef KQ_X
    std::ifstream file(KQ_SOURCE_DIR "/docs/settings.md");
    std::stringstream document;
    document << file.rdbuf();
    EXPECT_THAT(document.str(), testing::EndsWith("|---|---|---|---|\n" + table.str())) << table.str();
}

}  // namespace
}  // namespace kq
