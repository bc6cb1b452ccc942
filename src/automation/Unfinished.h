// Members whose core does not stand: they answer "not implemented", with a sentence that names them. A member
// leaves the list when it gets its core.
#pragma once

#include "automation/Guard.h"

// X(member, parameters)
#define KQ_UNFINISHED_CLIENT_MEMBERS(X)                      \
    X(ChooseProfile, (IDispatch**, VARIANT*, VARIANT_BOOL*)) \
    X(ChangePassword, (BSTR*, VARIANT*, VARIANT_BOOL*))      \
    X(SaveFormInfo, (IDispatch**))                           \
    X(LoadFormInfo, (IDispatch**))                           \
    X(ChooseProfileASP, (VARIANT*, VARIANT_BOOL*))           \
    X(ChooseProfile2, (BSTR*, BSTR*, BSTR*, VARIANT*, VARIANT_BOOL*))

namespace kq::automation {

[[noreturn]] void RaiseNotImplemented(const char* member);

}  // namespace kq::automation
