// "Find this disc" on the main window: the catalogued disc selected in tree and list, an
// unknown disc named, and no drive at all.

#include <QTemporaryDir>

#include "disc/audiodisc.h"
#include "disc/discimages.h"
#include "editor/discsource.h"
#include "editor/editortest.h"
#include "shell/mGlobalFunctions.h"

using namespace editortest;
using namespace discimages;

class FindDiscTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<ScriptedDialogs> dialogs;
    std::unique_ptr<RunningProgram> program;
    QTemporaryDir images;

  private slots:
    void init() {
        dialogs = std::make_unique<ScriptedDialogs>();
        program = std::make_unique<RunningProgram>();
        SetDiscSourceChooser([](DiscChoice) { return QString(); });
        QVERIFY(gMainForm);
    }
    void cleanup() {
        SetDiscDriveLocator({});
        SetDiscSourceChooser({});
        program.reset();
        dialogs.reset();
    }

    void selectsTheCataloguedTitle() {
        StoreTitle("'Other', 1, 1, 1, 4, 10, 1, '', 1, 75, '2024-01-01', '2024-01-01', '', ''");
        const long stored = StoreTitle(
            "'Blue Hours', 1, 1, 1, 4, 10, 1, '', 1, 75, '2024-01-01', '2024-01-01', "
            "'', ''");
        gDatabase->Execute("update title set TitleID = 533504 where idcd = " +
                           QString::number(stored));
        const QString cue = MakeCue(images.path(), "blue", "Blue Hours", "",
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

    void unknownDiscAndNoDrive() {
        const QString cue = MakeCue(images.path(), "new", "Fresh Album", "",
                                    {{"00:00:00", ""}, {"01:00:00", ""}, {"02:00:00", ""}});
        SetDiscDriveLocator([cue] { return cue; });
        SelectNode("root");
        const QString keyBefore = gMainForm->NodeKey(gMainForm->SelectedNode());

        gMainForm->activateWindow();
        QTest::keyClick(gMainForm, Qt::Key_D, Qt::ControlModifier);
        QCOMPARE(dialogs->msgBoxes.size(), 1);
        QCOMPARE(dialogs->msgBoxes[0].title, QString("Find this disc"));
        // 30600: the start times 0:02:00, 1:02:00 and 2:02:00 packed as 0x000200, 0x010200 and
        // 0x020200, added up.
        QCOMPARE(dialogs->msgBoxes[0].prompt,
                 QString("The disc \"Fresh Album\" (30600) is not in the catalogue."));

        // No drive, and the offered image declined: one box, nothing changes.
        SetDiscDriveLocator([] { return QString(); });
        dialogs->answerMsgBox(vbNo);
        gMainForm->ToolbarButton("finddisc")->trigger();
        QCOMPARE(dialogs->msgBoxes.size(), 2);
        QCOMPARE(dialogs->msgBoxes[1].prompt,
                 QString("No CD drive was found.\n\nRead the disc from an image file (cue sheet, "
                         "toc or nrg) instead?"));
        QCOMPARE(dialogs->msgBoxes[1].title, QString("Find this disc"));
        QCOMPARE(gMainForm->NodeKey(gMainForm->SelectedNode()), keyBefore);
    }
};

VELMORA_TEST_MAIN(FindDiscTest)
#include "finddisc_test.moc"
