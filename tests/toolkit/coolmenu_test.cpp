// The owner-drawn menus: the caption grammar, the conversion of the main window's menus, their
// help texts in the status bar and their accelerators.

#include <QMenu>

#include "shell/frmMain.h"
#include "support/testsupport.h"
#include "toolkit/WndCoolMenu.h"
#include "toolkit/mCoolMenu.h"

class CoolMenuTest : public QObject {
    Q_OBJECT

  private slots:
    void captionGrammar() {
        // A caption, what it converts to, and that it is given back as it was.
        const struct {
            const char *caption, *text, *help;
            bool separator, mark, check;
        } captions[] = {
            {"&Plain item", "&Plain item", "", false, false, false},
            {"|Add a new CD-title|&New CD-title", "&New CD-title", "Add a new CD-title", false,
             false, false},
            {"-", "", "", true, false, false},
            {"-|Section help|Recent", "Recent", "Section help", true, false, false},
            {"-Recent", "Recent", "", true, false, false},
            {"#|Show the tree|&Tree", "&Tree", "Show the tree", false, true, true},
            {"#Tree", "Tree", "", false, true, true},
            {"*&Large", "&Large", "", false, true, false},
            // A numbered recent entry is marked, not checked, and keeps its text.
            {"&1 data.gdb", "&1 data.gdb", "", false, true, false},
            {"&0 data.gdb", "&0 data.gdb", "", false, false, false},
            {"&1data.gdb", "&1data.gdb", "", false, false, false},
        };
        for (const auto& c : captions) {
            const CMyItemData item = ParseMenuCaption(c.caption);
            QCOMPARE(item.sMenuText, QString(c.text));
            QCOMPARE(item.sMenuHelp, QString(c.help));
            QCOMPARE(item.fType, c.separator ? kMenuSeparatorType : 0);
            QCOMPARE(item.bAsMark, c.mark);
            QCOMPARE(item.bAsCheck, c.check);
            QCOMPARE(RebuildMenuCaption(item), QString(c.caption));
        }
    }

    void imagesFoundByTag() {
        const QList<ListImage> images{{"a", "", {}}, {"b", "Search for CD", {}}, {"c", "Add", {}}};
        QCOMPARE(FindImage(images, "search for cd"), 2);
        QCOMPARE(FindImage(images, "Add a new folder"), 3);
        QCOMPARE(FindImage(images, "Search"), 2);
        QCOMPARE(FindImage(images, "Delete"), 0);
        QCOMPARE(FindImage(images, ""), 0);
    }

    void mainWindowMenus() {
        TempProgramFolder folder;
        folder.installCatalogue();
        frmMain* form = StartProgram();
        QVERIFY(form);

        // Converted from their source captions, with pictures found by their help.
        QCOMPARE(form->mnuNewCD->text(), QString("&New CD-title"));
        QVERIFY(form->mnuSeperator4->isSeparator());
        for (QAction* item :
             {form->mnuViewProperties, form->mnuNewCD, form->mnuRenameCD, form->mnuDeleteCD,
              form->mnuSearchCD1, form->mnuListviewMaintenance, form->mnuReadRecordsFromFolder,
              form->mnuAddFolder, form->mnuRenameFolder, form->mnuDeleteFolder, form->mnuHideFolder,
              form->mnuSearchCD2, form->mnuTreeviewMaintenance})
            QVERIFY2(!item->icon().isNull(), qPrintable(item->objectName()));
        CMyItemData* item = CoolMenuItem(form->mnuHideFolder);
        QVERIFY(item);
        QCOMPARE(item->sMenuHelp, QString("Hide a folder"));
        // A second conversion keeps every item's object.
        ConvertMenu(form->mnuTreeviewContext, CoolMenuWindow(form), true);
        QCOMPARE(CoolMenuItem(form->mnuHideFolder), item);
        QCOMPARE(form->mnuHideFolder->text(), QString("&Hide"));

        // The help of the item under the pointer, then under the keys, reaches the status bar.
        QMenu* menu = form->mnuListviewContext;
        for (QAction* action : menu->actions()) action->setEnabled(true);
        menu->popup(form->mapToGlobal(QPoint(40, 80)));
        QVERIFY(QTest::qWaitForWindowExposed(menu));
        QTest::mouseMove(menu, menu->actionGeometry(form->mnuDeleteCD).center());
        QTRY_COMPARE(form->PanelText(1), QString("Delete the CD-title"));
        QTest::keyClick(menu, Qt::Key_Down);
        QTRY_COMPARE(form->PanelText(1), QString("Search for CD"));
        // The menu is drawn by the program: the selection bar lies under the selected item.
        const QImage drawn = menu->grab().toImage();
        const QRect selected = menu->actionGeometry(form->mnuSearchCD1);
        const QColor bar = drawn.pixelColor(selected.right() - 3, selected.center().y());
        QVERIFY(bar == menu->palette().color(QPalette::Active, QPalette::Highlight) ||
                bar == menu->palette().color(QPalette::Inactive, QPalette::Highlight));
        // An accelerator picks its item.
        QSignalSpy picked(form->mnuDeleteCD, &QAction::triggered);
        QTest::keyClick(menu, Qt::Key_D);
        QTRY_VERIFY(!menu->isVisible());
        QCOMPARE(picked.count(), 1);
        QCOMPARE(form->PanelText(1), QString());

        EndProgram();
    }
};

VELMORA_TEST_MAIN(CoolMenuTest)
#include "coolmenu_test.moc"
