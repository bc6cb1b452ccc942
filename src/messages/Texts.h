// The texts of the string table: loading, filling in, the errors that carry them, and the login server's
// codes.
//
// The system calls this class, MessageBoxes, ParseASData and EnsureShare together `modASMsg`.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <kqappsession/Error.h>
#include <kqappsession/KQAppSessErrorEnum.h>
#include <kqappsession/Platform.h>

#include "platform/Languages.h"

namespace kq {

// Arguments of a text: [0] for %0%, [1] for %1% and so on.
using Args = std::vector<std::string>;

class Texts {
 public:
    explicit Texts(PlatformPtr platform) : platform_(std::move(platform)) {}

    // Replaces every %i% by argument i, in increasing order of i, so an argument that holds a later
    // placeholder is substituted in its turn. An argument without a placeholder is appended after a space; a
    // placeholder without an argument stays. An argument whose placeholder is followed by a full stop loses
    // its own final full stop. More than 32,767 arguments overflow.
    static std::string FormatText(std::string text, const Args& args);

    // The text of an id in the user's language; RuntimeError::ResourceNotFound when there is none.
    std::string LoadText(std::int32_t text_id) const;
    std::string Text(std::int32_t text_id, const Args& args = {}) const {
        return FormatText(LoadText(text_id), args);
    }

    // The description of a code of KQAppSessErrorEnum. A code far outside the range overflows; one without a
    // text raises RuntimeError::ResourceNotFound instead.
    std::string GetASErrorText(std::int32_t code, const Args& args = {}) const;
    [[noreturn]] void RaiseASError(std::int32_t code, const Args& args = {},
                                   ErrorCause cause = ErrorCause::Other) const;

    // The language of the texts, without the country.
    Tongue Language() const;
    // The description of an error as a part of a text for the user: the sentences of connection and message
    // errors in the user's language, everything else unchanged.
    std::string ForUser(const Error& error) const { return ForUser(error.Number(), error.Description()); }
    std::string ForUser(std::int32_t number, const std::string& description) const;

    // The text of one of the login server's password codes ("ZEBError-132"); anything else comes back
    // unchanged.
    std::string MapZEBError(const std::string& error_text) const;

 private:
    PlatformPtr platform_;
};

}  // namespace kq
