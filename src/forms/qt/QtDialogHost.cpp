// Nothing here has a separate event loop: message boxes and forms are shown, and our event loop runs until
// they are hidden. So they end when the loop quits.
#include "forms/qt/QtDialogHost.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTranslator>

#include "forms/Form.h"
#include "forms/qt/QtFormWindow.h"
#include "forms/qt/QtScreen.h"
#include "forms/qt/QtText.h"
#include "platform/Languages.h"

namespace kq {
namespace {

class QtFormView final : public FormView {
 public:
    QtFormView(Form& form, const std::shared_ptr<QtScreen>& screen)
        : window_(new QtFormWindow(form, screen)) {
        screen->Add(form, *window_);
    }
    QtFormView(const QtFormView&) = delete;
    QtFormView& operator=(const QtFormView&) = delete;
    ~QtFormView() override {
        if (window_) window_->LetGo();
    }

    void Changed(const Control& control, ControlChange what) override {
        if (window_) window_->Draw(control, what);
    }
    void Changed(FormChange what) override {
        if (window_) window_->Draw(what);
    }
    void Focus(const Control& control) override {
        if (window_) window_->PutFocus(control);
    }

 private:
    QPointer<QtFormWindow> window_;
};

struct BoxLook {
    QMessageBox::Icon icon;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton first;
};

BoxLook LookOf(BoxStyle style) {
    using B = QMessageBox;
    switch (style) {
        case BoxStyle::Error:
            return {B::Critical, B::Ok, B::Ok};
        case BoxStyle::Warning:
            return {B::Warning, B::Ok, B::Ok};
        case BoxStyle::YesNoCancel:
            return {B::Warning, B::Yes | B::No | B::Cancel, B::Yes};
        case BoxStyle::YesNo:
            return {B::Warning, B::Yes | B::No, B::Yes};
        case BoxStyle::Information:
            break;
    }
    return {B::Information, B::Ok, B::Ok};
}

std::optional<BoxButton> ButtonOf(QMessageBox::StandardButton pressed) {
    switch (pressed) {
        case QMessageBox::Ok:
            return BoxButton::OK;
        case QMessageBox::Cancel:
            return BoxButton::Cancel;
        case QMessageBox::Yes:
            return BoxButton::Yes;
        case QMessageBox::No:
            return BoxButton::No;
        default:
            return std::nullopt;
    }
}

// "Shortcut|*.lnk" in the toolkit's form.
QString FilterOf(const std::string& filter) {
    const QString text = ToQt(filter);
    const auto bar = text.indexOf('|');
    return bar < 0 ? text : text.left(bar) + " (" + text.mid(bar + 1) + ")";
}

class QtDialogHost final : public DialogHost {
 public:
    QtDialogHost(std::shared_ptr<EventLoop> loop, Tongue tongue) : loop_(std::move(loop)) {
        const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
        if (tongue == Tongue::Portuguese) translated_ = translator_.load("qtbase_pt_BR", folder);
        if (tongue == Tongue::Spanish) translated_ = translator_.load("qtbase_es", folder);
    }

    BoxButton ShowMessageBox(const std::string& text, const std::string& caption, BoxStyle style,
                             Signal<>& withdrawn) override {
        const BoxLook look = LookOf(style);
        QMessageBox box(look.icon, ToQt(caption), ToQt(text), look.buttons);
        box.setObjectName("MessageBox");
        box.setTextFormat(Qt::PlainText);
        box.setDefaultButton(look.first);
        Translate(box);
        RunBox(box, withdrawn);
        return ButtonOf(box.standardButton(box.clickedButton())).value_or(Unanswered(style));
    }

    std::unique_ptr<FormView> CreateView(Form& form) override {
        return std::make_unique<QtFormView>(form, screen_);
    }

    void RunModal(Form& form) override {
        loop_->RunUntil([&form] { return !form.Visible(); }, EventLoop::TimePoint::max());
    }

