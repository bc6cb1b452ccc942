// The sessions in the order of their coming. Each gets a number that is never used again; positions are
// looked up in a list that is made when it is first asked for and dropped when a session goes.
#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessionInfo.h>

namespace kq {

using SessionPtr = KQAppSessionInfos::SessionPtr;

const std::vector<SessionPtr>& KQAppSessionInfos::InOrder() const {
    if (in_order_.empty()) {
        in_order_.reserve(sessions_.size());
        for (const auto& [number, session] : sessions_)
            in_order_.push_back(session);
    }
    return in_order_;
}

SessionPtr KQAppSessionInfos::Session(const std::string& session_id) const {
    const auto number = numbers_.find(session_id);
    if (number == numbers_.end()) Raise(RuntimeError::InvalidProcedureCall);
    return sessions_.at(number->second);
}

SessionPtr KQAppSessionInfos::Session(std::int32_t position) const {
    if (position < 1 || position > Count()) Raise(RuntimeError::InvalidProcedureCall);
    return InOrder()[static_cast<std::size_t>(position) - 1];
}

bool KQAppSessionInfos::Exists(const std::string& session_id) const {
    return numbers_.count(session_id) != 0;
}

std::int32_t KQAppSessionInfos::Count() const {
    return static_cast<std::int32_t>(sessions_.size());
}

std::vector<SessionPtr> KQAppSessionInfos::All() const {
    return InOrder();
}

}  // namespace kq
