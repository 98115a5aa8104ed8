#pragma once

#include <QString>
#include <QStringList>
#include <functional>

class QWidget;

// The open and save dialogs as plain calls. QFileDialog stands in for the platform's dialogs;
// tests install a scripted chooser instead and read what was asked.

// Flags of the file dialogs, with the platform's numbers.
enum FileDialogFlags : long {
    cdlOFNReadOnly = 0x1,
    cdlOFNOverwritePrompt = 0x2,
    cdlOFNHideReadOnly = 0x4,
    cdlOFNNoChangeDir = 0x8,
    cdlOFNAllowMultiselect = 0x200,
    cdlOFNPathMustExist = 0x800,
    cdlOFNFileMustExist = 0x1000,
    cdlOFNCreatePrompt = 0x2000,
    cdlOFNNoReadOnlyReturn = 0x8000,
    cdlOFNExplorer = 0x80000,
};

// What a file dialog was asked to show.
struct FileDialogCall {
    bool save = false;
    QString title;
    // "text|pattern|text|pattern", patterns separated by ";".
    QString filter;
    // 1-based, as the dialogs count their filters.
    int filterIndex = 1;
    QString initDir;
    QString defaultExt;
    QString filename;
    long flags = 0;
};

// What a file dialog answered. An empty filename is a cancel. With multiple selection the
// chooser gives the paths of all chosen files in filenames.
struct FileDialogAnswer {
    QString filename;
    QStringList filenames;
    int filterIndex = 1;
};

// Tests answer the file dialogs with this instead of showing one; an empty function restores
// the real dialogs.
using FileChooser = std::function<FileDialogAnswer(const FileDialogCall&)>;
void SetFileChooser(FileChooser chooser);

namespace GCommonDialog {

// The result of the last dialog: 1 chosen, 0 cancelled; and the reason of a failure, 0 for a
// cancel by the user.
extern long APIReturn;
extern long ExtendedError;

// Filename goes in as the suggested name and comes back as the chosen path; with multiple
// selection it comes back as the folder followed by the names, each after a character of code
// 0. FilterIndex comes back as the filter in force. True when a file was chosen.
bool VBGetOpenFileName(QString& Filename, QString& FileTitle, bool FileMustExist = true,
                       bool MultiSelect = false, bool HideReadOnly = false,
                       const QString& Filter = "All (*.*)|*.*", int* FilterIndex = nullptr,
                       const QString& InitDir = QString(), const QString& DlgTitle = QString(),
                       const QString& DefaultExt = QString(), QWidget* Owner = nullptr,
                       long Flags = 0);
bool VBGetSaveFileName(QString& Filename, QString& FileTitle, bool OverWritePrompt = true,
                       const QString& Filter = "All (*.*)|*.*", int* FilterIndex = nullptr,
                       const QString& InitDir = QString(), const QString& DlgTitle = QString(),
                       const QString& DefaultExt = QString(), QWidget* Owner = nullptr,
                       long Flags = 0);
// The name of the file without its folder.
QString VBGetFileTitle(const QString& Filename);

// "text|pattern;pattern|..." as QFileDialog's name filters, "text (pattern pattern)".
QStringList NameFilters(const QString& filter);

}  // namespace GCommonDialog
