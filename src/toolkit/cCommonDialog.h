#pragma once

#include <QString>
#include <functional>

// The file chooser behind the properties of a common dialog: a title, a filter of
// "text|pattern|text|pattern" pairs, a start folder and a default extension; it yields a path
// or a cancel.
class cCommonDialog {
  public:
    // Raise error 32755 "User selected cancel." when the user cancels.
    bool CancelError = false;
    QString Filename;
    QString FileTitle;
    QString Filter;
    int FilterIndex = 1;
    QString DefaultExt;
    QString DialogTitle;
    int flags = 0;
    QString InitDir;

    void ShowOpen();
    void ShowSave();

  private:
    void Show(bool save);
};

// The flags the program passes, with the Windows numbers.
enum FileDialogFlags {
    cdlOFNReadOnly = 0x1,
    cdlOFNOverwritePrompt = 0x2,
    cdlOFNHideReadOnly = 0x4,
    cdlOFNPathMustExist = 0x800,
    cdlOFNFileMustExist = 0x1000,
};

// What a chooser was asked; tests answer with a path, or an empty one for a cancel.
struct FileChooserCall {
    bool save = false;
    QString title;
    QString filter;
    int filterIndex = 1;
    QString initDir;
    QString defaultExt;
    int flags = 0;
};
// An empty function restores the real chooser.
void SetFileChooserResponder(std::function<QString(const FileChooserCall&)> responder);
