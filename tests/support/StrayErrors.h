// What was reported as a stray exception while this object lives.
#pragma once

#include <exception>
#include <string>
#include <utility>
#include <vector>

#include <kqappsession/Error.h>
#include <kqappsession/Signal.h>

namespace kq {

class StrayErrors {
 public:
    StrayErrors()
        : before_(
              SetStrayExceptionHandler([this](const std::exception_ptr& exception) { Take(exception); })) {}
    StrayErrors(const StrayErrors&) = delete;
    StrayErrors& operator=(const StrayErrors&) = delete;
    ~StrayErrors() { SetStrayExceptionHandler(std::move(before_)); }

    const std::vector<std::int32_t>& Numbers() const { return numbers_; }

 private:
    void Take(const std::exception_ptr& exception) {
        try {
            std::rethrow_exception(exception);
        } catch (const Error& error) {
            numbers_.push_back(error.Number());
        } catch (...) {
            numbers_.push_back(0);
        }
    }

    std::vector<std::int32_t> numbers_;
    StrayExceptionHandler before_;
};

}  // namespace kq
