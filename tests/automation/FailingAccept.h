// A machine that has run out of sockets for a moment.
#pragma once

namespace kq {

// The next connection that KQAppSessionLib.dll accepts is lost, and the system's error for it is 10024. False
// when the DLL is not there to be changed.
bool FailNextAccept();

}  // namespace kq
