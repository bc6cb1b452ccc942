#include "forms/tty/TtyDialogHost.h"

#include <filesystem>
#include <vector>

#include "forms/tty/TtyFormView.h"
#include "forms/tty/TtyPrompter.h"
#include "forms/tty/TtyText.h"

namespace kq {
namespace {

using End = TtyPrompter::End;

std::vector<BoxButton> ButtonsOf(BoxStyle style) {
    switch (style) {
        case BoxStyle::YesNoCancel:
            return {BoxButton::Yes, BoxButton::No, BoxButton::Cancel};
        case BoxStyle::YesNo:
            return {BoxButton::Yes, BoxButton::No};
        default:
            return {BoxButton::OK};
    }
}

std::string TextOf(BoxButton button, const TtyWords& words) {
    switch (button) {
        case BoxButton::OK:
            return std::string(words.ok);
        case BoxButton::Cancel:
            return std::string(words.cancel);
        case BoxButton::Yes:
            return std::string(words.yes);
        case BoxButton::No:
            break;
    }
    return std::string(words.no);
}

// The icon, as far as a terminal has one.
std::string SignOf(BoxStyle style) {
    switch (style) {
        case BoxStyle::Error:
            return "!! ";
        case BoxStyle::Information:
            return "-- ";
        default:
            return "!  ";
    }
}

// Whether a question was withdrawn, for as long as it is asked.
class Withdrawal {
 public:
    explicit Withdrawal(Signal<>& withdrawn) {
        withdrawn.Connect(owner_, [this] { came_ = true; });
    }
    Terminated Stop() const {
        return [this] { return came_; };
    }

 private:
    bool came_ = false;
    Owner owner_;
};

class TtyDialogHost final : public DialogHost {
 public:
    TtyDialogHost(std::shared_ptr<EventLoop> loop, std::shared_ptr<Terminal> terminal, std::int32_t locale)
        : prompter_(std::make_shared<TtyPrompter>(std::move(loop), std::move(terminal), TtyWordsOf(locale))) {
    }

    BoxButton ShowMessageBox(const std::string& text, const std::string& caption, BoxStyle style,
                             Signal<>& withdrawn) override {
        const Withdrawal withdrawal(withdrawn);
        const auto buttons = ButtonsOf(style);
        std::vector<std::string> texts;
        texts.reserve(buttons.size());
        for (const BoxButton button : buttons)
            texts.push_back(TextOf(button, prompter_->Words()));
        const auto choice =
            prompter_->Choose({"", SignOf(style) + HarmlessLine(caption), text}, texts, 0, withdrawal.Stop());
        return choice.end == End::Answered ? buttons[choice.index] : Unanswered(style);
    }

    std::unique_ptr<FormView> CreateView(Form& form) override {
        return std::make_unique<TtyFormView>(form, prompter_);
    }

    void RunModal(Form& form) override { AskForm(form, *prompter_); }

    std::optional<std::string> AskSavePath(const SaveQuestion& question, Signal<>& withdrawn) override {
        const Withdrawal withdrawal(withdrawn);
        const std::string proposed = PathOf(question, question.file_name);
        const std::string prompt = WithoutColon(question.title) + " [" + proposed + "]: ";
        prompter_->Say("");
        for (;;) {
            const auto reply = prompter_->Ask({}, prompt, true, withdrawal.Stop());
            if (reply.end != End::Answered) return std::nullopt;
            const std::string path = reply.line.Empty() ? proposed : PathOf(question, reply.line.Reveal());
            std::error_code ignored;
            if (!std::filesystem::exists(path, ignored)) return path;
            const auto choice = prompter_->YesOrNo(path + " " + std::string(prompter_->Words().replace),
                                                   false, withdrawal.Stop());
            if (choice.end != End::Answered) return std::nullopt;
            if (choice.index == 1) return path;
        }
    }

 private:
    // A name is one in the question's folder; a folder takes the proposed name.
    static std::string PathOf(const SaveQuestion& question, const std::string& answer) {
        std::filesystem::path path = std::filesystem::path(question.folder) / answer;
        std::error_code ignored;
        if (std::filesystem::is_directory(path, ignored)) path /= question.file_name;
        std::string text = path.string();
        const std::string ending = "." + question.extension;
        if (!question.extension.empty() && !text.ends_with(ending)) text += ending;
        return text;
    }

    std::shared_ptr<TtyPrompter> prompter_;
};

}  // namespace

std::shared_ptr<DialogHost> MakeTtyDialogHost(std::shared_ptr<EventLoop> loop,
                                              std::shared_ptr<Terminal> terminal, std::int32_t locale) {
    return std::make_shared<TtyDialogHost>(std::move(loop), std::move(terminal), locale);
}

}  // namespace kq
