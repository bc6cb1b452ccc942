// The refusals' texts by the client's locale.
#include <gtest/gtest.h>

#include <kqappsession/Error.h>

#include "server/ErrorsByLocale.h"

namespace kq {
namespace {

constexpr std::int32_t kEnglish = 1033;
constexpr std::int32_t kMexico = 2058;

std::string Text(std::int32_t code, std::int32_t locale, const Args& args = {}) {
    return ErrorsByLocale().ASLocaleError(code, locale, args);
}

TEST(ErrorsByLocale, HasThreeTextsInEnglish) {
    EXPECT_EQ(Text(kqaserrLoginInvalidIntfVersion, kEnglish),
              "This application server does not support AppID %0%.");
    EXPECT_EQ(Text(kqaserrLoginNoLogin, kEnglish),
              "Client has not registered.  Incoming messages will be ignored until registration has been "
              "completed.");
    EXPECT_EQ(Text(kqaserrLoginLoginFailed, kEnglish),
              "Unknown interface version %0%.  Message cannot be handled.");
}

TEST(ErrorsByLocale, HasThreeTextsInSpanish) {
    EXPECT_EQ(Text(kqaserrLoginInvalidIntfVersion, kMexico),
              "Esto servidor de aplicación no conoce el AppID %0%.");
    EXPECT_EQ(Text(kqaserrLoginNoLogin, kMexico),
              "El cliente no ha registrado.  Los mensajes entrantes se harán caso hasta el registro se ha "
              "terminado.");
    EXPECT_EQ(Text(kqaserrLoginLoginFailed, kMexico),
              "Versión desconocida del interfaz %0%.  El mensaje no se puede procesar. ");
}

TEST(ErrorsByLocale, SpeaksSpanishInAllItsSpanishLocales) {
    const std::int32_t locales[] = {3082,  1034,  11274, 16394, 13322, 9226, 5130,  7178,
                                    12298, 17418, 4106,  18442, 58378, 2058, 19466, 6154,
                                    15370, 10250, 20490, 21514, 14346, 8202};
    for (const std::int32_t locale : locales)
        EXPECT_EQ(Text(kqaserrLoginNoLogin, locale), Text(kqaserrLoginNoLogin, kMexico)) << locale;
}

TEST(ErrorsByLocale, SpeaksEnglishInAllOthers) {
    for (const std::int32_t locale : {0, 1046, 1031, -1, 22538})
        EXPECT_EQ(Text(kqaserrLoginNoLogin, locale), Text(kqaserrLoginNoLogin, kEnglish)) << locale;
}

TEST(ErrorsByLocale, PutsTheArgumentsIn) {
    EXPECT_EQ(Text(kqaserrLoginInvalidIntfVersion, kEnglish, {"ABC"}),
              "This application server does not support AppID ABC.");
    EXPECT_EQ(Text(kqaserrLoginInvalidIntfVersion, kMexico, {"ABC"}),
              "Esto servidor de aplicación no conoce el AppID ABC.");
}

TEST(ErrorsByLocale, RaisesInvalidProcedureCallForAnyOtherCode) {
    for (const std::int32_t code :
         {std::int32_t{kqaserrNotInitialized}, std::int32_t{kqaserrLoginNoTranslate}, 0}) {
        try {
            Text(code, kMexico);
            ADD_FAILURE() << code;
        } catch (const Error& error) {
            EXPECT_EQ(error.Number(), NumberOf(RuntimeError::InvalidProcedureCall));
        }
    }
}

}  // namespace
}  // namespace kq
