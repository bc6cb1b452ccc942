// One row for each sentence, one column for each language.
#include "client/ClientTexts.h"

#include "platform/Languages.h"

namespace kq {

namespace {

struct Row {
    const char* english;
    const char* portuguese;
    const char* spanish;
};

constexpr Row kSettingsNotSaved{
    "The settings could not be saved in %0%.  They will have to be entered again next time.",
    "Não foi possível salvar as configurações em %0%.  Será necessário informá-las novamente na próxima vez.",
    "No se pudo guardar la configuración en %0%.  La próxima vez será necesario ingresarla de nuevo."};
constexpr Row kClientNotStarted{"The new client %0% could not be started: %1%",
                                "Não foi possível iniciar o novo cliente %0%: %1%",
                                "No se pudo iniciar el nuevo cliente %0%: %1%"};

const char* In(Tongue tongue, const Row& row) {
    switch (tongue) {
        case Tongue::Portuguese:
            return row.portuguese;
        case Tongue::Spanish:
            return row.spanish;
        case Tongue::English:
            break;
    }
    return row.english;
}

}  // namespace

std::string ClientText(ClientSentence sentence, const Locale& locale, const Args& args) {
    const Row& row = sentence == ClientSentence::SettingsNotSaved ? kSettingsNotSaved : kClientNotStarted;
    return Texts::FormatText(In(TextLanguageFor(locale.UserLocaleId()).tongue, row), args);
}

}  // namespace kq
