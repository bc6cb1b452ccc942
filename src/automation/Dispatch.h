// Calls by name: IDispatch over the type library.
//
// The system's own Invoke is not enough for members whose parameters are by reference: it takes a variable of
// another subtype for an error and an omitted argument for a wild pointer. This one converts each argument
// into a value of the declared type, calls the member's slot, and writes by-reference results back into the
// caller's variables, also when the member failed.
#pragma once

#include <oaidl.h>

namespace kq::automation {

// Both for an interface of this DLL's type libraries.
HRESULT IdsOfNames(REFIID interface_id, LPOLESTR* names, UINT count, DISPID* ids) noexcept;
HRESULT Invoke(REFIID interface_id, IDispatch* self, DISPID id, LCID locale, WORD flags,
               DISPPARAMS* arguments, VARIANT* result, EXCEPINFO* exception, UINT* wrong_argument) noexcept;

}  // namespace kq::automation
