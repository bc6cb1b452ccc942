// The list of failures as a table.
#include "client/LoginFailures.h"

#include <array>

#include <kqappsession/KQAppSessErrorEnum.h>

namespace kq {

namespace {

constexpr auto kRules = std::to_array<FailureRule>({
#define KQ_X(name, text, question, error, cause, yes, no, cancel) \
    {text, Question::question, error, ErrorCause::cause, yes, no, cancel},
    KQ_LOGIN_FAILURES(KQ_X)
#undef KQ_X
});

}  // namespace

const FailureRule& RuleOf(LoginFailure failure) {
    return kRules.at(static_cast<std::size_t>(failure));
}

}  // namespace kq
