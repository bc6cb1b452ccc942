// One Spanish table serves all Spanish locales; 58378 is no such locale of any platform, but clients send it.
#include "server/ErrorsByLocale.h"

#include <kqappsession/Error.h>

namespace kq {
namespace {

constexpr std::int32_t kEnglish = 1033;
constexpr std::int32_t kSpanish[] = {3082,  1034,  11274, 16394, 13322, 9226, 5130,  7178,
                                     12298, 17418, 4106,  18442, 58378, 2058, 19466, 6154,
                                     15370, 10250, 20490, 21514, 14346, 8202};

}  // namespace

ErrorsByLocale::ErrorsByLocale()
    : english_{{kqaserrLoginInvalidIntfVersion, "This application server does not support AppID %0%."},
               {kqaserrLoginNoLogin,
                "Client has not registered.  Incoming messages will be ignored until registration has been "
                "completed."},
               {kqaserrLoginLoginFailed, "Unknown interface version %0%.  Message cannot be handled."}},
      spanish_{{kqaserrLoginInvalidIntfVersion, "Esto servidor de aplicación no conoce el AppID %0%."},
               {kqaserrLoginNoLogin,
                "El cliente no ha registrado.  Los mensajes entrantes se harán caso hasta el registro se ha "
                "terminado."},
               // The blank at the end belongs to the text.
               {kqaserrLoginLoginFailed,
                "Versión desconocida del interfaz %0%.  El mensaje no se puede procesar. "}} {
    by_locale_.emplace(kEnglish, &english_);
    for (const std::int32_t locale : kSpanish)
        by_locale_.emplace(locale, &spanish_);
}

std::string ErrorsByLocale::ASLocaleError(std::int32_t error_number, std::int32_t locale_id,
                                          const Args& args) const {
    const auto known = by_locale_.find(locale_id);
    const TextsByCode& texts = known == by_locale_.end() ? english_ : *known->second;
    const auto text = texts.find(error_number);
    if (text == texts.end()) Raise(RuntimeError::InvalidProcedureCall);
    return Texts::FormatText(text->second, args);
}

}  // namespace kq
