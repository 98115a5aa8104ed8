// The online look-up against a server of our own that answers as MusicBrainz and gnudb do:
// the matches their answers give, and the failures, time-out and cancel that leave nothing
// found.

#include <QLabel>
#include <QPushButton>
#include <QTcpServer>
#include <QTreeWidget>

#include "disc/cddbanswer.h"
#include "disc/gnudblookup.h"
#include "disc/lookupanswers.h"
#include "disc/lookupserver.h"
#include "disc/lookupsettings.h"
#include "disc/musicbrainzlookup.h"
#include "disc/onlinediscids.h"
#include "editor/frmLookup.h"
#include "support/testsupport.h"
#include "toolkit/vb/vbruntime.h"

using namespace lookupanswers;
using namespace lookupserver;

namespace {

struct Outcome {
    QList<DiscMatch> matches;
    QString problem;
    bool finished = false;
};

Outcome Ask(OnlineDatabase& database, const std::function<void()>& start) {
    Outcome outcome;
    QEventLoop loop;
    QObject::connect(&database, &OnlineDatabase::Finished, &loop,
                     [&](const QList<DiscMatch>& matches, const QString& problem) {
                         outcome = {matches, problem, true};
                         loop.quit();
                     });
    QTimer::singleShot(30000, &loop, &QEventLoop::quit);
    start();
    loop.exec();
    return outcome;
}

OnlineDiscIds Ids(const TableOfContents& toc = ThreeTracks()) {
    OnlineDiscIds ids;
    QString problem;
    if (!ComputeOnlineDiscIds(toc, ids, problem)) qWarning() << problem;
    return ids;
}

Outcome AskMusicBrainz(const LookupServer& server, int timeoutMs = 15000) {
    MusicBrainzLookup lookup(server.url());
    lookup.RequestTimeoutMs = timeoutMs;
    return Ask(lookup, [&] { lookup.Start(Ids()); });
}

Outcome AskGnudb(const LookupServer& server, int timeoutMs = 15000,
                 const QString& user = "tester") {
    GnudbLookup lookup(server.url(), user);
    lookup.RequestTimeoutMs = timeoutMs;
    return Ask(lookup, [&] { lookup.Start(Ids()); });
}

QStringList Summary(const QList<DiscMatch>& matches) {
    QStringList lines;
    for (const DiscMatch& m : matches)
        lines << QStringList{m.source,
                             m.identifier,
                             m.artist,
                             m.title,
                             m.year,
                             m.country,
                             m.format,
                             QString("%1/%2").arg(m.discNumber).arg(m.discCount),
                             m.discIdMatched ? "id" : "toc",
                             m.tracks.join("|")}
                     .join(";");
    return lines;
}

const QByteArray kEntryRead = "cmd=cddb+read+";

}  // namespace

class OnlineLookupTest : public QObject {
    Q_OBJECT

  private slots:
    void discIdsOfKnownTables() {
        // libdiscid's own example: 22 tracks, lead-out at 303602.
        const QList<int> offsets{150,    9700,   25887,  39297,  53795,  63735,  77517,  94877,
                                 107270, 123552, 135522, 148422, 161197, 174790, 192022, 205545,
                                 218010, 228700, 239590, 255470, 266932, 288750};
        TableOfContents toc;
        for (int offset : offsets) toc.trackStarts << offset - 150;
        toc.leadout = 303602 - 150;
        OnlineDiscIds ids = Ids(toc);
        QCOMPARE(ids.musicBrainzId, QString("xUp1F2NkfP8s8jaeFn_Av3jNEI4-"));
        QCOMPARE(ids.freedbId, QString("370fce16"));
        QVERIFY(ids.musicBrainzToc.startsWith("1 22 303602 150 9700 "));
        QCOMPARE(ids.freedbOffsets, offsets);
        QCOMPARE(ids.freedbSeconds, 303602 / 75);

        // An enhanced CD: the three tracks of ThreeTracks() and a data track in a second session.
        // MusicBrainz knows the audio session alone, which ends 11,400 frames before the data
        // track: the same disc as the plain CD of those three tracks; CDDB counts all four.
        TableOfContents enhanced = ThreeTracks();
        enhanced.trackStarts << enhanced.leadout + 11400;
        enhanced.leadout = 60000;
        enhanced.trailingDataTracks = 1;
        ids = Ids(enhanced);
        QCOMPARE(ids.musicBrainzId, Ids().musicBrainzId);
        QCOMPARE(ids.musicBrainzToc, QString("1 3 25650 150 13650 24900"));
        QCOMPARE(ids.audioTracks, 3);
        QCOMPARE(ids.freedbOffsets, QList<int>({150, 13650, 24900, 37050}));
        QCOMPARE(ids.freedbSeconds, 60150 / 75);
    }

