// The title list: its items, counting and sorting.

#include <QHeaderView>
#include <QTextDocument>
#include <QToolTip>

#include "disc/coverimage.h"
#include "disc/coverimages.h"

#include "app/mGlobals.h"
#include "shell/listtree_support.h"
#include "shell/mGlobalFunctions.h"
#include "shell/titlelistmodel.h"
#include "store/dao.h"
#include "store/shelfrecords.h"

using namespace listtree;

namespace {

// The texts of a 0-based column, top to bottom.
QStringList ColumnTexts(int column) {
    QStringList texts;
    for (int row = 0; row < gMainForm->ListItemCount(); ++row)
        texts << (column == 0 ? gMainForm->ListItemText(row)
                              : gMainForm->ListItemSubItems(row).value(column - 1));
    return texts;
}

void ClickHeader(int column) {
    QHeaderView* header = gMainForm->ListView1->header();
    const int logical = column - 1;
    QTest::mouseClick(
        header->viewport(), Qt::LeftButton, {},
        QPoint(header->sectionViewportPosition(logical) + header->sectionSize(logical) / 2,
               header->height() / 2));
}

void ClickRow(int row) {
    QTreeView* list = gMainForm->ListView1;
    const QModelIndex index = gMainForm->ListModel()->index(row, 0);
    list->scrollTo(index);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(index).center());
}

}  // namespace

class ListTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        folder_ = std::make_unique<TempProgramFolder>();
        folder_->installCatalogue();
        StartProgram();
        QVERIFY(QTest::qWaitForWindowExposed(gMainForm));
    }

    void cleanup() {
        EndProgram();
        folder_.reset();
    }

    void itemsCarryKeysTagsIconsAndSubItems() {
        frmMain* form = gMainForm;
        gDatabase->Execute(
            "INSERT INTO platform (idplatform, nmplatform, visible) VALUES (9, "
            "'Arcade', 1)");
        gDatabase->Execute(
            "INSERT INTO type (idtype, nmtype, idplatform) VALUES (90, 'Cabinet', 9)");
        gDatabase->Execute(
            "INSERT INTO specific (idspecific, nmspecific, idtype) VALUES (900, 'Upright', 90)");
        gDatabase->Execute(
            "INSERT INTO vendor (idvendor, nmvendor, idplatform) VALUES (99, 'Arcadia', 9)");
        const long arcade = AddTitle(*gDatabase, "Zap", 9, 90, 900, 99, 4, 2);
        const long album = AddTitle(*gDatabase, "Blue", 1, 1, 1, 1, 2, 1);
        FillTree(1, "");
        ForceSelectNode(1);

        QCOMPARE(form->ListItemCount(), 2);
        QCOMPARE(form->PanelText(2), QString("00002 item(s) found"));
        // Sorted by title, whatever the order of the statement.
        QCOMPARE(ColumnTexts(0), QStringList({"Blue", "Zap"}));
        QCOMPARE(form->ListItemKey(0), "id" + QString::number(album));
        QCOMPARE(form->ListItemTag(0), QString::number(album));
        QCOMPARE(form->ListItemSubItems(0),
                 QStringList({"Various artists", "Pop", "Album", "1", "CD-R"}));
        QCOMPARE(form->ListModel()->Row(0).smallIcon, 1);
        QCOMPARE(form->ListItemKey(1), "id" + QString::number(arcade));
        QCOMPARE(form->ListItemSubItems(1),
                 QStringList({"Arcadia", "Cabinet", "Upright", "2", "DVD-ROM"}));
        QCOMPARE(form->ListModel()->Row(1).smallIcon, 6);
        // The first item is selected after a read, and the columns fit their texts.
        QCOMPARE(form->SelectedListIndex(), 0);
        QHeaderView* header = form->ListView1->header();
        QVERIFY(header->sectionSize(1) >=
                form->ListView1->fontMetrics().horizontalAdvance("Various artists"));
        // A platform folder lists its own titles, a type folder those of its type.
        ClickNode(NodeWithKey("key9"));
        QCOMPARE(ColumnTexts(0), QStringList({"Zap"}));
        ClickNode(NodeWithKey("key1key1"));
        QCOMPARE(ColumnTexts(0), QStringList({"Blue"}));
        ClickNode(NodeWithKey("key1key2"));
        QCOMPARE(form->ListItemCount(), 0);
    }

    void columnClicksSortAsText() {
        frmMain* form = gMainForm;
        AddTitle(*gDatabase, "b10", 1, 1, 1, 1, 1, 10);
        AddTitle(*gDatabase, "B2", 1, 1, 1, 2, 1, 9);
        AddTitle(*gDatabase, "a", 1, 1, 1, 1, 1, 2);
        ForceSelectNode(1);
        QCOMPARE(ColumnTexts(0), QStringList({"a", "b10", "B2"}));
        ClickRow(1);
        const QString selectedKey = form->ListItemKey(form->SelectedListIndex());

        ClickHeader(1);
        QCOMPARE(ColumnTexts(0), QStringList({"B2", "b10", "a"}));
        QCOMPARE(form->ListModel()->SortOrder(), Qt::DescendingOrder);
        // The selection stays on its title through a sort.
        QCOMPARE(form->ListItemKey(form->SelectedListIndex()), selectedKey);

        ClickHeader(5);
        QCOMPARE(form->ListModel()->SortKey(), 4);
        QCOMPARE(ColumnTexts(4), QStringList({"10", "2", "9"}));
        ClickHeader(5);
        QCOMPARE(ColumnTexts(4), QStringList({"9", "2", "10"}));

        // A new item takes its sorted place.
        form->AddListItem("id999", "new", 1, {"Aardvark", "Pop", "Album", "1", "CD-ROM"}, "999");
        QCOMPARE(ColumnTexts(1).last(), QString("Aardvark"));
        QCOMPARE(form->ListIndexOfKey("id999"), 3);
    }

    void hoverShowsTheCoverThumbnail() {
        const long covered = AddTitle(*gDatabase, "Covered", 1, 1, 1, 1, 1, 1);
        AddTitle(*gDatabase, "Plain", 1, 1, 1, 1, 1, 1);
        PreparedCover prepared;
        QString problem;
        QVERIFY(PrepareCover(coverimages::Jpeg(300, 200), prepared, problem));
        WriteCover(covered, {prepared.image, prepared.thumbnail, {}, "front.jpg", "2025-01-01"});
        ForceSelectNode(1);
        QCOMPARE(ColumnTexts(0), QStringList({"Covered", "Plain"}));

        // Hovering the first row, as the mouse does.
        QTreeView* list = gMainForm->ListView1;
        const QPoint at = list->visualRect(gMainForm->ListModel()->index(0, 1)).center();
        QHelpEvent hover(QEvent::ToolTip, at, list->viewport()->mapToGlobal(at));
        QApplication::sendEvent(list->viewport(), &hover);
        QVERIFY(QToolTip::isVisible());
        const QString tip = QToolTip::text();
        QVERIFY2(tip.contains("Covered"), qPrintable(tip));
        // The thumbnail is in the tooltip itself, as the tooltip's rich text shows it.
        QTextDocument document;
        document.setHtml(tip);
        const QString source = tip.section("src=\"", 1).section('"', 0, 0);
        const QPixmap shown =
            qvariant_cast<QPixmap>(document.resource(QTextDocument::ImageResource, QUrl(source)));
        QCOMPARE(shown.size(), QSize(96, 64));
        // A title without a cover has no tooltip, as before.
        QVERIFY(gMainForm->ListModel()
                    ->data(gMainForm->ListModel()->index(1, 0), Qt::ToolTipRole)
                    .toString()
                    .isEmpty());
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
};

VELMORA_TEST_MAIN(ListTest)
#include "list_test.moc"
