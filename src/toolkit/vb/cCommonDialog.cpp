#include "toolkit/vb/cCommonDialog.h"

#include "toolkit/vb/GCommonDialog.h"
#include "toolkit/vb/vberror.h"

bool cCommonDialog::ShowOpen() {
    QString chosen = Filename;
    int index = FilterIndex;
    const bool ok = GCommonDialog::VBGetOpenFileName(
        chosen, FileTitle, flags & cdlOFNFileMustExist, flags & cdlOFNAllowMultiselect,
        flags & cdlOFNHideReadOnly, Filter, &index, InitDir, DialogTitle, DefaultExt, hWnd, flags);
    return Finish(ok, chosen, index);
}

bool cCommonDialog::ShowSave() {
    QString chosen = Filename;
    int index = FilterIndex;
    const bool ok =
        GCommonDialog::VBGetSaveFileName(chosen, FileTitle, flags & cdlOFNOverwritePrompt, Filter,
                                         &index, InitDir, DialogTitle, DefaultExt, hWnd, flags);
    return Finish(ok, chosen, index);
}

bool cCommonDialog::Finish(bool chosen, const QString& chosenName, int chosenFilter) {
    if (!chosen) {
        // The callers take an empty name for a cancel.
        Filename.clear();
        FileTitle.clear();
        if (CancelError) throw VbError(cdlCancel, "User selected cancel.", ".cCommonDialog");
        return false;
    }
    Filename = chosenName;
    FilterIndex = chosenFilter;
    return true;
}

void cCommonDialog::ParseMultiFileName(QString& folder, QStringList& names) const {
    const QStringList parts = Filename.split(QChar(0));
    if (parts.size() == 1) {
        const qsizetype slash = Filename.lastIndexOf('/');
        folder = Filename.left(qMax<qsizetype>(slash, 0));
        names = {Filename.mid(slash + 1)};
        return;
    }
    folder = parts.first();
    names = parts.mid(1);
}
