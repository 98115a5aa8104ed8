#include "editor/frmFetchCovers.h"

#include <QDate>
#include <QHBoxLayout>
#include <QHash>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "disc/coverartarchive.h"
#include "disc/coverimage.h"
#include "disc/lookupsettings.h"
#include "store/catalogue.h"
#include "store/shelfrecords.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

const QString kOperation = "Fetching cover";
const QString kCaption = "Fetch missing covers";

// The titles among ids with a release and without a cover, in the order given.
QList<std::pair<long, QStringList>> TitlesWithoutCover(const QList<long>& ids) {
    QList<std::pair<long, QStringList>> found;
    if (ids.isEmpty()) return found;
    QStringList list;
    for (long id : ids) list << QString::number(id);
    std::unique_ptr<Recordset> rows = gDatabase->OpenRecordset(
        "select title.idcd, titlerelease.mbid, title.nmcd from title, titlerelease where "
        "title.idcd = titlerelease.idcd and titlerelease.mbid <> '' and title.idcd in (" +
            list.join(",") + ") and title.idcd not in (select idcd from cover)",
        dbOpenForwardOnly);
    QHash<long, QStringList> byId;
    for (; !rows->IsEOF(); rows->MoveNext())
        byId.insert(rows->Fields(0).Value().toLongLong(),
                    {NzText(rows->Fields(1).Value()), NzText(rows->Fields(2).Value())});
    for (long id : ids)
        if (byId.contains(id)) found.append({id, byId.take(id)});
    return found;
}

}  // namespace

frmFetchCovers::frmFetchCovers(const QList<long>& titleIds, QWidget* parent) : QDialog(parent) {
    setObjectName("frmFetchCovers");
    setWindowTitle(kCaption);
    setModal(true);
    lblStatus = new QLabel(this);
    lblStatus->setObjectName("lblStatus");
    lblStatus->setMinimumWidth(360);
    barProgress = new QProgressBar(this);
    barProgress->setObjectName("barProgress");
    cmdCancel = new QPushButton("Cancel", this);
    cmdCancel->setObjectName("cmdCancel");
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblStatus);
    layout->addWidget(barProgress);
    layout->addLayout(buttons);

    for (const auto& [id, values] : TitlesWithoutCover(titleIds))
        todo_.append({id, values[0], values[1]});
    const LookupSettings settings = ReadLookupSettings();
    large_ = settings.largeCovers;
    archive_ = new CoverArtArchive(settings.coverArtServer, this);
    connect(archive_, &CoverArtArchive::Answered, this, &frmFetchCovers::Take);
    barProgress->setRange(0, Count());
}

frmFetchCovers::Summary frmFetchCovers::Run() {
    const BusyScope busy;
    QTimer::singleShot(0, this, &frmFetchCovers::Next);
    if (RunModal(this) != QDialog::Accepted) summary_.stopped = true;
    archive_->Cancel();
    EndProgress(kOperation);
    return summary_;
}

void frmFetchCovers::Next() {
    if (next_ >= Count()) {
        accept();
        return;
    }
    const Todo& title = todo_[next_++];
    const QString step = QString("%1 %2 of %3").arg(kOperation).arg(next_).arg(Count());
    lblStatus->setText(step + ": " + title.title);
    barProgress->setValue(next_ - 1);
    ReportProgress(kOperation, next_, Count());
    archive_->Fetch(title.mbid, large_);
}

void frmFetchCovers::Take(const CoverAnswer& answer) {
    const Todo& title = todo_[next_ - 1];
    ++summary_.tried;
    switch (answer.outcome) {
        case CoverAnswer::Outcome::Fetched: {
            PreparedCover prepared;
            QString problem;
            if (!PrepareCover(answer.image, prepared, problem)) {
                summary_.failures << title.title + ": " + problem;
                break;
            }
            TitleCover cover;
            cover.image = prepared.image;
            cover.thumbnail = prepared.thumbnail;
            cover.mbid = answer.mbid;
            cover.source = answer.url;
            cover.added = QDate::currentDate().toString(Qt::ISODate);
            try {
                WriteCover(title.idcd, cover);
                ++summary_.fetched;
            } catch (const VbError& error) {
                // The catalogue cannot take more: what was stored stays, the rest waits.
                summary_.failures << title.title + ": " + error.Description;
                summary_.stopped = true;
                reject();
                return;
            }
            break;
        }
        case CoverAnswer::Outcome::NoCover:
            ++summary_.without;
            break;
        case CoverAnswer::Outcome::Failed:
            summary_.failures << title.title + ": " + answer.problem;
            break;
    }
    barProgress->setValue(next_);
    Next();
}

void FetchMissingCovers(const QList<long>& titleIds, QWidget* owner) {
    frmFetchCovers window(titleIds, owner);
    if (window.Count() == 0) {
        MsgBox("No title in the list has a release without a cover.", vbInformation, kCaption);
        return;
    }
    const frmFetchCovers::Summary summary = window.Run();
    QString text = QString("%1 tried, %2 fetched, %3 without a cover, %4 failed")
                       .arg(summary.tried)
                       .arg(summary.fetched)
                       .arg(summary.without)
                       .arg(summary.failures.size());
    if (!summary.failures.isEmpty()) text += ":\n" + summary.failures.join("\n");
    if (summary.stopped)
        text = QString("Stopped after %1 of %2 titles; the next fetch goes on with the rest.\n\n")
                   .arg(summary.tried)
                   .arg(window.Count()) +
               text;
    MsgBox(text, summary.failures.isEmpty() ? vbInformation : vbExclamation, kCaption);
}
