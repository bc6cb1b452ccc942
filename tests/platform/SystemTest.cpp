// What the port tells about the machine and its user: language, folders, names, programs, shares, secrets.
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <optional>
#include <pwd.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "platform/Clock.h"
#include "platform/FileShare.h"
#include "platform/Folders.h"
#include "platform/Locale.h"
#include "platform/Machine.h"
#include "platform/Patience.h"
#include "platform/Process.h"
#include "platform/StringTable.h"
#include "platform/TemporaryFolder.h"
#include "platform/posix/PosixPlatform.h"

namespace kq {
namespace {

// Environment variables for the time of a test; nothing unsets one.
class Environment {
 public:
    void Set(const std::string& name, const std::optional<std::string>& value) {
        const char* const before = std::getenv(name.c_str());
        before_.emplace(name, before ? std::optional<std::string>(before) : std::nullopt);
        Put(name, value);
    }
    Environment() = default;
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    ~Environment() {
        for (const auto& [name, value] : before_)
            Put(name, value);
    }

 private:
    static void Put(const std::string& name, const std::optional<std::string>& value) {
        if (value) {
            ::setenv(name.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name.c_str());
        }
    }
    std::map<std::string, std::optional<std::string>> before_;
};

std::int32_t LocaleFor(const std::optional<std::string>& all, const std::optional<std::string>& messages,
                       const std::optional<std::string>& lang) {
    Environment environment;
    environment.Set("LC_ALL", all);
    environment.Set("LC_MESSAGES", messages);
    environment.Set("LANG", lang);
    return MakePosixLocale()->UserLocaleId();
}

// The caption of the login dialog.
std::optional<std::string> GreetingFor(const std::string& setting) {
    Environment environment;
    environment.Set("LC_ALL", setting);
    return MakePlatform()->Parts().strings->Load(200);
}

TEST(PosixLocale, KnowsTheLanguagesOfTheTextsAndOthers) {
    const std::map<std::string, std::int32_t> expected = {
        {"en_US.UTF-8", 1033}, {"pt_BR.UTF-8", 1046}, {"es_MX", 2058},       {"es_CO.utf8", 9226},
        {"es_PE", 10250},      {"es_AR", 11274},      {"es_CL", 13322},      {"es_UY", 14346},
        {"es_PY", 15370},      {"es_ES@euro", 3082},  {"en_GB.UTF-8", 2057}, {"de_DE.ISO-8859-1@euro", 1031},
        {"fr_FR", 1036},       {"pt-br", 1046}};
    for (const auto& [name, id] : expected)
        EXPECT_EQ(LocaleFor(name, {}, {}), id) << name;
}

TEST(PosixLocale, IsEnglishForWhatItDoesNotKnow) {
    for (const char* name : {"C", "POSIX", "C.UTF-8", "xx_YY", "_", "."}) {
        EXPECT_EQ(LocaleFor(name, {}, {}), 1033) << name;
    }
    EXPECT_EQ(LocaleFor({}, {}, {}), 1033);
}

TEST(PosixLocale, TakesAnUnknownTerritoryAsTheLanguagesMainOne) {
    EXPECT_EQ(LocaleFor("pt", {}, {}), 1046);
    EXPECT_EQ(LocaleFor("de_BE.UTF-8", {}, {}), 1031);
}

TEST(PosixLocale, OfAnyOtherSpanishOrPortugueseGivesTheTextsOfTheMainOne) {
    for (const char* name : {"es", "es_ES", "es_BO", "es_CR", "es_CU", "es_DO", "es_EC", "es_GT", "es_HN",
                             "es_NI", "es_PA", "es_PR", "es_SV", "es_US", "es_VE", "es_419", "es_XX"})
        EXPECT_EQ(GreetingFor(name), "Inicie sesión") << name;
    for (const char* name : {"pt", "pt_PT", "pt_AO", "pt_PT@euro"})
        EXPECT_EQ(GreetingFor(name), "Faça login") << name;
}

TEST(PosixLocale, IsEnglishForMalformedSettings) {
    for (const std::string& name :
         {std::string("@"), std::string("_es"), std::string(".UTF-8"), std::string("-"), std::string("es "),
          std::string("\xff\xfe_\x80"), std::string("es\n"), std::string("%s%n"), std::string("/../../etc"),
          std::string(100'000, 'e'), std::string(100'000, '_')})
        EXPECT_EQ(LocaleFor(name, {}, {}), 1033) << name.substr(0, 20);
    EXPECT_EQ(LocaleFor("es_" + std::string(100'000, 'X'), {}, {}), 3082);
}

TEST(PosixLocale, AsksTheVariablesInTheirOrderAndSkipsEmptyOnes) {
    EXPECT_EQ(LocaleFor("pt_BR", "es_MX", "fr_FR"), 1046);
    EXPECT_EQ(LocaleFor("", "es_MX", "fr_FR"), 2058);
    EXPECT_EQ(LocaleFor({}, "", "fr_FR"), 1036);
}

TEST(PosixPlatform, SpeaksTheLanguageThatTheHostHasChosen) {
    Environment environment;
    environment.Set("LC_ALL", "pt_BR.UTF-8");
    EXPECT_EQ(MakePlatform()->Parts().locale->UserLocaleId(), 1046);
    EXPECT_EQ(MakePlatform()->Parts().strings->Load(105), "Cancelar");
    EXPECT_EQ(MakePlatform(nullptr, 1033)->Parts().locale->UserLocaleId(), 1033);
    EXPECT_EQ(MakePlatform(nullptr, 1033)->Parts().strings->Load(105), "Cancel");
    EXPECT_EQ(MakePlatform(nullptr, 1031)->Parts().locale->UserLocaleId(), 1031);
    EXPECT_EQ(MakePlatform(nullptr, 1031)->Parts().strings->Load(105), "Cancel");
}

class XdgFolder : public testing::Test {
 protected:
    XdgFolder() {
        environment_.Set("HOME", home_.Path());
        environment_.Set("XDG_CONFIG_HOME", std::nullopt);
        environment_.Set("XDG_DATA_HOME", std::nullopt);
    }

    TemporaryFolder home_;
    Environment environment_;
    std::shared_ptr<Folders> folders_ = MakeXdgFolders();
};

TEST_F(XdgFolder, OfTheDocumentsIsTheConfigurationFolder) {
    EXPECT_EQ(folders_->SpecialFolder(5), home_.File(".config"));
    environment_.Set("XDG_CONFIG_HOME", "/etc/xdg/me/");
    EXPECT_EQ(folders_->SpecialFolder(5), "/etc/xdg/me");
}

TEST_F(XdgFolder, IgnoresARelativeSetting) {
    environment_.Set("XDG_CONFIG_HOME", "config");
    EXPECT_EQ(folders_->SpecialFolder(5), home_.File(".config"));
}

TEST_F(XdgFolder, AsksTheUserDatabaseWithoutHome) {
    environment_.Set("HOME", std::nullopt);
    const passwd* const entry = ::getpwuid(::getuid());
    ASSERT_TRUE(entry);
    EXPECT_EQ(folders_->SpecialFolder(5), std::string(entry->pw_dir) + "/.config");
}

TEST_F(XdgFolder, OfTheDesktopIsTheOneThatTheUserNamed) {
    EXPECT_EQ(folders_->SpecialFolder(16), home_.File("Desktop"));
    std::filesystem::create_directory(home_.File(".config"));
    home_.Put(".config/user-dirs.dirs", "# mine\nXDG_DESKTOP_DIR=\"$HOME/Area de trabalho\"\n");
    EXPECT_EQ(folders_->SpecialFolder(16), home_.File("Area de trabalho"));
}

TEST_F(XdgFolder, IsNothingForOtherNumbers) {
    EXPECT_EQ(folders_->SpecialFolder(255), std::nullopt);
    EXPECT_EQ(folders_->SpecialFolder(-1), std::nullopt);
}

TEST_F(XdgFolder, IsCreatedOnceAndOnlyInAFolderThatIsThere) {
    EXPECT_TRUE(folders_->CreateFolder(home_.File("new")));
    EXPECT_FALSE(folders_->CreateFolder(home_.File("new")));
    EXPECT_FALSE(folders_->CreateFolder(home_.File("missing/new")));
    EXPECT_FALSE(folders_->CreateFolder(""));
}

TEST_F(XdgFolder, ListsItsFilesAsExistingUntilTheyAreDeleted) {
    const auto path = home_.Put("file", "x");
    EXPECT_TRUE(folders_->FileExists(path));
    EXPECT_TRUE(folders_->DeleteFile(path));
    EXPECT_FALSE(folders_->DeleteFile(path));
    EXPECT_FALSE(folders_->FileExists(path));
}

TEST_F(XdgFolder, HoldsAFileThatIsCreatedForItsOwnerAloneAndGrows) {
    EXPECT_TRUE(folders_->AppendToFile(home_.File("log"), "one\n"));
    EXPECT_TRUE(folders_->AppendToFile(home_.File("log"), "two\n"));
    EXPECT_EQ(home_.Get("log"), "one\ntwo\n");
    const auto owner_only = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    EXPECT_EQ(std::filesystem::status(home_.File("log")).permissions(), owner_only);
}

TEST_F(XdgFolder, RefusesToAddToWhatIsNotAFile) {
    ASSERT_EQ(::mkfifo(home_.File("pipe").c_str(), 0600), 0);
    for (const auto& path : {home_.Path(), home_.File("missing/log"), home_.File("pipe"),
                             std::string("/dev/null"), std::string(), std::string("a\0b", 3)})
        EXPECT_FALSE(folders_->AppendToFile(path, "x")) << path;
}

TEST_F(XdgFolder, HoldsNoFileThatAPipeWithAReaderWouldPassFor) {
    ASSERT_EQ(::mkfifo(home_.File("pipe").c_str(), 0600), 0);
    const int reader = ::open(home_.File("pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_NE(reader, -1);
    EXPECT_FALSE(folders_->AppendToFile(home_.File("pipe"), "x"));
    ::close(reader);
}

TEST(PosixProcess, KnowsItsProgramAndAShortName) {
    const auto process = MakePosixProcess();
    EXPECT_TRUE(process->ExecutablePath().ends_with("/test_platform"));
    EXPECT_LE(process->ComputerName().size(), 15U);
    EXPECT_EQ(process->ComputerName().find('.'), std::string::npos);
}

TEST(PosixProcess, StartsAProgramAndDoesNotWaitForIt) {
    const TemporaryFolder folder;
    const std::string script = folder.Put("program", "#!/bin/sh\nread line\ntouch \"$0.ran\"\n");
    ::chmod(script.c_str(), 0700);
    EXPECT_EQ(MakePosixProcess()->Start(script), "");
    const auto loop = MakeOwnEventLoop();
    std::function<void()> tick = [&] { loop->StartTimer(Milliseconds(5), tick); };
    tick();
    EXPECT_TRUE(Await(*loop, [&] { return std::filesystem::exists(script + ".ran"); }));
}

TEST(PosixProcess, LeavesNothingBehindOfAProgramThatHasEnded) {
    EXPECT_EQ(MakePosixProcess()->Start("/bin/true"), "");
    const auto loop = MakeOwnEventLoop();
    std::function<void()> tick = [&] { loop->StartTimer(Milliseconds(5), tick); };
    tick();
    const auto no_children = [] {
        siginfo_t ended{};
        return ::waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == -1 && errno == ECHILD;
    };
    EXPECT_TRUE(Await(*loop, no_children));
}

TEST(PosixProcess, TellsWhatCouldNotBeStarted) {
    const TemporaryFolder folder;
    const auto process = MakePosixProcess();
    EXPECT_EQ(process->Start(folder.File("missing")), "No such file or directory");
    EXPECT_EQ(process->Start(folder.Put("no program", "x")), "Permission denied");
    EXPECT_EQ(process->Start(""), "No such file or directory");
    EXPECT_EQ(process->Start(std::string("/bin/sh\0x", 9)), "Invalid argument");
}

class Share : public testing::Test {
 protected:
    // A program in the place of Samba's that writes down its arguments, one a line.
    void StandIn() {
        const auto program = folder_.Put("net",
                                         "#!/bin/sh\nprintf '%s\\n' \"$@\" > \"$0.part\"\n"
                                         "mv \"$0.part\" \"$0.args\"\n");
        ::chmod(program.c_str(), 0700);
        environment_.Set("PATH", folder_.Path() + ":/usr/bin:/bin");
    }
    std::string Unc(const std::string& name) {
        return "\\\\" + MakePosixProcess()->ComputerName() + "\\" + name + "\\";
    }
    bool Ran() {
        const auto loop = MakeOwnEventLoop();
        std::function<void()> tick = [&] { loop->StartTimer(Milliseconds(5), tick); };
        tick();
        return Await(*loop, [&] { return std::filesystem::exists(folder_.File("net.args")); });
    }

    TemporaryFolder folder_;
    Environment environment_;
    std::shared_ptr<FileShare> share_ = MakeSambaShare(folder_.Path());
};

TEST_F(Share, IsThereWhenSambaKeepsAFileForIt) {
    EXPECT_FALSE(share_->CanList(Unc("Clients")));
    folder_.Put("clients", "#VERSION 2\n");
    EXPECT_TRUE(share_->CanList(Unc("Clients")));
}

TEST_F(Share, IsNotThereForOtherPaths) {
    folder_.Put("clients", "#VERSION 2\n");
    for (const char* path : {"", "\\\\", "clients", "\\\\host", "\\\\no.such.host\\clients\\"}) {
        EXPECT_FALSE(share_->CanList(path)) << path;
    }
    EXPECT_FALSE(share_->CanList(Unc("../clients")));
    EXPECT_FALSE(share_->CanList(Unc(".")));
    EXPECT_FALSE(share_->CanList(Unc("")));
}

TEST_F(Share, IsAskedForWithoutAShell) {
    StandIn();
    share_->Share("Clients", "/srv/a b;$(c)");
    ASSERT_TRUE(Ran());
    EXPECT_EQ(folder_.Get("net.args"), "usershare\nadd\nClients\n/srv/a b;$(c)\n\nEveryone:R\nguest_ok=n\n");
}

TEST_F(Share, IsRefusedWithNamesThatAreNone) {
    StandIn();
    for (const char* name : {"", "a\"b", "a\nb", "-l", "..", "a/b"})
        share_->Share(name, "/srv");
    for (const char* folder : {"", "srv", "/a\"b", "/a\tb"})
        share_->Share("Clients", folder);
    share_->Share("Good", "/srv");
    ASSERT_TRUE(Ran());
    EXPECT_NE(folder_.Get("net.args").find("Good"), std::string::npos);
}

TEST_F(Share, IsNoErrorWithoutSamba) {
    environment_.Set("PATH", folder_.Path());
    EXPECT_NO_THROW(share_->Share("Clients", "/srv"));
}

TEST(PosixClock, CountsTheSecondsOfTheDay) {
    const double seconds = MakePosixClock()->SecondsSinceMidnight();
    EXPECT_GE(seconds, 0);
    EXPECT_LT(seconds, 86400);
}

TEST(PosixPlatform, IsWholeButForTheDialogs) {
    const PlatformPtr platform = MakePlatform();
    EXPECT_TRUE(platform->Loop() && platform->Parts().clock && platform->Parts().network &&
                platform->Parts().resolver && platform->Parts().folders);
    EXPECT_TRUE(platform->Parts().profile_file && platform->Parts().locale && platform->Parts().strings &&
                platform->Parts().process);
    EXPECT_TRUE(platform->Parts().file_share && platform->Parts().version_resource &&
                platform->Parts().crypto);
    EXPECT_EQ(platform->Parts().dialogs, nullptr);
    EXPECT_TRUE(platform->Parts().strings->Load(101).has_value());
}

}  // namespace
}  // namespace kq
