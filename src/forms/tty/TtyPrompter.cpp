#include "forms/tty/TtyPrompter.h"

#include <charconv>

#include "base/Convert.h"
#include "forms/tty/TtyText.h"

namespace kq {
namespace {

// 7-bit letters in any case.
bool BeginsWith(std::string_view text, std::string_view beginning) {
    return !beginning.empty() && EqualsIgnoringCase(text.substr(0, beginning.size()), beginning);
}

// First letter as it is typed, of any width: who leaves out an accent behind it is understood.
std::string Initial(std::string_view word) {
    std::size_t end = 1;
    while (end < word.size() && (static_cast<unsigned char>(word[end]) & 0xC0U) == 0x80U)
        ++end;
    std::string initial(word.substr(0, end));
    if (initial[0] >= 'A' && initial[0] <= 'Z') initial[0] = static_cast<char>(initial[0] - 'A' + 'a');
    return initial;
}

// A number counts as one, also where a text looks like it; a whole text before one that only begins so.
std::optional<std::size_t> Chosen(std::string_view line, const std::vector<std::string>& texts) {
    std::size_t number = 0;
    const char* const end = line.data() + line.size();
    if (const auto read = std::from_chars(line.data(), end, number);
        read.ec == std::errc() && read.ptr == end && number >= 1 && number <= texts.size())
        return number - 1;
    std::optional<std::size_t> found;
    bool several = false;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (texts[i] == line) return i;
        if (!BeginsWith(texts[i], line)) continue;
        several = found.has_value();
        found = i;
    }
    return several ? std::nullopt : found;
}

}  // namespace

void TtyPrompter::Show(const Line& line) {
    std::string shown = line_open_ ? "\n" : "";
    shown += Wrapped(Harmless(line.text), terminal_->Width(), line.indent) + "\n";
    terminal_->Write(shown);
    line_open_ = false;
    rewritten_ = 0;
    ++shown_;
}

void TtyPrompter::Say(std::string_view text) {
    Show({std::string(text)});
}

void TtyPrompter::SayOver(std::string_view text) {
    if (!terminal_->Rewrites()) return Say(text);
    const std::string line = HarmlessLine(text);
    const bool elsewhere = line_open_ && rewritten_ == 0;
    std::string shown = (elsewhere ? "\n" : "\r") + line;
    if (line.size() < rewritten_) shown.append(rewritten_ - line.size(), ' ');
    terminal_->Write(shown);
    rewritten_ = line.size();
    line_open_ = true;
    ++shown_;
}

void TtyPrompter::EndLine() {
    if (rewritten_ == 0) return;
    terminal_->Write("\n");
    line_open_ = false;
    rewritten_ = 0;
}

TtyPrompter::Reply TtyPrompter::AskOnce(const Question& question, bool whole, const Terminated& stop) {
    for (;;) {
        // Answers that are there already would be taken without the loop's ever coming to run.
        loop_->ProcessPending();
        if (stop() || loop_->Quitting()) return Stopped();
        for (std::size_t i = 0; whole && i < question.lines.size(); ++i)
            Show(question.lines[i]);
        const std::string prompt =
            (line_open_ ? "\n" : "") + Wrapped(HarmlessLine(question.prompt), terminal_->Width());
        line_open_ = true;
        rewritten_ = 0;
        const std::uint64_t mine = ++shown_;
        const auto disturbed = [&] { return shown_ != mine; };
        Terminal::Answer answer =
            terminal_->ReadLine(prompt, question.echo, [&] { return stop() || disturbed(); });
        whole = answer.end == Terminal::End::Stopped;
        if (whole && !disturbed()) return Stopped();
        if (whole) continue;
        line_open_ = false;
        if (answer.end == Terminal::End::GivenUp) return {End::GivenUp, {}};
        if (IsPlainLine(answer.line.Reveal())) return {End::Answered, std::move(answer.line)};
    }
}

TtyPrompter::Reply TtyPrompter::Stopped() {
    if (line_open_) terminal_->Write("\n");
    line_open_ = false;
    rewritten_ = 0;
    return {End::Stopped, {}};
}

TtyPrompter::Reply TtyPrompter::Ask(const std::vector<std::string>& above, const std::string& prompt,
                                    bool echo, const Terminated& stop) {
    Question question{{}, prompt, echo};
    for (const auto& text : above)
        question.lines.push_back({text});
    return AskOnce(question, true, stop);
}

TtyPrompter::Choice TtyPrompter::AskUntil(const Question& question, const Chooser& choose,
                                          const Terminated& stop) {
    for (bool whole = true;; whole = false) {
        const Reply reply = AskOnce(question, whole, stop);
        if (reply.end != End::Answered) return {reply.end, 0};
        if (const auto chosen = choose(reply.line.Reveal())) return {End::Answered, *chosen};
    }
}

TtyPrompter::Choice TtyPrompter::Choose(const std::vector<std::string>& above,
                                        const std::vector<std::string>& texts,
                                        std::optional<std::size_t> marked, const Terminated& stop) {
    const std::string numbers = texts.size() > 1 ? "1-" + std::to_string(texts.size()) : "1";
    Question question{{}, (marked ? "[" + std::to_string(*marked + 1) + "]" : numbers) + ": "};
    for (const auto& text : above)
        question.lines.push_back({text});
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string number = "  " + std::to_string(i + 1) + ". ";
        question.lines.push_back({number + HarmlessLine(texts[i]), number.size()});
    }
    const auto choose = [&](std::string_view line) {
        return Trim(line).empty() ? marked : Chosen(Trim(line), texts);
    };
    return AskUntil(question, choose, stop);
}

TtyPrompter::Choice TtyPrompter::YesOrNo(const std::string& question, bool yes, const Terminated& stop) {
    const std::vector<std::string> words{std::string(words_.no), std::string(words_.yes)};
    const std::string prompt = question + " (" + Initial(words_.yes) + "/" + Initial(words_.no) + ") [" +
                               Initial(yes ? words_.yes : words_.no) + "]: ";
    const auto choose = [&](std::string_view line) -> std::optional<std::size_t> {
        const std::string_view answer = Trim(line);
        if (answer.empty()) return yes ? 1U : 0U;
        for (std::size_t i = 0; i < words.size(); ++i) {
            if (Initial(words[i]) == Initial(answer)) return i;
        }
        return std::nullopt;
    };
    return AskUntil({{}, prompt}, choose, stop);
}

}  // namespace kq
