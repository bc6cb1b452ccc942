#include "platform/tty/TtyWords.h"

namespace kq {

const TtyWords& TtyWordsOf(std::int32_t locale) {
    static constexpr TtyWords english{"OK", "Cancel", "Yes", "No", "already exists. Replace it?"};
    static constexpr TtyWords portuguese{"OK", "Cancelar", "Sim", "Não", "já existe. Substituir?"};
    static constexpr TtyWords spanish{"Aceptar", "Cancelar", "Sí", "No", "ya existe. ¿Reemplazarlo?"};
    switch (locale) {
        case 1046:  // Brazil
            return portuguese;
        case 2058:   // Mexico
        case 9226:   // Colombia
        case 10250:  // Peru
        case 11274:  // Argentina
        case 13322:  // Chile
        case 14346:  // Uruguay
        case 15370:  // Paraguay
            return spanish;
        default:
            return english;
    }
}

}  // namespace kq