    void musicBrainzAnswers() {
        LookupServer server;
        const QByteArray id = Ids().musicBrainzId.toLatin1();
        // A single-disc release, and a two-disc set whose second disc is this one.
        server.answer(
            "/ws/2/discid/" + id,
            Body(Releases(
                {Release(
                     "rel-1", "Blue Hours", "1999-04-12", "GB",
                     "[{\"name\":\"Ann Tanner\",\"joinphrase\":\" & \"},{\"name\":\"The "
                     "Quiet\",\"joinphrase\":\"\"}]",
                     {Medium(1, id,
                             "[{\"position\":2,\"title\":\"Noon\"},{\"position\":1,\"title\":"
                             "\"Morning\"},{\"position\":3,\"title\":\"Caf\xc3\xa9 Night\"}]")}),
                 Release("rel-2", "Blue Hours Deluxe", "2004", "XE", Credit("Ann Tanner"),
                         {Medium(1, "other", Tracks({"A", "B", "C", "D", "E"})),
                          Medium(2, id, Tracks({"Dawn", "Noon (live)", "Dusk"}))})})));
        Outcome outcome = AskMusicBrainz(server);
        QVERIFY(outcome.problem.isEmpty());
        QCOMPARE(Summary(outcome.matches),
                 QStringList({QString::fromUtf8("MusicBrainz;rel-1;Ann Tanner & The Quiet;Blue "
                                                "Hours;1999;GB;CD;1/1;id;Morning|Noon|Café Night"),
                              "MusicBrainz;rel-2;Ann Tanner;Blue Hours Deluxe;2004;XE;CD;2/2;id;"
                              "Dawn|Noon (live)|Dusk"}));
        QCOMPARE(server.targets, QStringList{"/ws/2/discid/" + id +
                                             "?inc=artist-credits+recordings&cdstubs=no&fmt=json"});
        QVERIFY2(server.userAgent.startsWith("Velmora/") &&
                     server.userAgent.endsWith(" ( http://www.dorviksoftware.example )"),
                 server.userAgent.constData());

        // An unknown disc ID: the table of contents finds two similar releases, asked a second
        // after the first request, as the service allows no more.
        server.clear();
        server.answer("/ws/2/discid/-?toc=1+3+25650+150+13650+24900",
                      Body(Releases({Release("rel-3", "Hours", "", "", Credit("Tanner"),
                                             {Medium(1, "x", Tracks({"1", "2", "3"}))}),
                                     Release("rel-4", "Other", "2001-01", "US", Credit("B"),
                                             {Medium(1, "y", Tracks({"a", "b", "c"})),
                                              Medium(2, "z", Tracks({"d"}))})})));
        outcome = AskMusicBrainz(server);
        QCOMPARE(Summary(outcome.matches),
                 QStringList({"MusicBrainz;rel-3;Tanner;Hours;;;CD;1/1;toc;1|2|3",
                              "MusicBrainz;rel-4;B;Other;2001;US;CD;1/2;toc;a|b|c"}));
        QCOMPARE(server.targets.size(), 2);
        QVERIFY(server.times[1] - server.times[0] >= 990);

        // A 503 is waited out as Retry-After says and asked once more; a second one is final.
        server.clear();
        server.answer("/ws/2/discid/" + id,
                      Status("503 Service Unavailable", "Retry-After: 1\r\n"));
        server.answer("/ws/2/discid/" + id,
                      Body(Releases({Release("rel-1", "Blue Hours", "1999", "GB", Credit("A"),
                                             {Medium(1, id, Tracks({"x", "y", "z"}))})})));
        QCOMPARE(AskMusicBrainz(server).matches.size(), 1);
        QCOMPARE(server.targets.size(), 2);
    }

