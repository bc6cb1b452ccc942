// What tests do with loopback besides running programs.
#pragma once

#include <string>

namespace kq {

bool HasIPv6();
// A port that nobody listens on now.
std::string FreePort();
// Waits until somebody listens on the port; false when nobody does for 30 seconds.
bool AwaitListener(const std::string& port);
// Connects, sends these bytes and is gone.
void ConnectAndSend(const std::string& port, const std::string& bytes);

}  // namespace kq
