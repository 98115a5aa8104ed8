#pragma once

#include "disc/cddbanswer.h"
#include "disc/onlinedatabase.h"
#include "disc/onlinediscids.h"

// Asks a CDDB server such as gnudb over HTTP (cddb.cgi, protocol level 6) for the entries of
// a disc: one query, then one read per entry it names. The entries read are offered even when
// others could not be read.
class GnudbLookup : public OnlineDatabase {
    Q_OBJECT

  public:
    GnudbLookup(const QString& server, const QString& user, QObject* parent = nullptr);

    void Start(const OnlineDiscIds& ids);

  private:
    QString Path(const QString& command) const;
    // Sends a command whose failure ends the look-up.
    void Command(const QString& command, AnswerHandler then);
    void ReadNext();

    QString user_;
    QList<CddbEntryName> entries_;
    qsizetype next_ = 0;
    QList<DiscMatch> matches_;
    // Why each entry that could not be read was not.
    QStringList unread_;
};
