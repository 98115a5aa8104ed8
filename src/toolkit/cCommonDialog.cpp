#include "toolkit/cCommonDialog.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>

#include "toolkit/vberror.h"

namespace {

std::function<QString(const FileChooserCall&)> fileChooserResponder;

// "Textfiles (*.txt)|*.txt|All Files (*.*)|*.*" becomes Qt's "Textfiles (*.txt) (*.txt)" list.
QStringList NameFilters(const QString& filter) {
    const QStringList parts = filter.split('|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2)
        filters << parts[i] + " (" + QString(parts[i + 1]).replace(';', ' ') + ")";
    return filters;
}

QString RealChooser(const FileChooserCall& call) {
    QFileDialog dialog(QApplication::activeWindow(), call.title, call.initDir);
    dialog.setAcceptMode(call.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(call.save || !(call.flags & cdlOFNFileMustExist)
                           ? QFileDialog::AnyFile
                           : QFileDialog::ExistingFile);
    if (!(call.flags & cdlOFNOverwritePrompt)) dialog.setOption(QFileDialog::DontConfirmOverwrite);
    const QStringList filters = NameFilters(call.filter);
    dialog.setNameFilters(filters);
    if (call.filterIndex >= 1 && call.filterIndex <= filters.size())
        dialog.selectNameFilter(filters[call.filterIndex - 1]);
    dialog.setDefaultSuffix(call.defaultExt);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return QString();
    return dialog.selectedFiles().first();
}

}  // namespace

void SetFileChooserResponder(std::function<QString(const FileChooserCall&)> responder) {
    fileChooserResponder = std::move(responder);
}

void cCommonDialog::ShowOpen() {
    Show(false);
}

void cCommonDialog::ShowSave() {
    Show(true);
}

void cCommonDialog::Show(bool save) {
    const FileChooserCall call{save, DialogTitle, Filter, FilterIndex, InitDir, DefaultExt, flags};
    Filename = fileChooserResponder ? fileChooserResponder(call) : RealChooser(call);
    FileTitle = QFileInfo(Filename).fileName();
    if (Filename.isEmpty() && CancelError)
        throw VbError(32755, "User selected cancel.", ".cCommonDialog");
}
