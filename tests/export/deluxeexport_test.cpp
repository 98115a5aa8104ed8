// The Deluxe CD player's database as an export destination: titles and tracks written into a
// copy of a Deluxe file by the program's own Jet writer, read back by mdbtools, by the program's
// reading, and by the import into an empty catalogue.

#include <unistd.h>

#include <QCheckBox>

#include "export/exporttest.h"
#include "export/frmExport.h"
#include "import/frmImport.h"
#include "store/jetcheck.h"

using namespace exporttest;

namespace {

void WriteFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

QString CopyDeluxe(const QTemporaryDir& folder, const QString& name) {
    const QString target = folder.filePath("DeluxeCD.mdb");
    QFile::copy(QStringLiteral(VELMORA_FIXTURES_DIR "/deluxe/") + name, target);
    QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
    return target;
}

}  // namespace

class DeluxeExportTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        folder_ = std::make_unique<TempProgramFolder>();
        folder_->openCatalogue();
        AddTitles();
        form_ = std::make_unique<frmExport>();
        form_->Form_Load();
        form_->ExportRecordset = gDatabase->OpenRecordset(kAllTitles, dbOpenDynaset, dbReadOnly);
        form_->DeluxePath = CopyDeluxe(files_, "cd_pk.mdb");
    }

    void cleanup() {
        form_.reset();
        folder_.reset();
        QFile::remove(files_.filePath("DeluxeCD.mdb"));
    }

    void newTitlesAndTracksAreAppendedAndDuplicatesSkipped() {
        ScriptedDialogs dialogs;
        form_->WarnTitles = true;
        Export();
        QCOMPARE(form_->DeluxeExportTried, qint16(3));
        QCOMPARE(form_->DeluxeExportDuplicates, qint16(0));
        QCOMPARE(dialogs.prompts(),
                 QStringList("Tried to export 3 title(s) to the Deluxe Database.\r\nOf those 0 "
                             "went wrong because of duplicates."));
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Export to Deluxe CD-Player Results"));

        const QString path = form_->DeluxePath;
        QCOMPARE(CountedRows(path, "Titles"), 7L);
        QCOMPARE(CountedRows(path, "Tracks"), 11L);
        const QStringList titles = ExportedRows(path, "Titles");
        QVERIFY(titles.contains("1715004,\"Björk\",\"Homogénic\",3"));
        QVERIFY(titles.contains("77,\"Various artists\",\"Missing Tracks\",2"));
        QVERIFY(titles.contains("-1,\"Various artists\",\"Zero Tracks\",0"));
        QVERIFY(ExportedRows(path, "Tracks").contains("1715004,2,\"Hunter\""));
        // The primary key lists the new titles among the old in order.
        const jet::Index primaryKey = jet::Writer(path).Table("Titles").indexes.at(0);
        long entries = 0;
        QCOMPARE(CheckIndex(path, "Titles", primaryKey, entries), QString());
        QCOMPARE(entries, 7L);

        // Again: every title is there, each is skipped with its warning, tracks unlooked at.
        const QByteArray before = FileBytes(path);
        dialogs.msgBoxes.clear();
        Export();
        QCOMPARE(form_->DeluxeExportDuplicates, qint16(3));
        QCOMPARE(dialogs.msgBoxes.size(), 4);
        QCOMPARE(dialogs.msgBoxes[0].prompt,
                 QString("The cd with title 'Homogénic' cannot be copied and will be skipped."
                         "\r\rMost likely reason is that it allready exists in the Deluxe "
                         "database."));
        QCOMPARE(dialogs.msgBoxes[0].title, "Exporting to " + form_->Check1[4]->text());
        QCOMPARE(dialogs.msgBoxes[0].flags, int(vbExclamation));
        QVERIFY(
            dialogs.msgBoxes[3].prompt.endsWith("Of those 3 went wrong because of duplicates."));
        QCOMPARE(FileBytes(path), before);
    }

    void overwritingChangesRowsInPlaceAndExistingTracksAreToldOnce() {
        ScriptedDialogs dialogs;
        const QString path = form_->DeluxePath;
        // Tracks of a disc that is not in the file yet, left there by an earlier disc.
        {
            jet::Writer writer(path);
            for (int track = 0; track < 2; ++track)
                writer.AppendRow("Tracks", writer.ValuesByName("Tracks", {{"TitleID", 1715004},
                                                                          {"TrackID", track},
                                                                          {"TrackName", "old"}}));
        }
        form_->ShowSummary = false;
        Export();
        QCOMPARE(dialogs.prompts(),
                 QStringList("Some tracknames could not be added because they allready existed "
                             "in the Deluxe Database.\r\nIf you wish to replace the tracknames in "
                             "de Deluxe Database, you might want to select the option to "
                             "overwrite duplicates."));
        QCOMPARE(dialogs.msgBoxes[0].title,
                 QString("Some tracks allready existed in the Deluxe Database"));
        QVERIFY(ExportedRows(path, "Tracks").contains("1715004,0,\"old\""));
        QVERIFY(ExportedRows(path, "Tracks").contains("1715004,2,\"Hunter\""));

        dialogs.msgBoxes.clear();
        gDatabase->Execute("update title set nmcd = 'Homogenic (remastered)' where idcd = 1");
        gDatabase->Execute(
            "update Tracks set TrackName = 'Jóga (live)' where idcd = 1 and "
            "TrackID = 0");
        form_->ExportRecordset->Requery();
        form_->OverwriteTitles = true;
        Export();
        QVERIFY(dialogs.msgBoxes.isEmpty());
        const QStringList titles = ExportedRows(path, "Titles");
        QVERIFY(titles.contains("1715004,\"Björk\",\"Homogenic (remastered)\",3"));
        const QStringList tracks = ExportedRows(path, "Tracks");
        QVERIFY(tracks.contains("1715004,0,\"Jóga (live)\""));
        QVERIFY(tracks.contains("1715004,1,\"Bachelorette\""));
        QCOMPARE(CountedRows(path, "Titles"), 7L);
        QCOMPARE(CountedRows(path, "Tracks"), 11L);
    }

    void badFilesGetTheirBoxesAndStayAsTheyWere() {
        ScriptedDialogs dialogs;
        const QString path = form_->DeluxePath;
        const QByteArray whole = FileBytes(path);
        const QString box =
            "There was a problem loading de database of the Deluxe CD-Player.\r\rNew titles "
            "cannot be added, please verify that the Deluxe-database is not missing or "
            "corrupted.";
        for (const QByteArray& damaged :
             {whole.left(whole.size() - 100), QByteArray("no jet"), whole.left(4096 * 3)}) {
            WriteFile(path, damaged);
            dialogs.msgBoxes.clear();
            Export();
            QCOMPARE(dialogs.prompts(), QStringList(box));
            QCOMPARE(FileBytes(path), damaged);
        }
        // A file the user may not write (the test may run as root, who may: then it is written).
        WriteFile(path, whole);
        if (geteuid() != 0) {
            QFile::setPermissions(path, QFile::ReadOwner);
            dialogs.msgBoxes.clear();
            Export();
            QCOMPARE(dialogs.prompts(), QStringList(box));
            QCOMPARE(FileBytes(path), whole);
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        }

        // A title whose artist is not on the audio platform stops the run.
        dialogs.msgBoxes.clear();
        gDatabase->Execute("update title set idvendor = 4 where idcd = 1");
        form_->ExportRecordset->Requery();
        Export();
        QCOMPARE(dialogs.prompts(), QStringList("An error occured during the process."));
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Unable to continue"));
    }

    void exportedTitlesComeBackThroughTheImport() {
        ScriptedDialogs dialogs;
        form_->ShowSummary = false;
        Export();
        const QString path = form_->DeluxePath;
        form_.reset();

        TempProgramFolder empty;
        empty.openCatalogue();
        frmImport import;
        import.Form_Load();
        import.ShowSummary = false;
        import.DeluxePath = path;
        import.cmbDefType->setCurrentIndex(import.cmbDefType->findText("Rock"));
        import.cmbDefType_Click();
        import.cmbDefSpecific->setCurrentIndex(0);
        import.ImportDeluxeDatabase();
        QCOMPARE(Scalar("select nmcd from title where TitleID = 1715004").toString(),
                 QString("Homogénic"));
        QCOMPARE(Scalar("select nmvendor from title, vendor where title.idvendor = "
                        "vendor.idvendor and TitleID = 1715004")
                     .toString(),
                 QString("Björk"));
        QCOMPARE(Scalar("select group_concat(TrackName, '|') from (select TrackName from Tracks, "
                        "title where Tracks.idcd = title.idcd and TitleID = 1715004 order by "
                        "TrackID)")
                     .toString(),
                 QString("Jóga|Bachelorette|Hunter"));
        // The import reads titles joined to their tracks: the two exported without tracks stay
        // behind, the file's own four come along.
        QCOMPARE(Scalar("select count(*) from title").toInt(), 5);
    }

  private:
    void Export() {
        long count = 5;
        form_->ExportRecordset->MoveFirst();
        form_->ExportToDeluxe(count);
    }

    QTemporaryDir files_;
    std::unique_ptr<TempProgramFolder> folder_;
    std::unique_ptr<frmExport> form_;
};

VELMORA_TEST_MAIN(DeluxeExportTest)
#include "deluxeexport_test.moc"