    std::optional<std::string> AskSavePath(const SaveQuestion& question, Signal<>& withdrawn) override {
        QFileDialog dialog(nullptr, ToQt(question.title), ToQt(question.folder), FilterOf(question.filter));
        dialog.setObjectName("SaveDialog");
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setFileMode(QFileDialog::AnyFile);
        dialog.setOption(QFileDialog::DontConfirmOverwrite);  // asked below, of the name with its extension
        dialog.selectFile(ToQt(question.file_name));
        Translate(dialog);
        for (;;) {
            RunBox(dialog, withdrawn);
            if (dialog.result() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
            QString path = dialog.selectedFiles().first();
            const QString ending = "." + ToQt(question.extension);
            if (!question.extension.empty() && !path.endsWith(ending, Qt::CaseInsensitive)) path += ending;
            if (!QFileInfo::exists(path) || MayReplace(path, withdrawn)) return FromQt(path);
            dialog.setResult(QDialog::Rejected);
        }
    }

 private:
    void RunBox(QDialog& box, Signal<>& withdrawn) {
        const Owner life;
        withdrawn.Connect(life, [&box] { box.hide(); });
        QWidget* const owner = screen_->TopOwner();
        box.setAttribute(Qt::WA_QuitOnClose, false);
        box.setWindowModality(Qt::ApplicationModal);
        box.adjustSize();
        screen_->Present(box, owner, nullptr);
        loop_->RunUntil([&box] { return !box.isVisible(); }, EventLoop::TimePoint::max());
        screen_->Hide(box);
        screen_->Activate(owner);
    }

    bool MayReplace(const QString& path, Signal<>& withdrawn) {
        const QString question = Translated("QFileDialog", "%1 already exists.\nDo you want to replace it?",
                                            QFileInfo(path).fileName());
        return ShowMessageBox(FromQt(question), FromQt(Translated("QFileDialog", "Save As")), BoxStyle::YesNo,
                              withdrawn) == BoxButton::Yes;
    }

    // Boxes speak the language of the texts also in programs that install no translation of the toolkit.
    void Translate(QMessageBox& box) const {
        if (!translated_) return;
        constexpr std::pair<QMessageBox::StandardButton, const char*> kTexts[] = {
            {QMessageBox::Ok, "OK"},
            {QMessageBox::Cancel, "Cancel"},
            {QMessageBox::Yes, "&Yes"},
            {QMessageBox::No, "&No"}};
        for (const auto& [which, text] : kTexts) {
            auto* const button = box.button(which);
            const QString translated = translator_.translate("QPlatformTheme", text);
            if (button && !translated.isEmpty()) button->setText(translated);
        }
    }

    void Translate(QFileDialog& dialog) const {
        if (!translated_) return;
        constexpr std::pair<QFileDialog::DialogLabel, const char*> kTexts[] = {
            {QFileDialog::LookIn, "Look in:"},
            {QFileDialog::FileName, "File &name:"},
            {QFileDialog::FileType, "Files of type:"},
            {QFileDialog::Accept, "&Save"}};
        for (const auto& [label, text] : kTexts)
            dialog.setLabelText(label, Translated("QFileDialog", text));
        dialog.setLabelText(QFileDialog::Reject, Translated("QPlatformTheme", "Cancel"));
    }

    QString Translated(const char* context, const char* text, const QString& argument = {}) const {
        const QString translated = translator_.translate(context, text);
        const QString chosen = translated.isEmpty() ? QString(text) : translated;
        return argument.isEmpty() ? chosen : chosen.arg(argument);
    }

    std::shared_ptr<EventLoop> loop_;
    std::shared_ptr<QtScreen> screen_ = std::make_shared<QtScreen>();
    QTranslator translator_;
    bool translated_ = false;
};

}  // namespace

std::shared_ptr<DialogHost> MakeQtDialogHost(std::shared_ptr<EventLoop> loop, std::int32_t locale) {
    return std::make_shared<QtDialogHost>(std::move(loop), TextLanguageFor(locale).tongue);
}

}  // namespace kq