    void cddbAnswers() {
        LookupServer server;
        const OnlineDiscIds ids = Ids();
        // 200 names one entry; its read (210) splits the disc title and a track name over
        // several lines.
        server.answer(
            "cmd=cddb+query+",
            Body(Cddb({"200 rock " + ids.freedbId.toLatin1() + " Ann Tanner / Blue Hours"})));
        server.answer(
            kEntryRead,
            Body(Cddb({"210 rock " + ids.freedbId.toLatin1() + " CD database entry follows",
                       "# xmcd", "#", "DISCID=" + ids.freedbId.toLatin1(),
                       "DTITLE=Ann Tanner / Blue Ho", "DTITLE=urs", "DYEAR=1999", "DGENRE=Jazz",
                       "TTITLE0=Morning", "TTITLE1=A very long track n", "TTITLE1=ame\\tin two",
                       "TTITLE2=Caf\xc3\xa9 Night", "EXTD=", "PLAYORDER=", "."})));
        Outcome outcome = AskGnudb(server);
        QVERIFY2(outcome.problem.isEmpty(), qPrintable(outcome.problem));
        QCOMPARE(Summary(outcome.matches),
                 QStringList{QString::fromUtf8("gnudb;rock/%1;Ann Tanner;Blue Hours;1999;;CD;1/1;"
                                               "toc;Morning|A very long track name in two|Café "
                                               "Night")
                                 .arg(ids.freedbId)});
        QCOMPARE(server.targets.first(),
                 "/~cddb/cddb.cgi?cmd=cddb+query+" + ids.freedbId +
                     "+3+150+13650+24900+342&hello=tester+localhost+Velmora+" +
                     QString("%1.%2.%3&proto=6").arg(App.Major).arg(App.Minor).arg(App.Revision));
        QVERIFY(server.targets[1].startsWith("/~cddb/cddb.cgi?cmd=cddb+read+rock+" + ids.freedbId +
                                             "&"));

        // 211: four inexact matches, each read; one entry of an older level is in Latin-1,
        // one names its disc without an artist, one cannot be read and is named while the
        // others are still offered.
        server.clear();
        server.answer(
            "cmd=cddb+query+",
            Body(Cddb({"211 Found inexact matches, list follows (until terminating `.')",
                       "rock 0a0b0c03 Ann Tanner / Blue Hours", "jazz 0a0b0c04 Caf\xe9 / Noir",
                       "misc 0a0b0c05 Sampler", "blues 0a0b0c06 Lost / Entry", "."})));
        server.answer("read+rock", Body(Cddb({"210 rock 0a0b0c03", "DTITLE=Ann Tanner / Blue Hours",
                                              "DYEAR=", "TTITLE0=a", "TTITLE1=b", "TTITLE2=c",
                                              "EXTD= YEAR: 1987 ID3G:", "EXTD=  17", "."})));
        server.answer("read+jazz", Body(Cddb({"210 jazz 0a0b0c04", "DTITLE=Caf\xe9 / Noir",
                                              "TTITLE0=D\xe9j\xe0", "TTITLE2=late", "."})));
        server.answer("read+misc", Body(Cddb({"210 misc 0a0b0c05", "DTITLE=Sampler", "."})));
        server.answer("read+blues", Body(Cddb({"403 Database entry is corrupt."})));
        outcome = AskGnudb(server);
        QCOMPARE(
            Summary(outcome.matches),
            QStringList({"gnudb;rock/0a0b0c03;Ann Tanner;Blue Hours;1987;;CD;1/1;toc;a|b|c",
                         QString::fromUtf8("gnudb;jazz/0a0b0c04;Café;Noir;;;CD;1/1;toc;Déjà||late"),
                         "gnudb;misc/0a0b0c05;Sampler;Sampler;;;CD;1/1;toc;"}));
        QCOMPARE(outcome.problem, QString("gnudb (127.0.0.1): entry blues/0a0b0c06 could not be "
                                          "read: the server answered \"403 Database entry is "
                                          "corrupt.\"."));

        // 202: no match, asked by a user who gave an e-mail address. An HTTP error names the
        // server and its words.
        server.clear();
        server.answer("cmd=cddb+query+", Body(Cddb({"202 No match found"})));
        outcome = AskGnudb(server, 15000, "me@example.org");
        QVERIFY(outcome.finished && outcome.matches.isEmpty() && outcome.problem.isEmpty());
        QVERIFY(server.targets.first().contains("&hello=me+example.org+Velmora+"));
        server.clear();
        server.answer("cmd=cddb+query+", Status("502 Bad Gateway"));
        QCOMPARE(AskGnudb(server).problem,
                 QString("gnudb (127.0.0.1): the server answered with HTTP status 502."));
    }

