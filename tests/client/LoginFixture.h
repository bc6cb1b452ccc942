// A user's machine, a login server and an application server, in memory and virtual time.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessClient.h>

#include "client/SessConfig.h"
#include "messages/Texts.h"
#include "platform/Machine.h"
#include "platform/posix/PosixStringTable.h"
#include "support/FakeZeb.h"

namespace kq {

using testing::ElementsAre;
using testing::IsEmpty;

class LoginFixture : public testing::Test {
 protected:
    explicit LoginFixture(FakePlatform::Face face = FakePlatform::Face::None)
        : machine(face), platform(WithTexts()), client(std::make_unique<KQAppSessClient>(platform)) {
        login.AppID = "Demo";
        login.InterfaceVersion = "1.0";
        login.ClientVersion = "5.2.3";
        login.LoginID = "ann";
        login.Password = Secret("secret word");
        login.Address = FakeZeb::kAddress;
        login.Port = FakeZeb::kPort;
        login.TimeOut = 10'000;
    }

    // The user's language; the client is a new one. English otherwise.
    void UserReads(std::int32_t locale) {
        machine.locale->id = locale;
        platform = WithTexts();
        client = std::make_unique<KQAppSessClient>(platform);
    }

    bool SystemLogin() { return client->SystemLogin(false, login); }
    bool ServerLogin() { return client->ServerLogin(false); }
    void LogInWhole() {
        ASSERT_TRUE(SystemLogin());
        ASSERT_TRUE(ServerLogin());
    }

    // The error that `call` raises; the test fails when it raises none.
    static Error ErrorOf(const std::function<void()>& call) {
        try {
            call();
        } catch (const Error& error) {
            return error;
        }
        ADD_FAILURE() << "nothing was raised";
        return {0, "", ""};
    }
    Error SystemLoginError() {
        return ErrorOf([this] { SystemLogin(); });
    }
    Error ServerLoginError() {
        return ErrorOf([this] { ServerLogin(); });
    }

    // Number, source and text of an error of the library, and the state that a failed system login leaves.
    void ExpectFailedLogin(std::int32_t code, const std::string& text) {
        ExpectError(SystemLoginError(), code, text);
        EXPECT_EQ(client->LoginState(), kqaslsNotLoggedIn);
        EXPECT_FALSE(client->SessionInfo()->IsInitialized());
        EXPECT_EQ(client->Profiles(), nullptr);
        EXPECT_EQ(client->TranslationTable(), nullptr);
    }
    static void ExpectError(const Error& error, std::int32_t code, const std::string& text) {
        EXPECT_EQ(error.Number(), code);
        EXPECT_EQ(error.Source(), "KQAppSessionLib");
        EXPECT_EQ(error.Description(), text);
    }

    // Virtual time that `call` takes.
    Milliseconds TimeOf(const std::function<void()>& call) {
        const auto start = machine.loop->Now();
        call();
        return std::chrono::duration_cast<Milliseconds>(machine.loop->Now() - start);
    }

    SessConfig Settings(const std::string& app_id = "Demo") {
        SessConfig settings(platform);
        settings.Initialize(app_id);
        return settings;
    }

    FakePlatform machine;
    PlatformPtr platform;
    FakeZeb zeb{machine};
    FakeAppServer app{machine};
    SystemLoginArguments login;
    std::unique_ptr<KQAppSessClient> client;

 private:
    PlatformPtr WithTexts() {
        Platform::Machine parts = machine.platform->Parts();
        parts.strings = MakePosixStringTable(*machine.locale);
        return MakeBundle(parts);
    }
};

}  // namespace kq
