// Reading a disc into the title editor: an audio CD's tracks, identity, title and artist; a disc
// already catalogued; the online look-up offered for a disc without CD-Text. And "Find this disc"
// on the main window: the catalogued disc selected in tree and list, and an unknown disc named.

#include <QLineEdit>

#include <QPlainTextEdit>
#include <QTreeWidget>

#include "disc/audiodisc.h"
#include "disc/discimages.h"
#include "disc/lookupanswers.h"
#include "disc/lookupserver.h"
#include "disc/onlinediscids.h"
#include "editor/discsource.h"
#include "editor/editortest.h"
#include "editor/frmLookup.h"
#include "shell/mGlobalFunctions.h"
#include "toolkit/controls/ctlGoldButton.h"
#include "toolkit/platform/mUtility.h"

using namespace editortest;
using namespace discimages;

namespace {

const qlonglong kBlueHoursId = 0x82400;
const QString kAudioOffer = "\n\nRead the disc from an image file (cue sheet, toc or nrg) instead?";

QString BlueHoursCue(const QString& folder) {
    return MakeCue(folder, "bluehours", "Blue Hours", "Ann Tanner",
                   {{"00:00:00", "Morning"}, {"03:00:00", ""}, {"05:30:00", "Caf\xe9 Night"}});
}

QString TracksText(frmEdit* form) {
    return form->TracksListing() ? form->TracksListing()->Text() : QString();
}

const MsgBoxCall kLookupOffer{
    "The disc carries no CD-Text: no title, artist or track names.\n\nLook it up online in "
    "MusicBrainz and gnudb?",
    vbYesNo + vbQuestion, "Read disc"};

// The online identity of the three-track disc that PlainCue reads.
OnlineDiscIds PlainDiscIds() {
    OnlineDiscIds ids;
    QString problem;
    ComputeOnlineDiscIds(lookupanswers::ThreeTracks(), ids, problem);
    return ids;
}

}  // namespace

class ReadDiscTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<ScriptedDialogs> dialogs;
    std::unique_ptr<RunningProgram> program;
    std::unique_ptr<QTemporaryDir> images;
    std::unique_ptr<lookupserver::LookupServer> server;
    QStringList chosen;
    QString nextChoice;

    void Choose(const QString& source) { nextChoice = source; }

    // A look-up server that MusicBrainz and gnudb are looked for at until the test's end.
    lookupserver::LookupServer& StartServer() {
        server = std::make_unique<lookupserver::LookupServer>();
        qputenv("VELMORA_MUSICBRAINZ_SERVER", server->url().toLatin1());
        qputenv("VELMORA_GNUDB_SERVER", server->url().toLatin1());
        return *server;
    }

    // Reads the three-track disc without CD-Text into a new audio title from its image, after
    // prepare, answering Yes to every box.
    QPointer<frmEdit> ReadPlainDisc(const std::function<void(frmEdit*)>& prepare = {}) {
        SelectNode("root");
        QPointer<frmEdit> form = OpenEditor(true);
        ChooseTitleKind(form, "Audio", "Jazz", "Album");
        if (prepare) prepare(form);
        dialogs->defaultMsgBoxAnswer = vbYes;
        Choose(MakeCue(images->path(), "plain", "", "",
                       {{"00:00:00", ""}, {"03:00:00", ""}, {"05:30:00", ""}}));
        form->cmdReadDisc_Click();
        return form;
    }

  private slots:
    void init() {
        dialogs = std::make_unique<ScriptedDialogs>();
        program = std::make_unique<RunningProgram>();
        images = std::make_unique<QTemporaryDir>();
        chosen.clear();
        nextChoice.clear();
        SetDiscDriveLocator([] { return QString(); });
        SetDiscSourceChooser([this](DiscChoice choice) {
            chosen << QString::number(int(choice));
            return nextChoice;
        });
        QVERIFY(gMainForm);
    }
    void cleanup() {
        SetDiscDriveLocator({});
        SetDiscSourceChooser({});
        SetDocumentOpener({});
        qunsetenv("VELMORA_MUSICBRAINZ_SERVER");
        qunsetenv("VELMORA_GNUDB_SERVER");
        program.reset();
        dialogs.reset();
        images.reset();
        server.reset();
    }

    void audioDiscFillsTheTitleAndSaves() {
        SelectNode("root");
        QPointer<frmEdit> form = OpenEditor(true);
        QVERIFY(!form->cmdReadDisc->isEnabled());
        ChooseTitleKind(form, "Audio", "Jazz", "Album");
        QVERIFY(form->cmdReadDisc->isEnabled());

        // No drive: the box offers an image file, which the user picks.
        dialogs->answerMsgBox(vbYes);
        Choose(BlueHoursCue(images->path()));
        form->cmdReadDisc_Click();
        QCOMPARE(dialogs->takeBoxes(), Boxes({{"No CD drive was found." + kAudioOffer,
                                               vbYesNo + vbExclamation, "Read disc"}}));
        QCOMPARE(chosen, QStringList{QString::number(int(DiscChoice::AudioImage))});
        QCOMPARE(form->txtTitle->text(), QString("Blue Hours"));
        QCOMPARE(form->Combo1[1]->currentText(), QString("Ann Tanner"));
        QCOMPARE(TracksText(form), QString::fromUtf8("Morning\r\nTrack 2\r\nCafé Night"));
        // The artist is text until the title is saved: Cancel leaves no vendor behind.
        const QString annTanner = "vendor where idplatform = 1 and nmvendor = 'Ann Tanner'";
        QVERIFY(dialogs->inputs.isEmpty());
        QCOMPARE(RowCount(annTanner), 0L);
        form->cmdCancel_Click();
        QCOMPARE(RowCount(annTanner), 0L);

        // Renamed and deleted with the gold buttons, it changes in the list alone.
        form = OpenEditor(true);
        ChooseTitleKind(form, "Audio", "Jazz", "Album");
        const int vendors = form->Combo1[1]->count();
        Choose(BlueHoursCue(images->path()));
        dialogs->answerMsgBox(vbYes);
        form->cmdReadDisc_Click();
        dialogs->answerInput("Ann Tanner Trio");
        form->cmdVendor_Click(1);
        QCOMPARE(form->Combo1[1]->currentText(), QString("Ann Tanner Trio"));
        form->cmdVendor_Click(2);
        QCOMPARE(form->Combo1[1]->count(), vendors);
        Choose(BlueHoursCue(images->path()));
        dialogs->answerMsgBox(vbYes);
        form->cmdReadDisc_Click();
        dialogs->takeBoxes();
        QCOMPARE(RowCount("vendor where nmvendor = 'Ann Tanner Trio'"), 0L);

        // Update adds it, once, as the title's vendor.
        form->cmdOK_Click();
        QVERIFY(!gEditForm);
        const QString id = QString::number(gCurrentTitleId);
        QCOMPARE(Scalar("select nmvendor from vendor, title where vendor.idvendor = "
                        "title.idvendor and idcd = " +
                        id)
                     .toString(),
                 QString("Ann Tanner"));
        QCOMPARE(RowCount(annTanner), 1L);
        QCOMPARE(Scalar("select TitleID from title where idcd = " + id).toLongLong(), kBlueHoursId);
        QCOMPARE(Scalar("select NumTracks from title where idcd = " + id).toInt(), 3);
        QCOMPARE(Scalar("select TrackName from Tracks where idcd = " + id + " and TrackID = 2")
                     .toString(),
                 QString::fromUtf8("Café Night"));
    }

    void lookUpADiscWithoutCdText() {
        using namespace lookupanswers;
        lookupserver::LookupServer& server = StartServer();
        const OnlineDiscIds ids = PlainDiscIds();
        const QByteArray id = ids.musicBrainzId.toLatin1();
        server.answer("/ws/2/discid/" + id,
                      lookupserver::Body(Releases({Release(
                          "9e1d-release", "Blue Hours", "1999-04-12", "GB", Credit("Ann Tanner"),
                          {Medium(1, id, Tracks({"Morning", "Noon", "Night"}))})})));
        server.answer("cmd=cddb+query",
                      lookupserver::Body(Cddb({"200 jazz " + ids.freedbId.toLatin1() +
                                               " Ann Tanner / Blue Hours (CDDB)"})));
        server.answer(
            "cmd=cddb+read",
            lookupserver::Body(Cddb({"210 jazz " + ids.freedbId.toLatin1(),
                                     "DTITLE=Ann Tanner / Blue Hours (CDDB)", "TTITLE0=Morn",
                                     "TTITLE1=It's noon", "TTITLE2=Night", "."})));

        QStringList shown;
        OnLookupChoice([&shown](frmLookup* window) {
            shown = MatchRows(window, 8);
            // The disc ID's own match is preselected; the user takes the other.
            QCOMPARE(window->lstMatches->currentIndex().row(), 0);
            window->lstMatches->setCurrentItem(window->lstMatches->topLevelItem(1));
            QCOMPARE(window->txtTracks->toPlainText(), QString("1. Morn\n2. It's noon\n3. Night"));
            QTest::mouseClick(window->cmdUse, Qt::LeftButton);
        });
        QPointer<frmEdit> form = ReadPlainDisc([](frmEdit* form) {
            QVERIFY(!form->cmdLookup->isEnabled());
            form->Memo->setPlainText("Bought in Leeds");
        });
        QCOMPARE(
            dialogs->takeBoxes(),
            Boxes({{"No CD drive was found." + kAudioOffer, vbYesNo + vbExclamation, "Read disc"},
                   kLookupOffer}));
        QCOMPARE(shown, QStringList({"Ann Tanner;Blue Hours;1999;GB;CD;1;3;MusicBrainz",
                                     "Ann Tanner;Blue Hours (CDDB);;;CD;1;3;gnudb"}));
        QVERIFY(form->cmdLookup->isEnabled());
        QCOMPARE(form->txtTitle->text(), QString("Blue Hours (CDDB)"));
        QCOMPARE(form->Combo1[1]->currentText(), QString("Ann Tanner"));
        QCOMPARE(TracksText(form), QString("Morn\r\nIt's noon\r\nNight"));
        QCOMPARE(form->Memo->toPlainText(), "Bought in Leeds\ngnudb jazz/" + ids.freedbId);

        form->cmdOK_Click();
        QVERIFY(!gEditForm);
        QCOMPARE(
            Scalar("select TitleID from title where idcd = " + QString::number(gCurrentTitleId))
                .toLongLong(),
            qlonglong(0x82400));
    }

    void releaseWithoutTracksOffersItsPage() {
        using namespace lookupanswers;
        lookupserver::LookupServer& server = StartServer();
        const QByteArray id = PlainDiscIds().musicBrainzId.toLatin1();
        server.answer(
            "/ws/2/discid/" + id,
            lookupserver::Body(Releases({Release("9e1d-release", "Blue Hours", "1999", "GB",
                                                 Credit("Ann Tanner"), {Medium(1, id, "[]")})})));
        server.answer("cmd=cddb+query", lookupserver::Body(Cddb({"202 No match found"})));
        QList<QUrl> opened;
        SetDocumentOpener([&opened](const QUrl& url) {
            opened << url;
            return true;
        });
        QPointer<frmEdit> form = ReadPlainDisc();
        QCOMPARE(
            dialogs->takeBoxes(),
            Boxes({{"No CD drive was found." + kAudioOffer, vbYesNo + vbExclamation, "Read disc"},
                   kLookupOffer,
                   {"MusicBrainz knows this disc as \"Blue Hours\" by Ann Tanner, but the "
                    "release was found without a track list.\n\nOpen the release's page, "
                    "where the tracks can be added?",
                    vbYesNo + vbQuestion, "Look up"}}));
        QCOMPARE(opened, QList<QUrl>{QUrl(server.url() + "/release/9e1d-release")});
        QVERIFY(form->txtTitle->text().isEmpty());
    }

    void cataloguedDiscOffersItsTitle() {
        const long stored = StoreAudioTitle("Blue Hours (first copy)");
        gDatabase->Execute("update title set TitleID = " + QString::number(kBlueHoursId) +
                           " where idcd = " + QString::number(stored));
        const QString cue = BlueHoursCue(images->path());
        SetDiscDriveLocator([cue] { return cue; });
        SelectNode("root");
        QPointer<frmEdit> form = OpenEditor(true);
        ChooseTitleKind(form, "Audio", "Pop", "Album");

        // No: the form stays as it was.
        dialogs->answerMsgBox(vbNo);
        form->cmdReadDisc_Click();
        QCOMPARE(dialogs->takeBoxes(),
                 Boxes({{"This disc (82400) is already in the catalogue as \"Blue Hours (first "
                         "copy)\".\n\nOpen that title instead?",
                         vbYesNo + vbQuestion, "Read disc"}}));
        QVERIFY(form->txtTitle->text().isEmpty());
        QVERIFY(!form->TracksListing());

        // Yes: this window goes and the stored title opens on the edit road.
        QString openedTitle, openedName;
        testsupport::RejectNextModal([&](QWidget* window) {
            auto* editor = qobject_cast<frmEdit*>(window);
            QVERIFY(editor);
            openedTitle = editor->windowTitle();
            openedName = editor->txtTitle->text();
        });
        dialogs->answerMsgBox(vbYes);
        form->cmdReadDisc_Click();
        QTRY_COMPARE(openedName, QString("Blue Hours (first copy)"));
        QCOMPARE(openedTitle, QString("Edit Title"));
        QCOMPARE(gCurrentTitleId, stored);
        QCOMPARE(TitleCount(), 1L);

        // Reading the same disc into its own title is no duplicate.
        QPointer<frmEdit> own = OpenEditor(false, stored);
        own->cmdReadDisc_Click();
        QCOMPARE(TracksText(own), QString::fromUtf8("Morning\r\nTrack 2\r\nCafé Night"));
    }

    void selectsTheCataloguedTitle() {
        StoreAudioTitle("Other");
        const long stored = StoreAudioTitle("Blue Hours");
        gDatabase->Execute("update title set TitleID = 533504 where idcd = " +
                           QString::number(stored));
        const QString cue = MakeCue(images->path(), "blue", "Blue Hours", "",
                                    {{"00:00:00", ""}, {"03:00:00", ""}, {"05:30:00", ""}});
        SetDiscDriveLocator([cue] { return cue; });
        SelectNode("root");

        gMainForm->ToolbarButton("finddisc")->trigger();
        QVERIFY(dialogs->msgBoxes.isEmpty());
        QCOMPARE(gMainForm->NodeKey(gMainForm->SelectedNode()), QString("key1key4"));
        const int row = gMainForm->SelectedListIndex();
        QVERIFY(row >= 0);
        QCOMPARE(gMainForm->ListItemTag(row), QString::number(stored));

        // A title whose platform is hidden is found under the root.
        gDatabase->Execute("update platform set visible = false where idplatform = 1");
        FillTree(1, "");
        gMainForm->ToolbarButton("finddisc")->trigger();
        QCOMPARE(gMainForm->NodeKey(gMainForm->SelectedNode()), QString("root"));
        QCOMPARE(gMainForm->ListItemTag(gMainForm->SelectedListIndex()), QString::number(stored));
    }

    void unknownDiscIsNamed() {
        const QString cue = MakeCue(images->path(), "new", "Fresh Album", "",
                                    {{"00:00:00", ""}, {"01:00:00", ""}, {"02:00:00", ""}});
        SetDiscDriveLocator([cue] { return cue; });
        SelectNode("root");
        gMainForm->activateWindow();
        QTest::keyClick(gMainForm, Qt::Key_D, Qt::ControlModifier);
        // 30600: the start times 0:02:00, 1:02:00 and 2:02:00 packed as 0x000200, 0x010200 and
        // 0x020200, added up.
        QCOMPARE(dialogs->takeBoxes(),
                 Boxes({{"The disc \"Fresh Album\" (30600) is not in the catalogue.", vbInformation,
                         "Find this disc"}}));
    }
};

VELMORA_TEST_MAIN(ReadDiscTest)
#include "readdisc_test.moc"
