// Session records for tests.
#pragma once

#include <memory>
#include <string>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessionInfo.h>

#include "session/SessionRecords.h"

namespace kq {

inline std::shared_ptr<XMLMessage> SessionMessage() {
    return std::make_shared<XMLMessage>("SessionInfo", "1");
}

inline std::shared_ptr<KQAppSessionInfo> SessionNamed(const std::string& id) {
    auto session = std::make_shared<KQAppSessionInfo>();
    SessionRecords::Fill(*session, SessionMessage(), id);
    return session;
}

// The number of the error that `call` raises, 0 when it raises none.
template <class F>
std::int32_t NumberRaisedBy(F call) {
    try {
        call();
    } catch (const Error& error) {
        return error.Number();
    }
    return 0;
}

}  // namespace kq
