// The system's call is replaced where the DLL looks for it, in its table of imports, until it was called
// once.
#include "automation/FailingAccept.h"

#include <cstring>
#include <winsock2.h>

namespace kq {
namespace {

using Accept = SOCKET(WSAAPI*)(SOCKET, sockaddr*, int*);

void** place = nullptr;  // in the table
Accept original = nullptr;

template <class T>
T* At(HMODULE module, DWORD offset) {
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(module) + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* ImportsFrom(HMODULE module, const char* library) {
    const auto* const dos = At<IMAGE_DOS_HEADER>(module, 0);
    const auto* const headers = At<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(dos->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* imports = At<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
    while (imports->Name != 0 && _stricmp(At<char>(module, imports->Name), library) != 0)
        ++imports;
    return imports->Name != 0 ? imports : nullptr;
}

void** PlaceOf(HMODULE module, const char* library, const char* function) {
    const auto* const imports = ImportsFrom(module, library);
    if (!imports) return nullptr;
    const auto* names = At<IMAGE_THUNK_DATA>(module, imports->OriginalFirstThunk);
    auto* found = At<void*>(module, imports->FirstThunk);
    for (; names->u1.AddressOfData != 0; ++names, ++found) {
        if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
        const auto* const name =
            At<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(names->u1.AddressOfData));
        if (std::strcmp(reinterpret_cast<const char*>(name->Name), function) == 0) return found;
    }
    return nullptr;
}

void Put(void* function) {
    DWORD before = 0;
    VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before);
    *place = function;
    VirtualProtect(place, sizeof *place, before, &before);
}

SOCKET WSAAPI FailingAccept(SOCKET listener, sockaddr* address, int* length) {
    Put(reinterpret_cast<void*>(original));
    const SOCKET socket = original(listener, address, length);
    if (socket == INVALID_SOCKET) return socket;
    closesocket(socket);
    WSASetLastError(WSAEMFILE);
    return INVALID_SOCKET;
}

}  // namespace

bool FailNextAccept() {
    const HMODULE module = GetModuleHandleW(L"KQAppSessionLib.dll");
    place = module ? PlaceOf(module, "WS2_32.dll", "accept") : nullptr;
    if (!place) return false;
    if (*place != reinterpret_cast<void*>(&FailingAccept)) original = reinterpret_cast<Accept>(*place);
    Put(reinterpret_cast<void*>(&FailingAccept));
    return true;
}

}  // namespace kq
