// A session's record: a view on the login server's message for it.
#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessionInfo.h>

#include "base/Convert.h"

namespace kq {

std::string KQAppSessionInfo::Field(std::string_view name) const {
    if (!message_) Raise(RuntimeError::ObjectNotSet);
    return message_->Field(name);
}

std::int32_t KQAppSessionInfo::UserUID() const {
    return TextToLong(Field("UserUID"));
}

// The list's field has a name of its own.
std::vector<std::string> KQAppSessionInfo::BUIDList() const {
    return Split(Field("BUIDUnionList"), '|');
}

std::vector<std::string> KQAppSessionInfo::PrivilegeList() const {
    return Split(Field("PrivilegeList"), '|');
}

void KQAppSessionInfo::Fill(std::shared_ptr<XMLMessage> message, const std::string& session_id,
                            const std::string& app_id, std::shared_ptr<APClient> client,
                            const std::string& password) {
    message_ = std::move(message);
    if (client) client_ = std::move(client);
    const auto write = [this](std::string_view name, const std::string& value) {
        if (value.empty()) return;
        if (!message_) Raise(RuntimeError::ObjectNotSet);
        message_->SetField(name, value);
    };
    write("SessionID", session_id);
    write("AppID", app_id);
    write("Password", password);
    initialized_ = true;
}

}  // namespace kq
