// The objects that the handlers of messages use. Zeb owns all of them; they outlive the handlers.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <spdlog/logger.h>

#include <kqappsession/Platform.h>
#include <kqappsession/XMLMessage.h>

#include "zeb/store/Accounts.h"
#include "zeb/store/FailedAttempts.h"
#include "zeb/store/PasswordPool.h"
#include "zeb/store/ServerRegistry.h"
#include "zeb/store/Sessions.h"
#include "zeb/store/UserData.h"

namespace kq::zeb {

struct Services {
    PlatformPtr platform;
    Store& store;
    Accounts& accounts;
    UserData& user_data;
    Sessions& sessions;
    ServerRegistry& servers;
    PasswordPool& passwords;
    FailedAttempts& attempts;
    spdlog::logger& log;
    std::function<void(const XMLMessage&)> send_on_bus;  // never raises

    // Whether the user has as many live sessions as allowed; `except` does not count.
    bool SessionsUsedUp(const Account& account, const std::string& except) const {
        if (account.max_sessions == 0) return false;
        const auto live = [this](const Session& session) {
            return servers.IsLive(session.server, session.app_id);
        };
        return sessions.CountLive(account.uid, except, live) >= account.max_sessions;
    }
};

// A text that comes from a client or another server, for the log: on one line, cut after 64 characters. The
// server's own reasons are logged in full.
std::string ForLog(std::string_view text);

}  // namespace kq::zeb
