// A form may be hidden, and everything in it may change, during every question and every event that is
// reported to it. So each step reads the form's state again.
#include "forms/tty/TtyFormView.h"

#include <algorithm>
#include <vector>

#include "forms/tty/TtyText.h"

namespace kq {
namespace {

using End = TtyPrompter::End;

// A form's polling timer enables a button a moment after what enables it. Slower timers do not poll.
constexpr Milliseconds kSlowestPolling(500);
constexpr Milliseconds kToBeSure(50);

const Control* LabelOf(const Form& form, const Control& box) {
    const auto names = [&](const Control& label) {
        return label.Kind() == ControlKind::Label && label.Row().buddy == box.Name();
    };
    const auto found = std::ranges::find_if(form.Controls(), names);
    return found == form.Controls().end() ? nullptr : &*found;
}

// A label that is part of the prompt of a box, as its name or as the text behind it.
bool StandsInPrompt(const Form& form, const Control& label) {
    const Control* const buddy = form.Find(label.Row().buddy);
    if (buddy) return buddy->Kind() != ControlKind::ListView;
    return label.Row().place == Place::SameRow;
}

// A text right of the box, such as a unit.
std::string Behind(const Form& form, const Control& box) {
    auto next = std::ranges::find(form.Controls(), &box, [](const Control& one) { return &one; });
    if (next == form.Controls().end() || ++next == form.Controls().end()) return {};
    const bool behind = next->Kind() == ControlKind::Label && next->Row().place == Place::SameRow;
    return behind && next->Row().buddy.empty() && form.Drawn(*next) ? " " + next->Text() : std::string();
}

// "Port [7710]: "; `there`: what the box has already.
std::string PromptOf(const Form& form, const Control& box, const std::string& there) {
    const Control* const label = LabelOf(form, box);
    const std::string name = WithoutColon(label ? label->Text() : form.Caption());
    return name + Behind(form, box) + (there.empty() ? "" : " [" + there + "]") + ": ";
}

// One pass through a form; each step is false when the form need not be asked any further.
class Pass {
 public:
    Pass(Form& form, TtyPrompter& prompter) : form_(form), prompter_(prompter) {}

    // `first`: the box to begin with; null: the form's first.
    void Run(const Control* first) {
        prompter_.Say("");
        prompter_.Say("-- " + HarmlessLine(form_.Caption()));
        const Control* const label = first ? LabelOf(form_, *first) : nullptr;
        bool begun = !first;
        for (const auto& control : form_.Controls()) {
            begun |= &control == first || &control == label;
            if (begun && form_.Drawn(control) && !AskFor(control)) return;
        }
        ChooseButton();
    }

    bool GivenUp() const { return given_up_; }
    bool Answered() const { return answered_; }
    // The box to which the chosen button has moved the focus, after a message about it; may be null.
    const Control* SentTo() const { return sent_to_; }

 private:
    bool Over() const { return !form_.Visible() || prompter_.Loop().Quitting(); }
    Terminated Stop() const {
        return [this] { return !form_.Visible(); };
    }

    bool AskFor(const Control& control) {
        if (control.Kind() == ControlKind::Label && !StandsInPrompt(form_, control))
            prompter_.Say(control.Text());
        if (!form_.Reachable(control)) return true;
        switch (control.Kind()) {
            case ControlKind::TextBox:
                return AskText(control);
            case ControlKind::MaskedBox:
                return AskMasked(control);
            case ControlKind::CheckBox:
                return AskCheck(control);
            case ControlKind::ListView:
                return AskList(control);
            default:
                return true;
        }
    }

    // What the user gave up is given up on the form.
    bool Goes(End end) {
        if (end == End::GivenUp) {
            given_up_ = true;
            form_.EscapePressed();
            return false;
        }
        if (end == End::Answered) answered_ = true;
        return end == End::Answered && !Over();
    }

    bool AskText(const Control& box) {
        form_.GotFocus(box);
        const auto reply = prompter_.Ask({}, PromptOf(form_, box, box.Text()), true, Stop());
        if (!Goes(reply.end)) return false;
        std::string text = reply.line.Reveal();
        if (text.empty()) return true;
        if (text == " ") text.clear();
        form_.Type(box, text, {static_cast<std::size_t>(-1), 0});
        return !Over();
    }

    bool AskMasked(const Control& box) {
        form_.GotFocus(box);
        auto reply = prompter_.Ask({}, PromptOf(form_, box, box.Length() == 0 ? "" : "*"), false, Stop());
        if (!Goes(reply.end)) return false;
        if (!reply.line.Empty()) form_.Type(box, std::move(reply.line));
        return !Over();
    }

    bool AskCheck(const Control& check_box) {
        form_.GotFocus(check_box);
        const auto choice = prompter_.YesOrNo(check_box.Text(), check_box.Checked(), Stop());
        if (!Goes(choice.end)) return false;
        const bool yes = choice.index == 1;
        if (yes != check_box.Checked()) form_.Toggle(check_box, yes);
        return !Over();
    }

