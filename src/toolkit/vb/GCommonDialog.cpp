#include "toolkit/vb/GCommonDialog.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>

#include "toolkit/vb/guardeddialog.h"
#include "toolkit/vb/longwork.h"

namespace {

FileChooser fileChooser;

QString SlashPath(const QString& path) {
    return QString(path).replace('\\', '/');
}

FileDialogAnswer AskUser(const FileDialogCall& call, QWidget* owner) {
    const BusyScope asking;
    GuardedDialog<QFileDialog> dialog(owner, call.title);
    // The descriptions already name their patterns; the patterns behind them stay unseen.
    QFileDialog::Options options = QFileDialog::HideNameFilterDetails;
    if (call.save && !(call.flags & cdlOFNOverwritePrompt))
        options |= QFileDialog::DontConfirmOverwrite;
    dialog->setOptions(options);
    dialog->setAcceptMode(call.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    if (call.save)
        dialog->setFileMode(QFileDialog::AnyFile);
    else if (call.flags & cdlOFNAllowMultiselect)
        dialog->setFileMode(QFileDialog::ExistingFiles);
    else if (call.flags & cdlOFNFileMustExist)
        dialog->setFileMode(QFileDialog::ExistingFile);
    else
        dialog->setFileMode(QFileDialog::AnyFile);
    const QStringList filters = GCommonDialog::NameFilters(call.filter);
    dialog->setNameFilters(filters);
    if (call.filterIndex >= 1 && call.filterIndex <= filters.size())
        dialog->selectNameFilter(filters[call.filterIndex - 1]);
    if (!call.initDir.isEmpty()) dialog->setDirectory(call.initDir);
    if (!call.filename.isEmpty()) dialog->selectFile(call.filename);
    dialog->setDefaultSuffix(call.defaultExt);
    if (dialog.exec() != QDialog::Accepted || dialog->selectedFiles().isEmpty()) return {};
    FileDialogAnswer answer;
    answer.filenames = dialog->selectedFiles();
    answer.filename = answer.filenames.first();
    answer.filterIndex = static_cast<int>(filters.indexOf(dialog->selectedNameFilter())) + 1;
    return answer;
}

// A name typed without an extension gets the default one, unless a file of that very name
// exists.
QString WithDefaultExtension(const QString& path, const QString& defaultExt) {
    if (path.isEmpty() || defaultExt.isEmpty()) return path;
    const QFileInfo file(path);
    if (!file.suffix().isEmpty() || file.exists()) return path;
    return path + '.' + defaultExt;
}

bool Ask(FileDialogCall call, QWidget* owner, QString& filename, QString& fileTitle,
         int* filterIndex) {
    call.initDir = SlashPath(call.initDir);
    call.filename = SlashPath(filename);
    if (filterIndex) call.filterIndex = *filterIndex;
    const FileDialogAnswer answer = fileChooser ? fileChooser(call) : AskUser(call, owner);
    GCommonDialog::ExtendedError = 0;
    if (answer.filename.isEmpty()) {
        GCommonDialog::APIReturn = 0;
        return false;
    }
    GCommonDialog::APIReturn = 1;
    const bool several = call.flags & cdlOFNAllowMultiselect && answer.filenames.size() > 1;
    if (several) {
        QStringList parts{QFileInfo(answer.filenames.first()).absolutePath()};
        for (const QString& path : answer.filenames) parts << QFileInfo(path).fileName();
        filename = parts.join(QChar(0));
        fileTitle.clear();
    } else {
        filename = WithDefaultExtension(answer.filename, call.defaultExt);
        fileTitle = GCommonDialog::VBGetFileTitle(filename);
    }
    if (filterIndex && answer.filterIndex > 0) *filterIndex = answer.filterIndex;
    return true;
}

}  // namespace

void SetFileChooser(FileChooser chooser) {
    fileChooser = std::move(chooser);
}

namespace GCommonDialog {

long APIReturn = 0;
long ExtendedError = 0;

bool VBGetOpenFileName(QString& Filename, QString& FileTitle, bool FileMustExist, bool MultiSelect,
                       bool HideReadOnly, const QString& Filter, int* FilterIndex,
                       const QString& InitDir, const QString& DlgTitle, const QString& DefaultExt,
                       QWidget* Owner, long Flags) {
    FileDialogCall call;
    call.title = DlgTitle;
    call.filter = Filter;
    call.defaultExt = DefaultExt;
    call.initDir = InitDir;
    call.flags = Flags;
    if (FileMustExist) call.flags |= cdlOFNFileMustExist | cdlOFNPathMustExist;
    if (MultiSelect) call.flags |= cdlOFNAllowMultiselect | cdlOFNExplorer;
    if (HideReadOnly) call.flags |= cdlOFNHideReadOnly;
    return Ask(call, Owner, Filename, FileTitle, FilterIndex);
}

bool VBGetSaveFileName(QString& Filename, QString& FileTitle, bool OverWritePrompt,
                       const QString& Filter, int* FilterIndex, const QString& InitDir,
                       const QString& DlgTitle, const QString& DefaultExt, QWidget* Owner,
                       long Flags) {
    FileDialogCall call;
    call.save = true;
    call.title = DlgTitle;
    call.filter = Filter;
    call.defaultExt = DefaultExt;
    call.initDir = InitDir;
    call.flags = Flags;
    if (OverWritePrompt) call.flags |= cdlOFNOverwritePrompt;
    return Ask(call, Owner, Filename, FileTitle, FilterIndex);
}

QString VBGetFileTitle(const QString& Filename) {
    return QFileInfo(SlashPath(Filename)).fileName();
}

QStringList NameFilters(const QString& filter) {
    const QStringList parts = filter.split('|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns = parts[i + 1].split(';', Qt::SkipEmptyParts);
        // "*.*" on Windows takes every file, also one without a dot.
        for (QString& pattern : patterns)
            if (pattern.trimmed() == "*.*") pattern = "*";
        filters << parts[i] + " (" + patterns.join(' ') + ')';
    }
    return filters;
}

}  // namespace GCommonDialog
