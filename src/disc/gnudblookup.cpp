#include "disc/gnudblookup.h"

#include <QUrl>

#include "toolkit/vb/vbruntime.h"

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
                unread_.clear();
                next_ = 0;
                return ReadNext();
        }
    });
}

QString GnudbLookup::Path(const QString& command) const {
    const QString version = QString("%1.%2.%3").arg(App.Major).arg(App.Minor).arg(App.Revision);
    // gnudb wants the user's e-mail address in the greeting: "name@host" goes in as its user
    // and host.
    const qsizetype at = user_.lastIndexOf('@');
    const QString name = at > 0 ? user_.left(at) : user_;
    const QString host = at > 0 ? user_.mid(at + 1) : QString("localhost");
    const QString hello = QStringList{Encoded(name), Encoded(host), App.Title, version}.join('+');
    return "/~cddb/cddb.cgi?cmd=" + command + "&hello=" + hello + "&proto=6";
}

void GnudbLookup::Command(const QString& command, AnswerHandler then) {
    Get(Path(command), 0, [this, then](const Answer& answer) {
        if (const QString problem = NotAnswered(answer); !problem.isEmpty()) return Fail(problem);
        then(answer);
    });
}

void GnudbLookup::ReadNext() {
    if (next_ == entries_.size()) return Finish(matches_, unread_.join(' '));
    const CddbEntryName entry = entries_[next_++];
    emit Progress(QString("Reading gnudb entry %1 of %2...").arg(next_).arg(entries_.size()));
    // An entry that cannot be read costs only itself: the user is told which it was.
    Get(Path("cddb+read+" + Encoded(entry.genre) + "+" + Encoded(entry.discId)), 0,
        [this, entry](const Answer& answer) {
            DiscMatch match;
            QString problem = NotAnswered(answer);
            if (problem.isEmpty() && ReadCddbEntry(answer.body, entry, match, problem))
                matches_ << match;
            else
                unread_ << "entry " + entry.genre + "/" + entry.discId +
                               " could not be read: " + problem;
            ReadNext();
        });
}
