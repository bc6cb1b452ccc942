// One row for each sentence, one column for each language but English. Sentences end other sentences, so they
// have no full stop.
#include "messages/Sentences.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include <kqappsession/WebData.h>
#include <kqappsession/XMLMessage.h>

#include "messages/Texts.h"

namespace kq {
namespace {

struct Row {
    ErrorSentence sentence;
    const char* portuguese;
    const char* spanish;
};

constexpr auto kRows = std::to_array<Row>({
    {ErrorSentence::InvalidProcedureCall, "Chamada de procedimento ou argumento inválido",
     "Llamada a un procedimiento o argumento no válido"},
    {ErrorSentence::Overflow, "Estouro", "Desbordamiento"},
    {ErrorSentence::TypeMismatch, "Os tipos não correspondem", "Los tipos no coinciden"},
    {ErrorSentence::PathFileAccess, "Erro de acesso ao caminho ou ao arquivo",
     "Error de acceso a la ruta o al archivo"},
    {ErrorSentence::ObjectNotSet, "A variável de objeto ou do bloco With não está atribuída",
     "La variable de objeto o del bloque With no está asignada"},
    {ErrorSentence::ResourceNotFound, "O recurso com esse identificador não foi encontrado",
     "No se encontró el recurso con ese identificador"},
    {ErrorSentence::DuplicateKey, "Esta chave já pertence a um elemento desta coleção",
     "Esta clave ya pertenece a un elemento de esta colección"},
    {ErrorSentence::Interrupted, "A operação foi interrompida", "Se interrumpió la operación"},
    {ErrorSentence::AccessDenied, "O acesso ao endereço foi negado", "Se denegó el acceso a la dirección"},
    {ErrorSentence::BadAddress, "A rede não pôde usar o endereço", "La red no pudo usar la dirección"},
    {ErrorSentence::InvalidArgument, "A rede recebeu um argumento inválido",
     "La red recibió un argumento no válido"},
    {ErrorSentence::PortOutOfRange, "A porta %0% não está entre 1 e 65535",
     "El puerto %0% no está entre 1 y 65535"},
    {ErrorSentence::TagNotText, "Uma etiqueta deve ser um texto UTF-8",
     "Una etiqueta debe ser un texto UTF-8"},
    {ErrorSentence::TooManyConnections, "Há conexões demais abertas", "Hay demasiadas conexiones abiertas"},
    {ErrorSentence::Busy, "A conexão está ocupada", "La conexión está ocupada"},
    {ErrorSentence::BeingMade, "A conexão ainda está sendo estabelecida",
     "La conexión todavía se está estableciendo"},
    {ErrorSentence::NotASocket, "A conexão não é uma conexão de rede",
     "La conexión no es una conexión de red"},
    {ErrorSentence::MessageTooLong, "A mensagem é longa demais", "El mensaje es demasiado largo"},
    {ErrorSentence::TagTooLong, "Uma etiqueta pode ter no máximo %0% bytes",
     "Una etiqueta puede tener como máximo %0% bytes"},
    {ErrorSentence::BlockTooLong, "Um bloco pode ter no máximo 2 GiB",
     "Un bloque puede tener como máximo 2 GiB"},
    {ErrorSentence::LongTagArrived,
     "Chegou um bloco com uma etiqueta de %0% bytes; são permitidos no máximo %1%",
     "Llegó un bloque con una etiqueta de %0% bytes; se permiten como máximo %1%"},
    {ErrorSentence::LongBlockArrived, "Chegou um bloco de %0% bytes; são permitidos no máximo %1%",
     "Llegó un bloque de %0% bytes; se permiten como máximo %1%"},
    {ErrorSentence::KindOfAddress, "A rede não aceita esse tipo de endereço",
     "La red no admite este tipo de dirección"},
    {ErrorSentence::AddressInUse, "O endereço já está em uso", "La dirección ya está en uso"},
    {ErrorSentence::AddressNotAvailable, "O endereço não está disponível neste computador",
     "La dirección no está disponible en esta computadora"},
    {ErrorSentence::NetworkDown, "A rede está fora de serviço", "La red está fuera de servicio"},
    {ErrorSentence::NetworkUnreachable, "Não é possível alcançar a rede", "No se puede llegar a la red"},
    {ErrorSentence::NetworkReset, "A rede derrubou a conexão", "La red cortó la conexión"},
    {ErrorSentence::ConnectionAborted, "A conexão foi cancelada", "Se canceló la conexión"},
    {ErrorSentence::GivenUp, "A conexão foi abandonada enquanto era estabelecida",
     "Se abandonó la conexión mientras se establecía"},
    {ErrorSentence::EndedByThisSide, "A conexão foi encerrada por este lado", "Este lado cerró la conexión"},
    {ErrorSentence::OtherProtocol, "O outro lado não usa o protocolo de aplicação",
     "El otro lado no usa el protocolo de aplicación"},
    {ErrorSentence::OtherVersion, "O outro lado usa a versão %0% do protocolo de aplicação, não a versão 1",
     "El otro lado usa la versión %0% del protocolo de aplicación, no la versión 1"},
    {ErrorSentence::MalformedTagArrived, "Chegou um bloco com uma etiqueta malformada",
     "Llegó un bloque con una etiqueta mal formada"},
    {ErrorSentence::ConnectionReset, "A conexão foi interrompida pelo outro lado",
     "El otro lado cortó la conexión"},
    {ErrorSentence::EndedByPeer, "A conexão foi encerrada pelo outro lado", "El otro lado cerró la conexión"},
    {ErrorSentence::EndedInsideBlock, "A conexão foi encerrada no meio de um bloco",
     "La conexión se cerró en medio de un bloque"},
    {ErrorSentence::NoBufferSpace, "Não há espaço na memória para a conexão",
     "No hay espacio en la memoria para la conexión"},
    {ErrorSentence::PeerDoesNotRead, "O outro lado não lê: mais de %0% bytes ficariam sem enviar",
     "El otro lado no lee: más de %0% bytes quedarían sin enviar"},
    {ErrorSentence::AlreadyConnected, "A conexão já está estabelecida", "La conexión ya está establecida"},
    {ErrorSentence::NotConnected, "Não há conexão", "No hay conexión"},
    {ErrorSentence::ClosedForSending, "A conexão já está fechada para envio",
     "La conexión ya está cerrada para el envío"},
    {ErrorSentence::TimedOut, "O tempo de espera da conexão se esgotou",
     "Se agotó el tiempo de espera de la conexión"},
    {ErrorSentence::Refused, "A conexão foi recusada", "Se rechazó la conexión"},
    {ErrorSentence::HostDown, "O servidor está fora de serviço", "El servidor está fuera de servicio"},
    {ErrorSentence::HostUnreachable, "Não é possível alcançar o servidor", "No se puede llegar al servidor"},
    {ErrorSentence::HostNotFound, "O servidor não foi encontrado", "No se encontró el servidor"},
    {ErrorSentence::NoAddress, "Não foi informado o endereço do servidor",
     "No se indicó la dirección del servidor"},
    {ErrorSentence::UnknownNetError, "A rede informou o erro %0%", "La red informó el error %0%"},
});

consteval bool HasARowForEachInOrder() {
    for (std::size_t i = 0; i < kRows.size(); ++i) {
        if (kRows[i].sentence != static_cast<ErrorSentence>(i)) return false;
    }
    return kRows.size() == static_cast<std::size_t>(ErrorSentence::UnknownNetError) + 1;
}
static_assert(HasARowForEachInOrder());

// What is said of a text that cannot be loaded is for developers; for users this much is.
struct Unloadable {
    std::int32_t number;
    const char* portuguese;
    const char* spanish;
};
constexpr Unloadable kUnloadable[] = {
    {XMLMessage::kNotAMessage, "O texto não é uma mensagem", "El texto no es un mensaje"},
    {kNotWebData, "O texto não contém os dados esperados", "El texto no contiene los datos esperados"},
};

}  // namespace

const char* Sentence::In(Tongue tongue) const {
    switch (tongue) {
        case Tongue::Portuguese:
            return portuguese;
        case Tongue::Spanish:
            return spanish;
        case Tongue::English:
            break;
    }
    return english;
}

Sentence TranslationsOf(ErrorSentence sentence) {
    const Row& row = kRows.at(static_cast<std::size_t>(sentence));
    return {EnglishOf(sentence), row.portuguese, row.spanish};
}

std::string DescriptionIn(Tongue tongue, std::int32_t number, const std::string& description) {
    if (tongue == Tongue::English) return description;
    if (const auto known = FindSentence(number, description))
        return Texts::FormatText(TranslationsOf(known->sentence).In(tongue), known->args);
    const auto unloadable = std::ranges::find(kUnloadable, number, &Unloadable::number);
    if (unloadable == std::end(kUnloadable)) return description;
    return Sentence{"", unloadable->portuguese, unloadable->spanish}.In(tongue);
}

}  // namespace kq
