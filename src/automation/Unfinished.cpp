#include "automation/Unfinished.h"

#include <string>

#include <kqappsession/Error.h>

namespace kq::automation {

void RaiseNotImplemented(const char* member) {
    throw Error(E_NOTIMPL, std::string(kLibrarySource), std::string(member) + " is not implemented");
}

}  // namespace kq::automation
