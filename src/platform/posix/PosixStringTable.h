// The string table of systems without resource tables: the texts are compiled in, the language is the user's.
#pragma once

#include <memory>

#include "platform/Locale.h"
#include "platform/StringTable.h"

namespace kq {

// The texts in the language whose locale identifier is exactly the user's, 1033 (English) when there is none.
// The choice is made once, now.
std::shared_ptr<StringTable> MakePosixStringTable(const Locale& locale);

}  // namespace kq
