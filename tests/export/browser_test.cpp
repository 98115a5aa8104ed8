// The exported page as a real browser reads it: headless Chromium's text of the page shows
// every title, every platform heading and the accented names as they are in the catalogue.

#include <QCheckBox>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "export/exporttest.h"
#include "export/frmExport.h"

using namespace exporttest;

class BrowserTest : public QObject {
    Q_OBJECT

  private slots:
    void chromiumShowsTitlesHeadingsAndAccents() {
        const QString chromium = QStandardPaths::findExecutable("chromium");
        if (chromium.isEmpty()) QSKIP("chromium is not installed");

        TempProgramFolder folder;
        folder.openCatalogue();
        AddTitles();
        ScriptedDialogs dialogs;
        const QString page = folder.file("page.html");
        dialogs.answerFile(page);
        frmExport form;
        form.Form_Load();
        form.OpenHtmlAfterExport = false;
        for (QCheckBox* field : form.Check3) field->setChecked(true);
        form.ExportRecordset =
            gDatabase->OpenRecordset(kTitleJoinInListOrder, dbOpenDynaset, dbReadOnly);
        long count = 5;
        form.ExportToHtml(count);

        QTemporaryDir profile;
        QProcess browser;
        browser.start(chromium, {"--headless", "--no-sandbox", "--disable-gpu",
                                 "--user-data-dir=" + profile.path(), "--dump-dom",
                                 QUrl::fromLocalFile(page).toString()});
        QVERIFY(browser.waitForFinished(90000));
        const QString dom = QString::fromUtf8(browser.readAllStandardOutput());
        QVERIFY2(dom.contains("<title>Dorvik Software Velmora Generated Exportfile</title>"),
                 qPrintable(dom.left(400)));
        for (const char* text :
             {"Homogénic", "Zero Tracks", "Café Tycoon", "Missing Tracks", "Nosferatu",
              "<p>Audio</p>", "<p>PC</p>", "<p>Video</p>", "Björk", "Jóga<br>", "setup.exe<br>"})
            QVERIFY2(dom.contains(text), qPrintable(text));
        QVERIFY(dom.contains("x &lt; y &amp; \"z\""));

        // A picture of the page for a person to look at, when asked for.
        const QString screenshot = qEnvironmentVariable("VELMORA_EXPORT_SCREENSHOT");
        if (!screenshot.isEmpty()) {
            browser.start(chromium,
                          {"--headless", "--no-sandbox", "--disable-gpu",
                           "--user-data-dir=" + profile.path(), "--window-size=1000,1300",
                           "--screenshot=" + screenshot, QUrl::fromLocalFile(page).toString()});
            QVERIFY(browser.waitForFinished(90000));
        }
    }
};

VELMORA_TEST_MAIN(BrowserTest)
#include "browser_test.moc"
