// The letter of each caption that, pressed with Alt, activates its control.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kq {

class Control;
class Form;

inline constexpr std::size_t kNoAccessKey = std::string_view::npos;

// For each caption the place (byte) of its access key, or kNoAccessKey. Keys are letters A to Z and digits,
// no two the same in any case. As many captions as can have one get one; beginnings of words are preferred,
// and earlier captions choose first.
std::vector<std::size_t> AssignAccessKeys(const std::vector<std::string>& captions);

// The controls of a form that are drawn and can have an access key (labels with a buddy, check boxes, buttons
// other than the default and the cancel button, which have Enter and Escape), with the place of the key.
struct AccessKey {
    const Control* control = nullptr;
    std::size_t place = kNoAccessKey;
};
std::vector<AccessKey> AccessKeysOf(const Form& form);

// The caption as toolkits take it: `mark` before the key, doubled where the caption has one itself.
std::string MarkAccessKey(std::string_view caption, std::size_t place, char mark = '&');

}  // namespace kq
