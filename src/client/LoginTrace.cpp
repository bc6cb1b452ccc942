// A file that cannot be written costs nothing: the next line is tried again.
#include "client/LoginTrace.h"

#include <array>
#include <chrono>
#include <cstdio>

#include "base/ErrorNumber.h"
#include "client/ClientState.h"
#include "platform/Clock.h"
#include "platform/Folders.h"
#include "platform/Machine.h"

namespace kq {

namespace {

// "2024-03-01T12:00:00.250Z"
std::string TimeStamp(std::chrono::system_clock::time_point now) {
    using namespace std::chrono;
    const auto day = floor<days>(now);
    const year_month_day date(day);
    const hh_mm_ss time(floor<milliseconds>(now - day));
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ", int(date.year()),
                  unsigned(date.month()), unsigned(date.day()), static_cast<int>(time.hours().count()),
                  static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()),
                  static_cast<int>(time.subseconds().count()));
    return text.data();
}

}  // namespace

std::string LineOf(const LoginStep& step) {
    std::string line(step.Procedure);
    line.append(" ").append(step.State).append(" ").append(std::to_string(step.Milliseconds));
    line.append(" ").append(step.Outcome);
    for (const std::int32_t number : step.Errors)
        line.append(" ").append(ErrorNumberText(number));
    return line;
}

LoginTrace::LoginTrace(ClientState& state, std::string_view procedure)
    : state_(state), procedure_(procedure), file_(state.config->Read(setting::TraceFile)) {}

void LoginTrace::Begin(LoginStates state) {
    step_ = state;
    begin_ = state_.platform->Loop()->Now();
}

void LoginTrace::End(std::string outcome, std::vector<std::int32_t> errors) {
    const auto time = std::chrono::floor<Milliseconds>(state_.platform->Loop()->Now() - begin_);
    const LoginStep step{procedure_,   NameOf(step_),      RoleOf(step_),
                         time.count(), std::move(outcome), std::move(errors)};
    if (!file_.empty()) {
        const Platform::Machine& machine = state_.platform->Parts();
        machine.folders->AppendToFile(file_, TimeStamp(machine.clock->Now()) + " " + LineOf(step) + "\n");
    }
    state_.LoginStepDone(step);
}

}  // namespace kq
