// A user's data as the record of a session.
#pragma once

#include <string>

#include "messages/ASMessages.h"
#include "zeb/store/Accounts.h"

namespace kq::zeb {

inline SessionInfo DescribeUser(const Account& account) {
    SessionInfo info;
    info.LoginID = account.login;
    info.UserUID = std::to_string(account.uid);
    info.EnterpriseID = account.enterprise_id;
    info.OperatorID = info.UserUID;  // an operator is the user
    info.Language = account.language;
    info.FirstName = account.first_name;
    info.LastName = account.last_name;
    info.TZ = account.tz;
    info.DST = account.dst;
    info.BUID = account.buid;
    info.BUIDUnionList = account.buid_union;
    info.PrivilegeList = account.privileges;
    return info;
}

}  // namespace kq::zeb
