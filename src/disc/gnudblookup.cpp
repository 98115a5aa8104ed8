#include "disc/gnudblookup.h"

#include <QUrl>

#include "toolkit/vbruntime.h"

namespace {

QString Encoded(const QString& text) {
    return QString::fromLatin1(QUrl::toPercentEncoding(text));
}

}  // namespace

GnudbLookup::GnudbLookup(const QString& server, const QString& user, QObject* parent)
    : OnlineDatabase("gnudb", server, parent), user_(user) {}

void GnudbLookup::Start(const OnlineDiscIds& ids) {
    emit Progress("Asking gnudb...");
    QStringList query{"cddb", "query", ids.freedbId, QString::number(ids.freedbOffsets.size())};
    for (int offset : ids.freedbOffsets) query << QString::number(offset);
    query << QString::number(ids.freedbSeconds);
    Command(query.join('+'), [this](const Answer& answer) {
        QString problem;
        switch (ReadCddbQueryAnswer(answer.body, entries_, problem)) {
            case CddbQueryResult::NoMatch:
                return Succeed({});
            case CddbQueryResult::Refused:
                return Fail(problem);
            case CddbQueryResult::Found:
                matches_.clear();
                return ReadNext();
        }
    });
}

void GnudbLookup::Command(const QString& command, AnswerHandler then) {
    const QString version = QString("%1.%2.%3").arg(App.Major).arg(App.Minor).arg(App.Revision);
    // gnudb wants the user's e-mail address in the greeting: "name@host" goes in as its user
    // and host.
    const qsizetype at = user_.lastIndexOf('@');
    const QString name = at > 0 ? user_.left(at) : user_;
    const QString host = at > 0 ? user_.mid(at + 1) : QString("localhost");
    const QString hello = QStringList{Encoded(name), Encoded(host), App.Title, version}.join('+');
    Get("/~cddb/cddb.cgi?cmd=" + command + "&hello=" + hello + "&proto=6", 0,
        [this, then](const Answer& answer) {
            if (answer.status == 0) return Fail(answer.failure);
            if (answer.status != 200) return Fail(UnexpectedStatus(answer));
            then(answer);
        });
}

void GnudbLookup::ReadNext() {
    if (matches_.size() == entries_.size()) return Succeed(matches_);
    const CddbEntryName entry = entries_[matches_.size()];
    emit Progress(
        QString("Reading gnudb entry %1 of %2...").arg(matches_.size() + 1).arg(entries_.size()));
    Command("cddb+read+" + Encoded(entry.genre) + "+" + Encoded(entry.discId),
            [this, entry](const Answer& answer) {
                DiscMatch match;
                QString problem;
                if (!ReadCddbEntry(answer.body, entry, match, problem)) return Fail(problem);
                matches_ << match;
                ReadNext();
            });
}
