#include "toolkit/vb/msgbox.h"

#include <QApplication>
#include <QGridLayout>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QScopedValueRollback>

#include "toolkit/vb/guardeddialog.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/vbruntime.h"

namespace {

std::function<int(const MsgBoxCall&)> msgBoxResponder;
std::function<QString(const InputBoxCall&)> inputBoxResponder;
// Boxes asking now; a box may open another only through a nested event loop.
int boxesOpen = 0;

struct ButtonChoice {
    QMessageBox::StandardButton button;
    int result;
};

QList<ButtonChoice> ButtonsFor(int flags) {
    switch (flags & 7) {
        case vbOKCancel:
            return {{QMessageBox::Ok, vbOK}, {QMessageBox::Cancel, vbCancel}};
        case vbAbortRetryIgnore:
            return {{QMessageBox::Abort, vbAbort},
                    {QMessageBox::Retry, vbRetry},
                    {QMessageBox::Ignore, vbIgnore}};
        case vbYesNoCancel:
            return {{QMessageBox::Yes, vbYes},
                    {QMessageBox::No, vbNo},
                    {QMessageBox::Cancel, vbCancel}};
        case vbYesNo:
            return {{QMessageBox::Yes, vbYes}, {QMessageBox::No, vbNo}};
        case vbRetryCancel:
            return {{QMessageBox::Retry, vbRetry}, {QMessageBox::Cancel, vbCancel}};
        default:
            return {{QMessageBox::Ok, vbOK}};
    }
}

QMessageBox::Icon IconFor(int flags) {
    switch (flags & 0x70) {
        case vbCritical:
            return QMessageBox::Critical;
        case vbQuestion:
            return QMessageBox::Question;
        case vbExclamation:
            return QMessageBox::Warning;
        case vbInformation:
            return QMessageBox::Information;
        default:
            return QMessageBox::NoIcon;
    }
}

// The box that closes with Escape or the title bar answers Cancel where there is one, else the
// only button, as Windows does.
int EscapeResult(const QList<ButtonChoice>& choices) {
    for (const auto& choice : choices)
        if (choice.result == vbCancel) return vbCancel;
    return choices.size() == 1 ? choices.first().result : vbCancel;
}

// A box is at least as wide as its caption. The title bar is the window manager's: its caption
// is taken as bold in the box's font, beside room for the bar's icon and three buttons.
void FitCaption(QLayout* layout, const QFont& font, const QString& caption) {
    auto* grid = qobject_cast<QGridLayout*>(layout);
    if (!grid) return;
    QFont bold = font;
    bold.setBold(true);
    const QFontMetrics metrics(bold);
    const int width = metrics.horizontalAdvance(caption) + 4 * (metrics.height() + 8);
    grid->addItem(new QSpacerItem(width, 0, QSizePolicy::Minimum, QSizePolicy::Fixed),
                  grid->rowCount(), 0, 1, grid->columnCount());
}

}  // namespace

void SetMsgBoxResponder(std::function<int(const MsgBoxCall&)> responder) {
    msgBoxResponder = std::move(responder);
}

void SetInputBoxResponder(std::function<QString(const InputBoxCall&)> responder) {
    inputBoxResponder = std::move(responder);
}

bool MsgBoxIsOpen() {
    return boxesOpen > 0;
}

int MsgBox(const QString& prompt, int flags, const QString& title) {
    const QScopedValueRollback open(boxesOpen, boxesOpen + 1);
    // Whoever asked goes on with the answer: the program must still be there when it comes.
    const BusyScope asking;
    const QString caption = title.isEmpty() ? App.Title : title;
    if (msgBoxResponder) return msgBoxResponder({prompt, flags, caption});

    GuardedDialog<QMessageBox> box(IconFor(flags), caption, prompt, QMessageBox::NoButton,
                                   QApplication::activeWindow());
    const QList<ButtonChoice> choices = ButtonsFor(flags);
    const int defaultIndex = (flags & vbDefaultButton3) ? 2 : (flags & vbDefaultButton2) ? 1 : 0;
    for (int i = 0; i < choices.size(); ++i) {
        QPushButton* button = box->addButton(choices[i].button);
        if (i == defaultIndex) box->setDefaultButton(button);
    }
    FitCaption(box->layout(), box->font(), caption);
    box.exec();
    QAbstractButton* clicked = box.Alive() ? box->clickedButton() : nullptr;
    if (!clicked) return EscapeResult(choices);
    const auto standard = box->standardButton(clicked);
    for (const auto& choice : choices)
        if (choice.button == standard) return choice.result;
    return EscapeResult(choices);
}

QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) {
    const QScopedValueRollback open(boxesOpen, boxesOpen + 1);
    const BusyScope asking;
    const QString caption = title.isEmpty() ? App.Title : title;
    if (inputBoxResponder) return inputBoxResponder({prompt, caption, defaultText});

    GuardedDialog<QInputDialog> dialog(QApplication::activeWindow());
    dialog->setWindowTitle(caption);
    dialog->setLabelText(prompt);
    dialog->setTextValue(defaultText);
    if (dialog.exec() != QDialog::Accepted) return QString();
    return dialog->textValue();
}
