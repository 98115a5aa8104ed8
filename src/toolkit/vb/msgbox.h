#pragma once

#include <QString>
#include <functional>

// Button sets, icons and default buttons, as the flags of Visual Basic's MsgBox.
enum MsgBoxFlags {
    vbOKOnly = 0,
    vbOKCancel = 1,
    vbAbortRetryIgnore = 2,
    vbYesNoCancel = 3,
    vbYesNo = 4,
    vbRetryCancel = 5,
    vbCritical = 16,
    vbQuestion = 32,
    vbExclamation = 48,
    vbInformation = 64,
    vbDefaultButton2 = 256,
    vbDefaultButton3 = 512,
};

enum MsgBoxResult {
    vbOK = 1,
    vbCancel = 2,
    vbAbort = 3,
    vbRetry = 4,
    vbIgnore = 5,
    vbYes = 6,
    vbNo = 7
};

// The only ways the program asks the user something. The title defaults to the application title.
int MsgBox(const QString& prompt, int flags = vbOKOnly, const QString& title = QString());
// Returns the typed text, or an empty string when the user cancels.
QString InputBox(const QString& prompt, const QString& title = QString(),
                 const QString& defaultText = QString());

struct MsgBoxCall {
    QString prompt;
    int flags = 0;
    QString title;
};

struct InputBoxCall {
    QString prompt;
    QString title;
    QString defaultText;
};

// True while MsgBox or InputBox is asking: a window that loses the focus now loses it to a box
// of its own, and getting it back is no new activation.
bool MsgBoxIsOpen();

// Tests answer the boxes with these instead of showing a window; an empty function restores
// the real boxes.
void SetMsgBoxResponder(std::function<int(const MsgBoxCall&)> responder);
void SetInputBoxResponder(std::function<QString(const InputBoxCall&)> responder);
