// How the number of an error is written for a person.
#pragma once

#include <cstdint>
#include <string>

namespace kq {

// 0x80040A06 for automation codes, decimal for the others.
std::string ErrorNumberText(std::int32_t number);

}  // namespace kq
