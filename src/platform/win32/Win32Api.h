// The system's headers, in the one order that they can stand. Included last: their macros would rename
// members of ours, so those that do are taken back.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif

// clang-format off
#include <winsock2.h>
#include <ws2tcpip.h>
#include <mstcpip.h>
#include <windows.h>
#include <bcrypt.h>
#include <sddl.h>
#include <shellapi.h>
#include <shlobj.h>
// clang-format on

#undef DeleteFile
#undef GetMessage
#undef SendMessage
#undef GetObject
