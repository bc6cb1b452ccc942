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

}  // namespace kq
