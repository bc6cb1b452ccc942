// One row for each sentence, one column for each language.
#include "client/ClientTexts.h"

#include "messages/Sentences.h"

namespace kq {

namespace {

constexpr Sentence kSettingsNotSaved{
    "The settings could not be saved in %0%.  They will have to be entered again next time.",
    "Não foi possível salvar as configurações em %0%.  Será necessário informá-las novamente na próxima vez.",
    "No se pudo guardar la configuración en %0%.  La próxima vez será necesario ingresarla de nuevo."};
constexpr Sentence kClientNotStarted{"The new client %0% could not be started: %1%",
                                     "Não foi possível iniciar o novo cliente %0%: %1%",
                                     "No se pudo iniciar el nuevo cliente %0%: %1%"};

constexpr Sentence kEmptyReply{"The reply was empty", "A resposta estava vazia", "La respuesta estaba vacía"};

const Sentence& SentenceOf(ClientSentence sentence) {
    switch (sentence) {
        case ClientSentence::SettingsNotSaved:
            return kSettingsNotSaved;
        case ClientSentence::ClientNotStarted:
            return kClientNotStarted;
        case ClientSentence::EmptyReply:
            break;
    }
    return kEmptyReply;
}

}  // namespace

std::string ClientText(ClientSentence sentence, const Texts& texts, const Args& args) {
    return Texts::FormatText(SentenceOf(sentence).In(texts.Language()), args);
}

}  // namespace kq
