// Sentences for users that the string tables have no id for, in the languages of those tables.
#pragma once

#include <cstdint>
#include <string>

#include "base/ErrorSentences.h"
#include "platform/Languages.h"

namespace kq {

struct Sentence {
    const char* english;
    const char* portuguese;
    const char* spanish;

    const char* In(Tongue tongue) const;
};

// The sentence of base/ErrorSentences.h with its translations; placeholders are the same in all of them.
Sentence TranslationsOf(ErrorSentence sentence);

// The description of an error for a user of this language. The sentences of base/ErrorSentences.h are
// translated; so is what a library says of a text that it cannot load, without the reason. Every other
// description comes back unchanged, and so does each one in English.
std::string DescriptionIn(Tongue tongue, std::int32_t number, const std::string& description);

}  // namespace kq
