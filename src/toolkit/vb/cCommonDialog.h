#pragma once

#include <QString>
#include <QStringList>

class QWidget;

// The object a window holds to ask for a file, with the properties of a common dialog control.
class cCommonDialog {
  public:
    // Raise an error (number cdlCancel) instead of returning when the user cancels.
    bool CancelError = false;
    // In: the suggested name. Out: the chosen path, or empty after a cancel.
    QString Filename;
    // "text|pattern|text|pattern", as "textfiles (*.txt)|*.txt|all files (*.*)|*.*".
    QString Filter;
    // 1-based; out: the filter the user left in force.
    int FilterIndex = 1;
    // Appended to a chosen name that has no extension of its own.
    QString DefaultExt;
    QString DialogTitle;
    // FileDialogFlags, as cdlOFNFileMustExist | cdlOFNHideReadOnly.
    long flags = 0;
    QString InitDir;
    // Out: the chosen file's name without its folder.
    QString FileTitle;
    // The owner window of the dialog.
    QWidget* hWnd = nullptr;

    // True when a file was chosen.
    bool ShowOpen();
    bool ShowSave();

    // Splits a multiple selection held in Filename: the folder, then the names.
    void ParseMultiFileName(QString& folder, QStringList& names) const;

  private:
    bool Finish(bool chosen, const QString& chosenName, int chosenFilter);
};

// The error number of a cancelled dialog with CancelError set.
constexpr int cdlCancel = 32755;
