#pragma once

#include "disc/cddbanswer.h"
#include "disc/onlinedatabase.h"
#include "disc/onlinediscids.h"

// Asks a CDDB server such as gnudb over HTTP (cddb.cgi, protocol level 6) for the entries of
// a disc: one query, then one read per entry it names.
class GnudbLookup : public OnlineDatabase {
    Q_OBJECT

  public:
    GnudbLookup(const QString& server, const QString& user, QObject* parent = nullptr);

    void Start(const OnlineDiscIds& ids);

  private:
    void Command(const QString& command, AnswerHandler then);
    void ReadNext();

    QString user_;
    QList<CddbEntryName> entries_;
    QList<DiscMatch> matches_;
};
