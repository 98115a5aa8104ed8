#include "bench/loanscenarios.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>

#include "app/mGlobals.h"
#include "bench/benchprogram.h"
#include "loans/frmLend.h"
#include "loans/lentoutfolder.h"
#include "loans/loanstore.h"
#include "shell/frmMain.h"
#include "shell/frmSplash.h"
#include "shell/mGlobalFunctions.h"
#include "store/catalogue.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const int kTitlesOut = 2000;
const int kTitlesLentAtOnce = 500;

using bench::ElapsedMilliseconds;
using bench::StartProgram;

// The loans go with the program: the next scenario's catalogue has none.
void EndProgram() {
    if (!gMainForm) return;
    gDatabase->Execute("DELETE FROM loan");
    gDatabase->Execute("DELETE FROM borrower");
    bench::EndProgram();
}

QList<long> TitleIds(int count) {
    QList<long> ids;
    auto records = gDatabase->OpenRecordset("select idcd from title order by idcd", dbOpenSnapshot);
    for (; !records->IsEOF() && ids.size() < count; records->MoveNext())
        ids << static_cast<long>(records->Fields(0).Value().toLongLong());
    return ids;
}

// Lends the first 2000 titles to four borrowers; the first quarter is overdue.
void LendTitlesOut() {
    const QList<long> ids = TitleIds(kTitlesOut);
    const QDate today = QDate::currentDate();
    for (int part = 0; part < 4; ++part) {
        const qsizetype size = ids.size() / 4;
        const QDate lent = today.addDays(-30);
        loans::LendTitles(*gDatabase, ids.mid(part * size, size),
                          {"Borrower " + QString::number(part),
                           lent,
                           part == 0 ? today.addDays(-1) : today.addDays(part * 7),
                           {}});
    }
    gMainForm->LoansChanged();
}

}  // namespace

std::vector<double> TimeLentOutFolder(const QString& folder, int runs) {
    StartProgram(folder);
    LendTitlesOut();
    QTreeWidgetItem* node = gMainForm->NodeOfKey(loans::kLentOutKey);
    if (!node) throw VbError(0, "no \"Lent out\" folder");
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        gSelectedIndex = gMainForm->NodeIndex(node);
        gSelectedKey = loans::kLentOutKey;
        gRequestedKey = "forcechange";
        QElapsedTimer timer;
        timer.start();
        ReadRecords(-1);
        QCoreApplication::processEvents();
        times.push_back(ElapsedMilliseconds(timer));
        if (gMainForm->ListItemCount() != kTitlesOut)
            throw VbError(0, QString("the folder lists %1 titles").arg(gMainForm->ListItemCount()));
    }
    EndProgram();
    return times;
}

std::vector<double> TimeLoanCount(const QString& folder, int runs) {
    StartProgram(folder);
    LendTitlesOut();
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        gMainForm->ShowLoanCount();
        times.push_back(ElapsedMilliseconds(timer));
        if (!gMainForm->PanelText(1).startsWith("2000 discs lent out, 500 overdue"))
            throw VbError(0, "the count says " + gMainForm->PanelText(1));
    }
    EndProgram();
    return times;
}

std::vector<double> TimeLendingSelected(const QString& folder, int runs) {
    StartProgram(folder);
    const QList<long> ids = TitleIds(kTitlesLentAtOnce);
    QStringList names;
    for (const long id : ids) names << QString::number(id);
    std::vector<double> times;
    for (int run = 0; run < runs; ++run) {
        frmLend window(ids, names, gMainForm);
        window.cboBorrower->setEditText("Borrower " + QString::number(run));
        QElapsedTimer timer;
        timer.start();
        window.cmdOK_Click();
        times.push_back(ElapsedMilliseconds(timer));
        if (window.result() != QDialog::Accepted ||
            loans::TitlesOut(*gDatabase, ids).size() != kTitlesLentAtOnce)
            throw VbError(0, "the titles were not lent");
        loans::ReturnTitles(*gDatabase, ids, QDate::currentDate());
        gDatabase->Execute("DELETE FROM loan");
    }
    EndProgram();
    return times;
}