    bool AskList(const Control& list) {
        if (list.Items().empty()) return true;
        form_.GotFocus(list);
        const bool selected = list.SelectedItem() != Control::kNoItem;
        const std::size_t marked = selected ? static_cast<std::size_t>(list.SelectedItem()) : 0;
        // The list may change while the question is open.
        const std::vector<std::string> items(list.Items().begin(), list.Items().end());
        const auto choice = prompter_.Choose({}, items, marked, Stop());
        if (!Goes(choice.end)) return false;
        const auto item = std::ranges::find(list.Items(), items[choice.index]);
        if (item != list.Items().end()) form_.Select(list, item - list.Items().begin());
        return !Over();
    }

    bool ChooseButton() {
        if (!AwaitButtons()) return false;
        std::vector<const Control*> buttons;
        std::vector<std::string> texts;
        std::optional<std::size_t> marked;
        for (const auto& control : form_.Controls()) {
            if (!IsButton(control)) continue;
            if (&control == form_.DefaultButton()) marked = buttons.size();
            buttons.push_back(&control);
            texts.push_back(control.Text());
        }
        const auto choice = prompter_.Choose({}, texts, marked, Stop());
        if (!Goes(choice.end)) return false;
        const Control* const button = buttons[choice.index];
        form_.GotFocus(*button);
        form_.Click(*button);
        if (form_.Focused() != button) sent_to_ = form_.Focused();
        return !Over();
    }

    bool IsButton(const Control& control) const {
        return control.Kind() == ControlKind::Button && form_.Reachable(control);
    }

    // Until the form has had time to enable its buttons and there is one; for ever on a form without.
    bool AwaitButtons() {
        Milliseconds polling(0);
        for (const auto& control : form_.Controls()) {
            const Milliseconds interval(control.Row().interval);
            if (control.TimerEnabled() && interval <= kSlowestPolling)
                polling = std::max(polling, interval + kToBeSure);
        }
        EventLoop& loop = prompter_.Loop();
        loop.RunUntil([this] { return Over(); }, loop.Now() + polling);
        const auto there = [this](const Control& control) { return IsButton(control); };
        loop.RunUntil([&] { return Over() || std::ranges::any_of(form_.Controls(), there); },
                      EventLoop::TimePoint::max());
        return !Over();
    }

    Form& form_;
    TtyPrompter& prompter_;
    bool given_up_ = false;
    bool answered_ = false;  // any of its questions
    const Control* sent_to_ = nullptr;
};

int PercentOf(const Progress& progress) {
    if (progress.maximum <= progress.minimum) return 0;
    const double range = static_cast<double>(progress.maximum) - static_cast<double>(progress.minimum);
    const double done = static_cast<double>(progress.value) - static_cast<double>(progress.minimum);
    return static_cast<int>(std::clamp(done / range, 0.0, 1.0) * 100);
}

}  // namespace

// A form that stays is asked again, from the box that its message was about or from the start. One that stays
// though its user gave up, and is given up again immediately, is closed like a window, or where that is
// refused left to the event that ends it.
void AskForm(Form& form, TtyPrompter& prompter) {
    const auto over = [&] { return !form.Visible() || prompter.Loop().Quitting(); };
    bool given_up = false;
    const Control* first = nullptr;
    form.Activated();
    while (!over()) {
        Pass pass(form, prompter);
        pass.Run(first);
        first = pass.SentTo();
        if (given_up && pass.GivenUp() && !pass.Answered()) {
            form.CloseAsked();
            prompter.Loop().RunUntil(over, EventLoop::TimePoint::max());
        }
        given_up = pass.GivenUp();
    }
}

TtyFormView::TtyFormView(Form& form, std::shared_ptr<TtyPrompter> prompter)
    : form_(form.weak_from_this()), prompter_(std::move(prompter)) {}

void TtyFormView::Changed(const Control& control, ControlChange what) {
    const auto form = form_.lock();
    if (!form || !form->Visible() || !form->Drawn(control)) return;
    if (what == ControlChange::Progress) TellProgress(control.Progress());
    if (control.Kind() != ControlKind::Label || what != ControlChange::Text) return;
    if (!form->Modal())
        Tell(*form);
    else if (!StandsInPrompt(*form, control))
        prompter_->Say(control.Text());
}

void TtyFormView::Changed(FormChange what) {
    const auto form = form_.lock();
    if (!form || what != FormChange::Visible) return;
    percent_ = -1;
    if (!form->Visible()) {
        told_.clear();
        prompter_->EndLine();
    } else if (!form->Modal()) {
        Tell(*form);
    }
}

void TtyFormView::Focus(const Control& control) {
    if (const auto form = form_.lock()) form->GotFocus(control);
}

void TtyFormView::Tell(const Form& form) {
    std::string news;
    for (const auto& control : form.Controls()) {
        if (control.Kind() == ControlKind::Label && form.Drawn(control)) news += control.Text() + " ";
    }
    if (!news.empty()) news.pop_back();
    if (news.empty() || news == told_) return;
    told_ = news;
    prompter_->Say(news);
}

void TtyFormView::TellProgress(const Progress& progress) {
    const int percent = PercentOf(progress);
    if (percent == percent_) return;
    percent_ = percent;
    prompter_->SayOver(std::to_string(percent) + " %");
}

}  // namespace kq
