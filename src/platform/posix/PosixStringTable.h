// The string table of systems without resource tables: the texts are compiled in, the language is the user's.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/Locale.h"
#include "platform/StringTable.h"

namespace kq {

// The texts in the language whose locale identifier is exactly the user's, 1033 (English) when there is none.
// `language`, when given, stands for the user's: a host that has its own language setting passes it here. The
// choice is made once, now.
std::shared_ptr<StringTable> MakePosixStringTable(const Locale& locale,
                                                  std::optional<std::int32_t> language = {});

}  // namespace kq
