#include "platform/Locale.h"

#include <string>

#include <kqappsession/Error.h>

#include "platform/Languages.h"

namespace kq {

ChosenLocale::ChosenLocale(std::int32_t id) : id_(id) {
    if (id < 1 || id > 0xFFFF || PrimaryLanguage(id) == 0)
        Raise(RuntimeError::InvalidProcedureCall,
              "The language " + std::to_string(id) +
                  " is not a locale identifier; use one such as 1033, or none for the user's own");
}

}  // namespace kq