    void answersThatDidNotArriveWholeAreFailures() {
        LookupServer server;
        const QByteArray id = Ids().musicBrainzId.toLatin1();
        // 57 tracks, of which a server that closes early sends a part.
        QList<QByteArray> entry{"210 rock 0a0b0c03", "DTITLE=Long / Disc"};
        for (int track = 0; track < 57; ++track)
            entry << "TTITLE" + QByteArray::number(track) + "=Track " + QByteArray::number(track);
        entry << ".";
        const QByteArray whole = Cddb(entry);
        Reply cut = Body(whole.left(whole.size() * 2 / 3));
        cut.announced = whole.size();
        const QString cutOff = QString("the answer broke off after %1 of %2 bytes.")
                                   .arg(cut.body.size())
                                   .arg(whole.size());
        server.answer("cmd=cddb+query+", Body(Cddb({"200 rock 0a0b0c03 Long / Disc"})));
        server.answer(kEntryRead, cut);
        Outcome outcome = AskGnudb(server);
        QVERIFY(outcome.matches.isEmpty());
        QCOMPARE(outcome.problem,
                 "gnudb (127.0.0.1): entry rock/0a0b0c03 could not be read: " + cutOff);

        // The same entry without its closing line, and a list of matches without one.
        server.clear();
        entry.removeLast();
        server.answer("cmd=cddb+query+", Body(Cddb({"200 rock 0a0b0c03 Long / Disc"})));
        server.answer(kEntryRead, Body(Cddb(entry)));
        outcome = AskGnudb(server);
        QVERIFY(outcome.matches.isEmpty());
        const QString unended = "the server's answer ended before its closing \".\" line.";
        QCOMPARE(outcome.problem,
                 "gnudb (127.0.0.1): entry rock/0a0b0c03 could not be read: " + unended);
        server.clear();
        server.answer("cmd=cddb+query+",
                      Body(Cddb({"211 inexact matches", "rock 0a0b0c03 A / B"})));
        QCOMPARE(AskGnudb(server).problem, "gnudb (127.0.0.1): " + unended);

        // A MusicBrainz answer cut off, and one packed to a hundred times its size.
        const QByteArray releases =
            Releases({Release("rel-1", "Blue Hours", "1999", "GB", Credit("A"),
                              {Medium(1, id, Tracks({"x", "y", "z"}))})});
        server.clear();
        cut = Body(releases.left(100));
        cut.announced = releases.size();
        server.answer(id, cut);
        outcome = AskMusicBrainz(server);
        QVERIFY(outcome.matches.isEmpty());
        QCOMPARE(outcome.problem, QString("MusicBrainz (127.0.0.1): the answer broke off after "
                                          "100 of %1 bytes.")
                                      .arg(releases.size()));
        server.clear();
        Reply packed = Body(qCompress(releases).mid(4));
        packed.headers = "Content-Encoding: deflate\r\n";
        server.answer(id, packed);
        outcome = AskMusicBrainz(server);
        QVERIFY2(outcome.problem.isEmpty(), qPrintable(outcome.problem));
        QCOMPARE(outcome.matches.size(), 1);
        server.clear();
        Reply bomb = Body(qCompress(QByteArray(64 * 1024 * 1024, ' '), 9).mid(4));
        bomb.headers = packed.headers;
        server.answer(id, bomb);
        outcome = AskMusicBrainz(server);
        QVERIFY(outcome.matches.isEmpty());
        QVERIFY2(outcome.problem.startsWith("MusicBrainz (127.0.0.1): the answer ") &&
                     !outcome.problem.contains("JSON"),
                 qPrintable(outcome.problem));

        // Through the window, a cut-off answer is a failure and nothing to choose from.
        server.clear();
        server.answer("/ws/2/discid/", cut);
        server.answer("cmd=cddb+query+", Body(Cddb({"200 rock 0a0b0c03 Long / Disc"})));
        server.answer(kEntryRead, cut);
        ScriptedDialogs dialogs;
        frmLookup window(Ids(), {server.url(), server.url(), "tester"});
        QCOMPARE(window.Run(), frmLookup::Outcome::Failed);
        QCOMPARE(window.Problems().size(), 2);
        QVERIFY(!window.ChoiceIsShown());
    }

