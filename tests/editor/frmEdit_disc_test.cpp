// Reading a disc into the title editor: an audio CD's tracks, identity, title and artist; a
// data disc's listing, capacity and free space; a disc already catalogued; and readings that
// fail without touching the form.

#include <QLineEdit>
#include <QTemporaryDir>

#include "disc/audiodisc.h"
#include "disc/discimages.h"
#include "editor/discsource.h"
#include "editor/editortest.h"
#include "toolkit/ctlGoldButton.h"

using namespace editortest;
using namespace discimages;

namespace {

const qlonglong kBlueHoursId = 0x82400;
const QString kAudioOffer = "\n\nRead the disc from an image file (cue sheet, toc or nrg) instead?";
const QString kDataOffer =
    "\n\nList an ISO 9660 image file instead (Yes), or the folder of a mounted disc (No)?";

QString BlueHoursCue(const QString& folder) {
    return MakeCue(folder, "bluehours", "Blue Hours", "Ann Tanner",
                   {{"00:00:00", "Morning"}, {"03:00:00", ""}, {"05:30:00", "Caf\xe9 Night"}});
}

void ChooseTitleKind(frmEdit* form, const QString& platform, const QString& type,
                     const QString& specific) {
    ChooseText(form->Combo1[0], platform);
    ChooseText(form->Combo1[2], type);
    ChooseText(form->Combo1[3], specific);
}

QString TracksText(frmEdit* form) {
    return form->TracksListing() ? form->TracksListing()->Text() : QString();
}

}  // namespace

class frmEditDiscTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<ScriptedDialogs> dialogs;
    std::unique_ptr<RunningProgram> program;
    std::unique_ptr<QTemporaryDir> images;
    QStringList chosen;
    QString nextChoice;

    void Choose(const QString& source) { nextChoice = source; }

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
        program.reset();
        dialogs.reset();
        images.reset();
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
        QCOMPARE(dialogs->msgBoxes.size(), 1);
        QCOMPARE(dialogs->msgBoxes[0].prompt, "No CD drive was found." + kAudioOffer);
        QCOMPARE(dialogs->msgBoxes[0].title, QString("Read disc"));
        QCOMPARE(dialogs->msgBoxes[0].flags, vbYesNo + vbExclamation);
        QCOMPARE(chosen, QStringList{QString::number(int(DiscChoice::AudioImage))});
        QCOMPARE(form->txtTitle->text(), QString("Blue Hours"));
        QCOMPARE(form->Combo1[1]->currentText(), QString("Ann Tanner"));
        QCOMPARE(TracksText(form), QString::fromUtf8("Morning\r\nTrack 2\r\nCafé Night"));
        // The artist was added to the audio platform without asking for a name.
        QVERIFY(dialogs->inputs.isEmpty());
        QCOMPARE(Scalar("select count(*) from vendor where idplatform = 1 and nmvendor = 'Ann "
                        "Tanner'")
                     .toInt(),
                 1);

        form->cmdOK_Click();
        QVERIFY(!gEditForm);
        const QString id = QString::number(gCurrentTitleId);
        QCOMPARE(Scalar("select TitleID from title where idcd = " + id).toLongLong(), kBlueHoursId);
        QCOMPARE(Scalar("select NumTracks from title where idcd = " + id).toInt(), 3);
        QCOMPARE(Scalar("select TrackName from Tracks where idcd = " + id + " and TrackID = 2")
                     .toString(),
                 QString::fromUtf8("Café Night"));
    }

    void cataloguedDiscOffersItsTitle() {
        const long stored = StoreTitle(
            "'Blue Hours (first copy)', 1, 1, 1, 4, 10, 1, '', 1, 75, '2024-01-01', "
            "'2024-01-01', '', ''");
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
        QCOMPARE(dialogs->msgBoxes.size(), 1);
        QCOMPARE(
            dialogs->msgBoxes[0].prompt,
            QString("This disc (82400) is already in the catalogue as \"Blue Hours (first copy)\"."
                    "\n\nOpen that title instead?"));
        QCOMPARE(dialogs->msgBoxes[0].title, QString("Read disc"));
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

    void failedReadingsLeaveTheFormAlone() {
        SelectNode("root");
        QPointer<frmEdit> form = OpenEditor(true);
        ChooseTitleKind(form, "Audio", "Rock", "Album");
        form->txtTitle->setText("typed");

        // An empty drive, then a cue whose bin is missing.
        SetDiscDriveLocator([this] { return images->path() + "/sr0"; });
        dialogs->answerMsgBox(vbYes);
        dialogs->answerMsgBox(vbOK);
        Choose(
            MakeCue(images->path(), "lost", "Lost", "Nobody", {{"00:00:00", "One"}}, 750, false));
        form->cmdReadDisc_Click();
        QCOMPARE(dialogs->msgBoxes.size(), 2);
        QCOMPARE(dialogs->msgBoxes[0].prompt,
                 "\"" + images->path() + "/sr0\" does not exist." + kAudioOffer);
        QVERIFY(dialogs->msgBoxes[1].prompt.contains("lost.cue"));

        // A data image where an audio CD is expected; a cancelled choice.
        if (!Xorriso().isEmpty()) {
            WriteFile(images->path() + "/data/readme.txt", 3);
            dialogs->answerMsgBox(vbYes);
            dialogs->answerMsgBox(vbOK);
            const QString iso = MakeIso(images->path() + "/data", images->path() + "/data.iso");
            QVERIFY(!iso.isEmpty());
            Choose(iso);
            form->cmdReadDisc_Click();
            QCOMPARE(dialogs->msgBoxes.last().prompt,
                     "\"" + iso + "\" holds a data disc, not an audio CD.");
        }
        dialogs->answerMsgBox(vbYes);
        Choose(QString());
        form->cmdReadDisc_Click();

        QCOMPARE(form->txtTitle->text(), QString("typed"));
        QCOMPARE(form->Combo1[1]->currentIndex(), -1);
        QVERIFY(!form->TracksListing());
        QVERIFY(!form->TracksEdited);
    }

    void dataDiscListingCapacityAndFreeSpace() {
        if (Xorriso().isEmpty()) QSKIP("xorriso is not installed");
        const QString root = images->path() + "/pcdisc";
        WriteFile(root + "/setup.exe", 2000);
        WriteFile(root + "/data/levels.pak", 30);
        const QString iso = MakeIso(root, images->path() + "/pcdisc.iso");
        SelectNode("root");

        // The PC platform keeps the listing in its listing editor.
        QPointer<frmEdit> form = OpenEditor(true);
        form->txtTitle->setText("Install disc");
        ChooseTitleKind(form, "PC", "Games", "Action");
        ChooseText(form->Combo1[1], "Unknown vendor");
        dialogs->answerMsgBox(vbYes);
        Choose(iso);
        form->cmdReadDisc_Click();
        QCOMPARE(chosen.last(), QString::number(int(DiscChoice::IsoImage)));
        QCOMPARE(dialogs->msgBoxes.last().prompt, "No CD drive was found." + kDataOffer);
        QCOMPARE(dialogs->msgBoxes.last().flags, vbYesNoCancel + vbExclamation);
        const QString listing = "data/levels.pak (30 bytes)\r\nsetup.exe (2000 bytes)";
        QCOMPARE(TracksText(form), listing);
        form->cmdOK_Click();
        QVERIFY(!gEditForm);
        QString id = QString::number(gCurrentTitleId);
        QCOMPARE(Scalar("select listing from title where idcd = " + id).toString(), listing);
        QCOMPARE(Scalar("select capacity from title where idcd = " + id).toDouble(),
                 double(QFileInfo(iso).size()));
        QCOMPARE(Scalar("select freespace from title where idcd = " + id).toDouble(), 0.0);
        QVERIFY(Scalar("select TitleID from title where idcd = " + id).isNull());

        // A platform without a listing editor: a mounted folder with a folder that cannot be
        // read is used only when the user agrees.
        QDir().mkpath(root + "/locked");
        QFile::setPermissions(root + "/locked", QFileDevice::WriteOwner);
        form = OpenEditor(true);
        form->txtTitle->setText("Console disc");
        ChooseTitleKind(form, "Game console", "Games", "Racing");
        ChooseText(form->Combo1[1], "Unknown vendor");
        const bool unreadable = ::geteuid() != 0;
        dialogs->answerMsgBox(vbNo);
        if (unreadable) dialogs->answerMsgBox(vbNo);
        Choose(root);
        form->cmdReadDisc_Click();
        if (unreadable) {
            QCOMPARE(dialogs->msgBoxes.last().prompt,
                     QString("These folders could not be read and are left out of the listing:\n"
                             "locked\n\nUse the listing without them?"));
            QCOMPARE(dialogs->msgBoxes.last().title, QString("Read disc"));
            dialogs->answerMsgBox(vbNo);
            dialogs->answerMsgBox(vbYes);
            form->cmdReadDisc_Click();
        }
        QFile::setPermissions(root + "/locked", QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                    QFileDevice::ExeOwner);
        QCOMPARE(chosen.last(), QString::number(int(DiscChoice::Folder)));
        form->cmdOK_Click();
        QVERIFY(!gEditForm);
        id = QString::number(gCurrentTitleId);
        QCOMPARE(Scalar("select listing from title where idcd = " + id).toString(), listing);
        QVERIFY(Scalar("select capacity from title where idcd = " + id).toDouble() > 0);
    }
};

VELMORA_TEST_MAIN(frmEditDiscTest)
#include "frmEdit_disc_test.moc"
