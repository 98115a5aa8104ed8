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
        const CMyItemData plain = ParseMenuCaption("&Plain item");
        QCOMPARE(plain.sMenuText, QString("&Plain item"));
        QVERIFY(plain.sMenuHelp.isEmpty() && !plain.bAsMark && plain.fType == 0);

        const CMyItemData helped = ParseMenuCaption("|Add a new CD-title|&New CD-title");
        QCOMPARE(helped.sMenuHelp, QString("Add a new CD-title"));
        QCOMPARE(helped.sMenuText, QString("&New CD-title"));

        const CMyItemData separator = ParseMenuCaption("-");
        QCOMPARE(separator.fType, kMenuSeparatorType);
        QVERIFY(separator.sMenuText.isEmpty());
        const CMyItemData titled = ParseMenuCaption("-|Section help|Recent");
        QCOMPARE(titled.fType, kMenuSeparatorType);
        QCOMPARE(titled.sMenuText, QString("Recent"));
        QCOMPARE(ParseMenuCaption("-Recent").sMenuText, QString("Recent"));

        const CMyItemData check = ParseMenuCaption("#|Show the tree|&Tree");
        QVERIFY(check.bAsMark && check.bAsCheck);
        QCOMPARE(check.sMenuText, QString("&Tree"));
        QCOMPARE(ParseMenuCaption("#Tree").sMenuText, QString("Tree"));
        const CMyItemData option = ParseMenuCaption("*&Large");
        QVERIFY(option.bAsMark && !option.bAsCheck);
        QCOMPARE(option.sMenuText, QString("&Large"));

        // A numbered recent entry is marked, not checked, and keeps its text.
        const CMyItemData recent = ParseMenuCaption("&1 data.gdb");
        QVERIFY(recent.bAsMark && !recent.bAsCheck);
        QCOMPARE(recent.sMenuText, QString("&1 data.gdb"));
        QVERIFY(!ParseMenuCaption("&0 data.gdb").bAsMark);
        QVERIFY(!ParseMenuCaption("&1data.gdb").bAsMark);

        // Restoring gives back a caption that converts to the same item.
        for (const QString caption :
             {"|Help|&Caption", "-", "-|Help|Text", "*Text", "&2 Entry", "Plain"}) {
            const CMyItemData first = ParseMenuCaption(caption);
            const CMyItemData again = ParseMenuCaption(RebuildMenuCaption(first));
            QCOMPARE(again.sMenuText, first.sMenuText);
            QCOMPARE(again.sMenuHelp, first.sMenuHelp);
            QCOMPARE(again.fType, first.fType);
            QCOMPARE(again.bAsMark, first.bAsMark);
            QCOMPARE(again.bAsCheck, first.bAsCheck);
        }
        QCOMPARE(RebuildMenuCaption(ParseMenuCaption("#|Help|Text")), QString("#|Help|Text"));
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
