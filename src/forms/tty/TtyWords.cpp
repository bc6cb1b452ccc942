#include "forms/tty/TtyWords.h"

#include "platform/Languages.h"

namespace kq {

const TtyWords& TtyWordsOf(std::int32_t locale) {
    static constexpr TtyWords english{"OK", "Cancel", "Yes", "No", "already exists. Replace it?"};
    static constexpr TtyWords portuguese{"OK", "Cancelar", "Sim", "Não", "já existe. Substituir?"};
    static constexpr TtyWords spanish{"Aceptar", "Cancelar", "Sí", "No", "ya existe. ¿Reemplazarlo?"};
    switch (TextLanguageFor(locale).tongue) {
        case Tongue::Portuguese:
            return portuguese;
        case Tongue::Spanish:
            return spanish;
        default:
            return english;
    }
}

}  // namespace kq
