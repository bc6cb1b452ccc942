// A sentence with placeholders is recognised by what is written between them.
#include "base/ErrorSentences.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace kq {
namespace {

constexpr std::int32_t NumberOf(NetError error) {
    return static_cast<std::int32_t>(error);
}

struct Row {
    ErrorSentence sentence;
    std::int32_t number;
    bool net;
    const char* text;
};

constexpr Row RowOf(ErrorSentence sentence, RuntimeError error, const char* text) {
    return {sentence, NumberOf(error), false, text};
}
constexpr Row RowOf(ErrorSentence sentence, NetError error, const char* text) {
    return {sentence, NumberOf(error), true, text};
}

constexpr Row kRows[] = {
#define KQ_X(name, error, text) RowOf(ErrorSentence::name, error, text),
    KQ_ERROR_SENTENCES(KQ_X)
#undef KQ_X
        {ErrorSentence::UnknownNetError, 0, false, "The network reported error %0%"},
};

const Row& RowOf(ErrorSentence sentence) {
    return kRows[static_cast<std::size_t>(sentence)];
}

std::string Placeholder(std::size_t argument) {
    return "%" + std::to_string(argument) + "%";
}

// The arguments by which `pattern` becomes `text`; nothing when it cannot.
std::optional<std::vector<std::string>> Match(std::string_view pattern, std::string_view text) {
    std::vector<std::string> args;
    for (;;) {
        const std::string placeholder = Placeholder(args.size());
        const std::size_t at = pattern.find(placeholder);
        if (at == pattern.npos) break;
        if (!text.starts_with(pattern.substr(0, at))) return std::nullopt;
        text.remove_prefix(at);
        pattern.remove_prefix(at + placeholder.size());
        const std::string_view next = pattern.substr(0, pattern.find('%'));
        const std::size_t end = next.empty() ? text.size() : text.find(next);
        if (end == text.npos) return std::nullopt;
        args.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
    }
    if (text != pattern) return std::nullopt;
    return args;
}

}  // namespace

std::int32_t NumberOf(ErrorSentence sentence) {
    return RowOf(sentence).number;
}

const char* EnglishOf(ErrorSentence sentence) {
    return RowOf(sentence).text;
}

std::string TextOf(ErrorSentence sentence, const std::vector<std::string>& args) {
    std::string text(EnglishOf(sentence));
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string placeholder = Placeholder(i);
        text.replace(text.find(placeholder), placeholder.size(), args[i]);
    }
    return text;
}

void Raise(ErrorSentence sentence, std::string_view source, const std::vector<std::string>& args) {
    throw Error(NumberOf(sentence), std::string(source), TextOf(sentence, args));
}

std::optional<ErrorSentence> GeneralSentence(std::int32_t number) {
    const auto first = std::ranges::find(kRows, number, &Row::number);
    return first == std::end(kRows) ? std::nullopt : std::optional(first->sentence);
}

std::optional<KnownSentence> FindSentence(std::int32_t number, std::string_view description) {
    for (const Row& row : kRows) {
        if (row.number != number && row.sentence != ErrorSentence::UnknownNetError) continue;
        if (auto args = Match(row.text, description)) return KnownSentence{row.sentence, std::move(*args)};
    }
    const auto general = GeneralSentence(number);
    if (!general || !RowOf(*general).net) return std::nullopt;
    return KnownSentence{*general, {}};
}

}  // namespace kq
