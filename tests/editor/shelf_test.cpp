// The title editor's shelf fields against a loopback MusicBrainz and Cover Art Archive: a disc
// added by its barcode (a release of several discs, the check digit, the run of editors that
// files a shelf), and the front cover (fetched after Use through a redirect, from a file,
// removed, refused when it is no image to keep, kept with the title's save and gone with the
// title).

#include <QCheckBox>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTreeWidget>

#include "disc/coverimages.h"
#include "disc/lookupanswers.h"
#include "disc/lookupserver.h"
#include "editor/coverbox.h"
#include "editor/editortest.h"
#include "editor/frmLookup.h"
#include "toolkit/controls/ctlGoldButton.h"
#include "toolkit/vb/longwork.h"

using namespace editortest;
using lookupserver::Body;
using lookupserver::Reply;
using lookupserver::Status;

namespace {

const QByteArray kUpc = "036000291452";
const QByteArray kRelease = "f1a2-deluxe";

QByteArray SearchAnswer() {
    using namespace lookupanswers;
    return "{\"count\":2,\"releases\":[{\"id\":\"a0b1-single\",\"title\":\"Blue Hours\",\"date\":"
           "\"1999-04-12\",\"country\":\"GB\",\"artist-credit\":" +
           Credit("Ann Tanner") + ",\"media\":[{\"format\":\"CD\",\"track-count\":3}]},{\"id\":\"" +
           kRelease +
           "\",\"title\":\"Blue Hours (Deluxe)\",\"date\":\"2005\",\"country\":\"US\","
           "\"artist-credit\":" +
           Credit("Ann Tanner") +
           ",\"media\":[{\"format\":\"CD\",\"track-count\":3},{\"format\":\"CD\",\"track-count\":"
           "2}]}]}";
}

QByteArray ReleaseAnswer() {
    using namespace lookupanswers;
    return "{\"id\":\"" + kRelease +
           "\",\"title\":\"Blue Hours (Deluxe)\",\"artist-credit\":" + Credit("Ann Tanner") +
           ",\"media\":[{\"position\":1,\"tracks\":" + Tracks({"Morning", "Noon", "Night"}) +
           "},{\"position\":2,\"tracks\":[{\"position\":2,\"title\":\"Dusk\"},{\"position\":1,"
           "\"title\":\"Dawn\"}]}]}";
}

Reply Redirect(const QString& to) {
    return Status("307 Temporary Redirect", "Location: " + to.toLatin1() + "\r\n");
}

// Chooses the row of the look-up whose columns start so, and uses it; rows gets every row.
void UseRow(const QString& start, QStringList* rows = nullptr) {
    OnLookupChoice([start, rows](frmLookup* window) {
        const QStringList shown = MatchRows(window, 7);
        if (rows) *rows = shown;
        int chosen = 0;
        while (chosen < shown.size() && !shown[chosen].startsWith(start)) ++chosen;
        QVERIFY2(chosen < shown.size(), qPrintable("no row " + start));
        window->lstMatches->setCurrentItem(window->lstMatches->topLevelItem(chosen));
        QTest::mouseClick(window->cmdUse, Qt::LeftButton);
    });
}

QString Id() {
    return QString::number(gCurrentTitleId);
}

}  // namespace

class ShelfTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<ScriptedDialogs> dialogs;
    std::unique_ptr<RunningProgram> program;
    std::unique_ptr<lookupserver::LookupServer> server;
    std::unique_ptr<QTemporaryDir> files;

    QPointer<frmEdit> NewAudioTitle() {
        SelectNode("root");
        QPointer<frmEdit> form = OpenEditor(true);
        ChooseTitleKind(form, "Audio", "Jazz", "Album");
        form->txtTitle->setText("Blue Hours");
        return form;
    }

    QString WriteFile(const QString& name, const QByteArray& bytes) {
        const QString path = files->filePath(name);
        WriteBytes(path, bytes);
        return path;
    }

  private slots:
    void init() {
        dialogs = std::make_unique<ScriptedDialogs>();
        server = std::make_unique<lookupserver::LookupServer>();
        files = std::make_unique<QTemporaryDir>();
        qputenv("VELMORA_MUSICBRAINZ_SERVER", server->url().toLatin1());
        qputenv("VELMORA_COVERART_SERVER", server->url().toLatin1());
        program = std::make_unique<RunningProgram>();
        QVERIFY(gMainForm);
    }
    void cleanup() {
        program.reset();
        dialogs.reset();
        server.reset();
    }

    void barcodeFillsTheTitleAndItsCover() {
        const QByteArray front = coverimages::Jpeg(500, 400);
        server->answer("query=barcode:", Body(SearchAnswer()));
        server->answer("/ws/2/release/" + kRelease, Body(ReleaseAnswer()));
        server->answer("/release/" + kRelease + "/front-500", Redirect(server->url() + "/img/f"));
        server->answer("/img/f", Body(front));

        QPointer<frmEdit> form = NewAudioTitle();
        // Spaces and dashes go; the second disc of the deluxe set is the one in hand.
        QStringList rows;
        UseRow("Ann Tanner;Blue Hours (Deluxe);2005;US;CD;2 of 2", &rows);
        form->txtBarcode->setText("0 36000-29145 2");
        form->cmdBarcode_Click();
        QVERIFY(dialogs->takeBoxes().isEmpty());
        QCOMPARE(rows, QStringList({"Ann Tanner;Blue Hours;1999;GB;CD;1;3",
                                    "Ann Tanner;Blue Hours (Deluxe);2005;US;CD;1 of 2;3",
                                    "Ann Tanner;Blue Hours (Deluxe);2005;US;CD;2 of 2;2"}));
        QCOMPARE(server->targets.mid(0, 2),
                 QStringList({"/ws/2/release?query=barcode:" + kUpc + "&fmt=json",
                              "/ws/2/release/" + kRelease +
                                  "?inc=artist-credits+recordings+media&fmt=json"}));
        QCOMPARE(form->txtBarcode->text() + ";" + form->txtTitle->text(),
                 kUpc + ";Blue Hours (Deluxe)");
        QCOMPARE(form->TracksListing()->Text(), QString("Dawn\r\nDusk"));
        QCOMPARE(form->Memo->toPlainText(), "MusicBrainz release " + kRelease + " (disc 2 of 2)");
        // The cover comes on its own while the editor stays usable.
        QVERIFY(form->FetchingCover());
        QTRY_VERIFY(!form->FetchingCover());
        QCOMPARE(form->Cover().image, front);

        form->cmdOK_Click();
        QVERIFY(!gEditForm);
        const QString id = Id();
        QCOMPARE(Scalar("select mbid || barcode from titlerelease where idcd = " + id).toString(),
                 QString(kRelease + kUpc));
        QCOMPARE(Scalar("select image from cover where idcd = " + id).toByteArray(), front);

        // The edit road shows them again; the title's delete takes them along.
        QPointer<frmEdit> again = OpenEditor(false, gCurrentTitleId);
        QCOMPARE(again->txtBarcode->text(), QString(kUpc));
        QVERIFY(!again->picCover->Cover().isNull());
        again->cmdCancel_Click();
        gDatabase->Execute("delete from title where idcd = " + id);
        QCOMPARE(RowCount("titlerelease") + RowCount("cover"), 0L);
    }

    void barcodeCheckDigitAndNoRelease() {
        server->answer("query=barcode:", Body("{\"count\":0,\"releases\":[]}"));
        QPointer<frmEdit> form = NewAudioTitle();
        // An empty box asks; a wrong check digit is told and looked up all the same.
        dialogs->answerInput("036000291453");
        form->cmdBarcode_Click();
        QCOMPARE(dialogs->takeBoxes(),
                 Boxes({{"The check digit of 036000291453 is wrong: the barcode may be misread "
                         "or misprinted. It is looked up as it stands.",
                         vbInformation, "Barcode"},
                        {"MusicBrainz knows no release with the barcode 036000291453.",
                         vbInformation, "Barcode"}}));
        QCOMPARE(server->targets, QStringList{"/ws/2/release?query=barcode:036000291453&fmt=json"});
        form->txtBarcode->setText("12ab");
        form->cmdBarcode_Click();
        QCOMPARE(dialogs->takeBoxes(),
                 Boxes({{"A barcode is made of digits; spaces and dashes may stand between them.",
                         vbExclamation, "Barcode"}}));
        QCOMPARE(server->targets.size(), 1);
        // The barcode is kept with the title even without a release.
        ChooseText(form->Combo1[1], "Various artists");
        form->txtBarcode->setText("036000291453");
        form->cmdOK_Click();
        QCOMPARE(
            RowCount("titlerelease where barcode = '036000291453' and coalesce(mbid, '') = ''"),
            1L);
    }

    void addNextByBarcodeFilesAShelf() {
        server->answer("query=barcode:", Body(SearchAnswer()));
        server->answer("/ws/2/release/a0b1-single",
                       Body("{\"id\":\"a0b1-single\",\"title\":\"Blue Hours\",\"media\":[{"
                            "\"position\":1,\"tracks\":" +
                            lookupanswers::Tracks({"Morning", "Noon", "Night"}) + "}]}"));
        SelectNode("key1");
        gAddingTitle = true;
        gModifyingTitle = false;
        QList<QPointer<frmEdit>> editors;
        QString secondState;
        auto* poll = new QTimer(this);
        connect(poll, &QTimer::timeout, this, [&] {
            auto* form = qobject_cast<frmEdit*>(QApplication::activeModalWidget());
            if (!form || editors.contains(form)) return;
            editors << form;
            if (editors.size() == 1) {
                ChooseTitleKind(form, "Audio", "Jazz", "Album");
                form->chkAddNext->setChecked(true);
                UseRow("Ann Tanner;Blue Hours;1999");
                // A scanner types the digits and Enter; the next Enter saves.
                QTest::keyClicks(form->txtBarcode, kUpc);
                QTest::keyClick(form->txtBarcode, Qt::Key_Return);
                QCOMPARE(form->txtTitle->text(), QString("Blue Hours"));
                QTest::keyClick(form->txtBarcode, Qt::Key_Return);
                return;
            }
            secondState = QStringList{form->windowTitle(),
                                      form->Combo1[0]->currentText(),
                                      form->Combo1[2]->currentText(),
                                      form->Combo1[3]->currentText(),
                                      form->chkAddNext->isChecked() ? "next" : "",
                                      form->focusWidget() == form->txtBarcode ? "barcode" : "",
                                      form->txtBarcode->text()}
                              .join(";");
            form->cmdCancel_Click();
        });
        poll->start(10);
        ShowEditForm(gMainForm);
        poll->stop();
        QCOMPARE(editors.size(), 2);
        QCOMPARE(secondState, QString("Add Title;Audio;Jazz;Album;next;barcode;"));
        QCOMPARE(TitleCount(), 1L);
        QCOMPARE(Scalar("select barcode from titlerelease").toString(), QString(kUpc));
    }

    void coverFromFileRemoveAndRefusals() {
        const long stored = StoreAudioTitle("Grey Days");
        SelectNode("root");
        // A large cover is scaled to 1200 on its long side; Cancel writes nothing.
        QPointer<frmEdit> form = OpenEditor(false, stored);
        dialogs->answerFile(WriteFile("big.png", coverimages::Png(2400, 1200)));
        form->mnuCoverFile->trigger();
        QImage kept;
        QVERIFY(kept.loadFromData(form->Cover().image));
        QCOMPARE(kept.size(), QSize(1200, 600));
        QCOMPARE(form->Cover().source, QString("big.png"));
        form->cmdCancel_Click();
        QCOMPARE(RowCount("cover"), 0L);

        // What is no cover to keep is refused with its reason, and the cover there was stays.
        form = OpenEditor(false, stored);
        const QByteArray small = coverimages::Jpeg(300, 300);
        dialogs->answerFile(WriteFile("small.jpg", small));
        form->mnuCoverFile->trigger();
        for (const auto& [name, bytes] :
             {std::pair<QString, QByteArray>("cut.jpg", coverimages::CutJpeg()),
              {"notes.txt", "not an image at all"}}) {
            dialogs->answerFile(WriteFile(name, bytes));
            form->mnuCoverFile->trigger();
        }
        QCOMPARE(dialogs->takeBoxes(),
                 Boxes({{"The image is cut short; it was not stored.", vbExclamation, "Cover"},
                        {"The file is no image that Velmora can read (JPEG, PNG, WebP or GIF).",
                         vbExclamation, "Cover"}}));
        QCOMPARE(form->Cover().image, small);
        form->cmdOK_Click();
        QCOMPARE(Scalar("select image from cover").toByteArray(), small);

        // A file dropped on the box, and a browser's image, are taken as a file is.
        auto drop = [&form](QMimeData* data) {
            const QPointF at(10, 10);
            QDragEnterEvent enter(at.toPoint(), Qt::CopyAction, data, Qt::LeftButton, {});
            QApplication::sendEvent(form->picCover, &enter);
            QVERIFY(enter.isAccepted());
            QDropEvent dropped(at, Qt::CopyAction, data, Qt::LeftButton, {});
            QApplication::sendEvent(form->picCover, &dropped);
        };
        form = OpenEditor(false, stored);
        QMimeData file;
        file.setUrls({QUrl::fromLocalFile(WriteFile("dropped.png", coverimages::Png(90, 60)))});
        drop(&file);
        QCOMPARE(form->Cover().source, QString("dropped.png"));
        QMimeData browser;
        QImage image(70, 70, QImage::Format_RGB32);
        image.fill(Qt::darkRed);
        browser.setImageData(image);
        drop(&browser);
        QCOMPARE(form->Cover().source, QString("a dropped image"));
        QCOMPARE(dialogs->takeBoxes(), Boxes());
        form->cmdCancel_Click();

        // Remove, then Update: the row goes. Without a release the archive is not offered.
        form = OpenEditor(false, stored);
        form->cmdCover_Click();
        QVERIFY(!form->mnuCoverArchive->isEnabled());
        QVERIFY(form->mnuCoverRemove->isEnabled());
        form->mnuCover->hide();
        form->mnuCoverRemove->trigger();
        QVERIFY(form->picCover->Cover().isNull());
        form->cmdOK_Click();
        QCOMPARE(Scalar("select count(*) from cover").toInt(), 0);
    }

    void coverArchiveAnswers() {
        const long stored = StoreAudioTitle("Grey Days", "c0ff-ee");
        QPointer<frmEdit> form = OpenEditor(false, stored);
        form->cmdCover_Click();
        QVERIFY(form->mnuCoverArchive->isEnabled());
        form->mnuCover->hide();
        auto fetch = [&form] {
            form->mnuCoverArchive->trigger();
            QTRY_VERIFY(!form->FetchingCover());
        };

        // No front cover: told, not an error.
        fetch();
        QCOMPARE(dialogs->takeBoxes(),
                 Boxes({{"The Cover Art Archive has no front cover for this release.",
                         vbInformation, "Cover"}}));
        // Busy: waited out as Retry-After says, once.
        const QByteArray front = coverimages::Jpeg(200, 200);
        server->answer("/release/c0ff-ee/front-500",
                       Status("503 Service Unavailable", "Retry-After: 1\r\n"));
        server->answer("/release/c0ff-ee/front-500", Body(front));
        server->targets.clear();
        server->times.clear();
        fetch();
        QVERIFY(dialogs->takeBoxes().isEmpty());
        QCOMPARE(server->targets.size(), 2);
        QVERIFY(server->times[1] - server->times[0] >= 900);
        QCOMPARE(form->Cover().image, front);

        // A bomb and a body cut short are refused; the cover there was stays.
        server->clear();
        server->answer("/release/c0ff-ee/front-500", Body(coverimages::PngBomb()));
        fetch();
        Reply cut = Body(front.left(front.size() / 2));
        cut.announced = front.size();
        server->clear();
        server->answer("/release/c0ff-ee/front-500", cut);
        fetch();
        const Boxes boxes = dialogs->takeBoxes();
        QCOMPARE(boxes.size(), 2);
        QCOMPARE(boxes[0].prompt,
                 QString("The image is too large to be a cover (30000 x 30000 pixels)."));
        QCOMPARE(boxes[1].flags, vbExclamation);
        QCOMPARE(form->Cover().image, front);
        form->cmdCancel_Click();
        QCOMPARE(Scalar("select count(*) from cover").toInt(), 0);
    }

    void fetchMissingCoversStopsAndResumes() {
        const QByteArray front = coverimages::Jpeg(120, 120);
        StoreAudioTitle("A", "mb-a");
        StoreAudioTitle("B", "mb-b");
        StoreAudioTitle("C", "mb-c");
        const long covered = StoreAudioTitle("D", "mb-d");
        StoreAudioTitle("E");
        gDatabase->Execute("insert into cover (idcd, image, thumbnail) values (" +
                           QString::number(covered) + ", x'00', x'00')");
        server->answer("/release/mb-a/front-500", Body(front));
        server->answer("/release/mb-c/front-500",
                       Status("503 Service Unavailable", "Retry-After: 120\r\n"));
        SelectNode("root");
        QCOMPARE(gMainForm->ListItemCount(), 5);

        // Escape while the second is asked for: the first stays, the rest waits.
        QStringList steps;
        const int listener =
            AddProgressListener([&steps](const QString& operation, qint64 done, qint64 total) {
                steps << QString("%1 %2/%3").arg(operation).arg(done).arg(total);
                if (done != 2) return;
                QTimer::singleShot(0, [] {
                    QWidget* window = QApplication::activeModalWidget();
                    QCOMPARE(window->objectName(), QString("frmFetchCovers"));
                    QTest::keyClick(window, Qt::Key_Escape);
                });
            });
        gMainForm->mnuFetchCovers->trigger();
        QCOMPARE(steps,
                 QStringList({"Fetching cover 1/3", "Fetching cover 2/3", "Fetching cover 0/0"}));
        QCOMPARE(dialogs->takeBoxes(),
                 Boxes({{"Stopped after 1 of 3 titles; the next fetch goes on with the "
                         "rest.\n\n1 tried, 1 fetched, 0 without a cover, 0 failed",
                         vbInformation, "Fetch missing covers"}}));
        QCOMPARE(Scalar("select count(*) from cover").toInt(), 2);

        // The next fetch asks for the two left, at the archive's pace.
        RemoveProgressListener(listener);
        server->targets.clear();
        server->times.clear();
        gMainForm->mnuFetchCovers->trigger();
        QCOMPARE(server->targets,
                 QStringList({"/release/mb-b/front-500", "/release/mb-c/front-500"}));
        QVERIFY(server->times[1] - server->times[0] >= 900);
        QCOMPARE(dialogs->takeBoxes(),
                 Boxes({{"2 tried, 0 fetched, 1 without a cover, 1 failed:\nC: Cover Art Archive "
                         "(127.0.0.1): the server is busy (503); try again later.",
                         vbExclamation, "Fetch missing covers"}}));
    }
};

VELMORA_TEST_MAIN(ShelfTest)
#include "shelf_test.moc"
