// Assigns letters to captions: when a letter is taken, its holder looks for another one, and so on until all
// captions that can have a key have one.
#include "forms/AccessKeys.h"

#include <array>

#include "forms/Form.h"

namespace kq {
namespace {

constexpr std::size_t kKeys = 36;
constexpr std::size_t kNobody = std::string_view::npos;

// 0 to 35 for a letter or digit, kKeys for anything else.
std::size_t KeyOf(char character) {
    if (character >= 'a' && character <= 'z') return static_cast<std::size_t>(character - 'a');
    if (character >= 'A' && character <= 'Z') return static_cast<std::size_t>(character - 'A');
    if (character >= '0' && character <= '9') return static_cast<std::size_t>(character - '0') + 26;
    return kKeys;
}

// Places in the order in which they are wanted.
std::vector<std::size_t> WishesOf(const std::string& caption) {
    std::vector<std::size_t> beginnings;
    std::vector<std::size_t> others;
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (KeyOf(caption[i]) == kKeys) continue;
        const bool begins = i == 0 || caption[i - 1] == ' ' || caption[i - 1] == '(';
        (begins ? beginnings : others).push_back(i);
    }
    beginnings.insert(beginnings.end(), others.begin(), others.end());
    return beginnings;
}

class Matching {
 public:
    explicit Matching(const std::vector<std::string>& captions) : captions_(captions) {
        holder_.fill(kNobody);
        places_.assign(captions.size(), kNoAccessKey);
        for (std::size_t i = 0; i < captions.size(); ++i) {
            std::array<bool, kKeys> asked{};
            Seat(i, asked);
        }
    }
    std::vector<std::size_t> Places() && { return std::move(places_); }

 private:
    bool Seat(std::size_t caption, std::array<bool, kKeys>& asked) {
        const auto wishes = WishesOf(captions_[caption]);
        for (const std::size_t place : wishes) {
            const std::size_t key = KeyOf(captions_[caption][place]);
            if (holder_[key] == kNobody) return Take(caption, key, place);
        }
        for (const std::size_t place : wishes) {
            const std::size_t key = KeyOf(captions_[caption][place]);
            if (asked[key]) continue;
            asked[key] = true;
            if (Seat(holder_[key], asked)) return Take(caption, key, place);
        }
        return false;
    }

    bool Take(std::size_t caption, std::size_t key, std::size_t place) {
        holder_[key] = caption;
        places_[caption] = place;
        return true;
    }

    const std::vector<std::string>& captions_;
    std::array<std::size_t, kKeys> holder_{};
    std::vector<std::size_t> places_;
};

bool CanHaveKey(const Form& form, const Control& control) {
    if (!form.Drawn(control) || control.Text().empty()) return false;
    switch (control.Kind()) {
        case ControlKind::Label:
            return !control.Row().buddy.empty();
        case ControlKind::CheckBox:
            return true;
        case ControlKind::Button:
            return &control != form.DefaultButton() && &control != form.CancelButton();
        default:
            return false;
    }
}

}  // namespace

std::vector<std::size_t> AssignAccessKeys(const std::vector<std::string>& captions) {
    return Matching(captions).Places();
}

std::vector<AccessKey> AccessKeysOf(const Form& form) {
    std::vector<AccessKey> keys;
    std::vector<std::string> captions;
    for (const auto& control : form.Controls()) {
        if (!CanHaveKey(form, control)) continue;
        keys.push_back({&control});
        captions.push_back(control.Text());
    }
    const auto places = AssignAccessKeys(captions);
    for (std::size_t i = 0; i < keys.size(); ++i)
        keys[i].place = places[i];
    return keys;
}

std::string MarkAccessKey(std::string_view caption, std::size_t place, char mark) {
    std::string marked;
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (i == place || caption[i] == mark) marked += mark;
        marked += caption[i];
    }
    return marked;
}

}  // namespace kq