    void controlCharactersBecomeSpaces() {
        LookupServer server;
        const QByteArray id = Ids().musicBrainzId.toLatin1();
        server.answer(id, Body(Releases({Release(
                              "rel-1", "Blue\\u0007Hours\\tLive\\nEdition", "1999", "GB",
                              Credit("Ann\\u0000Tanner"),
                              {Medium(1, id, Tracks({"Morning\\r\\nNoon", "Dusk", "Night"}))})})));
        QCOMPARE(Summary(AskMusicBrainz(server).matches),
                 QStringList{"MusicBrainz;rel-1;Ann Tanner;Blue Hours Live Edition;1999;GB;CD;1/1;"
                             "id;Morning Noon|Dusk|Night"});

        server.clear();
        server.answer("cmd=cddb+query+", Body(Cddb({"200 rock 0a0b0c03 A / B"})));
        server.answer(kEntryRead,
                      Body(Cddb({"210 rock 0a0b0c03", "DTITLE=Ann\tTanner / Blue\aHours",
                                 QByteArray("TTITLE0=Mor\0ning", 16), "TTITLE1=Noon\x1b",
                                 "TTITLE2=\x7f"
                                 "Dusk",
                                 "."})));
        QCOMPARE(Summary(AskGnudb(server).matches),
                 QStringList{"gnudb;rock/0a0b0c03;Ann Tanner;Blue Hours;;;CD;1/1;toc;"
                             "Mor ning|Noon|Dusk"});
    }

    void failuresTimeOutAndCancel() {
        LookupServer server;
        const QByteArray id = Ids().musicBrainzId.toLatin1();
        const QString prefix = "MusicBrainz (127.0.0.1): ";
        const QByteArray valid = Releases({Release("rel-1", "Blue Hours", "1999", "GB", Credit("A"),
                                                   {Medium(1, id, Tracks({"x", "y", "z"}))})});

        server.answer(id, Body("{\"releases\": [ {\"id\": \"rel-1\", }"));
        const QString malformed = AskMusicBrainz(server).problem;
        QVERIFY2(malformed.startsWith(prefix + "the answer is not valid JSON ("),
                 qPrintable(malformed));
        server.clear();
        server.answer(id, Body(QByteArray(50 * 1024 * 1024, ' ')));
        QCOMPARE(AskMusicBrainz(server).problem, prefix + "the answer is larger than 4 MB.");

        // A server that drips one byte a second is given up at the time-out.
        server.clear();
        Reply drip = Body(Cddb({"202 No match found"}));
        drip.dripMs = 1000;
        server.answer("cmd=cddb", drip);
        QCOMPARE(AskGnudb(server, 2000).problem,
                 QString("gnudb (127.0.0.1): no complete answer came within 2 seconds."));

        // Nothing listens: the reason names the server.
        QTcpServer closed;
        closed.listen(QHostAddress::LocalHost);
        const QString nowhere = "http://127.0.0.1:" + QString::number(closed.serverPort());
        closed.close();
        MusicBrainzLookup refused(nowhere);
        const Outcome outcome = Ask(refused, [&] { refused.Start(Ids()); });
        QVERIFY2(outcome.problem.startsWith(prefix) &&
                     outcome.problem.contains("refused", Qt::CaseInsensitive),
                 qPrintable(outcome.problem));

        // Cancel while the window waits for the dripping server: the look-up ends at once,
        // with nothing found and no box.
        server.clear();
        server.answer("/ws/2/", drip);
        ScriptedDialogs dialogs;
        frmLookup window(Ids(), {server.url(), server.url(), "tester"});
        QTimer::singleShot(300, &window, [&window] {
            QVERIFY(window.isVisible());
            QCOMPARE(window.lblStatus->text(), QString("Asking MusicBrainz..."));
            QTest::mouseClick(window.cmdCancel, Qt::LeftButton);
        });
        QCOMPARE(window.Run(), frmLookup::Outcome::Cancelled);
        QVERIFY(dialogs.msgBoxes.isEmpty());
        QVERIFY(!window.ChoiceIsShown());
    }
};

VELMORA_TEST_MAIN(OnlineLookupTest)
#include "onlinelookup_test.moc"
