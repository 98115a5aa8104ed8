// The folder tree: how it is built from the catalogue, and how selections turn into reads.

#include "app/mGlobals.h"
#include "lookups/viewqueries.h"
#include "shell/listtree_support.h"
#include "shell/mGlobalFunctions.h"

using namespace listtree;

class TreeTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        folder_ = std::make_unique<TempProgramFolder>();
        folder_->installCatalogue();
        StartProgram();
        QVERIFY(QTest::qWaitForWindowExposed(gMainForm));
        // The context menu that follows a right click is closed at once, as by Escape.
        gMainForm->PopupMenuHook = [](QMenu*) {};
    }

    void cleanup() {
        EndProgram();
        folder_.reset();
    }

    void buildsFoldersInNameOrderWithKeysByIds() {
        frmMain* form = gMainForm;
        QCOMPARE(form->NodeKey(form->Node(1)), QString("root"));
        // Types in name order under their platform.
        QCOMPARE(form->NodeKey(form->Node(3)), QString("key1key3"));
        QCOMPARE(form->Node(3)->parent(), form->Node(2));
        QCOMPARE(form->NodeKey(form->Node(form->NodeCount())), QString("search"));
        QStringList platforms;
        for (int child = 0; child < form->Node(1)->childCount() - 1; ++child)
            platforms << form->Node(1)->child(child)->text(0);
        QCOMPARE(platforms, QStringList({"Audio", "Game console", "Macintosh", "PC", "Video"}));
        for (int index = 1; index <= form->NodeCount(); ++index)
            QCOMPARE(form->NodeIndex(form->Node(index)), index);

        // The start-up selected node 2 and read it, and the window came to rest.
        QCOMPARE(form->NodeKey(form->SelectedNode()), QString("key1"));
        QCOMPARE(gSelectedIndex, 2);
        QVERIFY(gViewSQL.contains("platform.idplatform >= 1 and platform.idplatform <= 1 order"));
        QCOMPARE(form->MousePointer(), int(vbArrow));

        // Ids of several digits, twin names, a platform without types.
        gDatabase->Execute(
            "INSERT INTO platform (idplatform, nmplatform, visible) VALUES (12, 'Twin', 1), "
            "(13, 'Twin', 1)");
        gDatabase->Execute("INSERT INTO type (idtype, nmtype, idplatform) VALUES (103, 'T', 12)");
        FillTree(1, "");
        QTreeWidgetItem* twelve = NodeWithKey("key12");
        QTreeWidgetItem* thirteen = NodeWithKey("key13");
        QVERIFY(twelve && thirteen);
        QCOMPARE(thirteen->childCount(), 0);
        QCOMPARE(twelve->child(0), NodeWithKey("key12key103"));
        ClickNode(NodeWithKey("key12key103"));
        QVERIFY2(gViewSQL.contains("platform.idplatform in (12) and title.idtype = 103 order by"),
                 qPrintable(gViewSQL));
    }

    void keyboardMovesReadOnlyTheNodeRestedOn() {
        frmMain* form = gMainForm;
        ClickNode(form->Node(1));
        QCOMPARE(gSelectedKey, QString("root"));
        form->TV1->setFocus();
        gViewSQL.clear();
        for (int move = 0; move < 5; ++move) QTest::keyClick(form->TV1, Qt::Key_Down);
        QVERIFY(gViewSQL.isEmpty());
        QVERIFY(form->tmrWait->isActive());
        const QString restedOn = form->NodeKey(form->SelectedNode());
        QCOMPARE(restedOn, QString("key2"));
        QTRY_VERIFY_WITH_TIMEOUT(!gViewSQL.isEmpty(), 5000);
        QCOMPARE(gSelectedKey, restedOn);
        QVERIFY(gViewSQL.contains("platform.idplatform >= 2 and platform.idplatform <= 2 order"));
        QVERIFY(!form->tmrWait->isActive());
    }

    void clickReadsAtOnceButNotTwice() {
        frmMain* form = gMainForm;
        gViewSQL.clear();
        ClickNode(NodeWithKey("key3"));
        QVERIFY(gViewSQL.contains("platform.idplatform >= 3 and platform.idplatform <= 3 order"));
        QCOMPARE(gRequestedKey, QString("key3"));

        gViewSQL.clear();
        ClickNode(NodeWithKey("key3"));
        QVERIFY(gViewSQL.isEmpty());

        ForceSelectNode(form->NodeIndex(NodeWithKey("key3")));
        QVERIFY(!gViewSQL.isEmpty());
        QCOMPARE(gRequestedKey, QString("forcechange"));

        // A renamed platform moves in the name order, so the rebuilt tree selects another
        // folder than the list shows; a click on that folder reads it.
        ClickNode(NodeWithKey("key1"));
        gDatabase->Execute("UPDATE platform SET nmplatform = 'Zither' WHERE idplatform = 1");
        gTreeDirty = true;
        RefreshIfDirty();
        QTreeWidgetItem* highlighted = form->SelectedNode();
        const QString key = form->NodeKey(highlighted);
        QVERIFY(key != "key1");
        gViewSQL.clear();
        ClickNode(highlighted);
        QCOMPARE(gRequestedKey, key);
        QVERIFY2(gViewSQL.contains(QString("platform.idplatform >= %1 and").arg(key.mid(3))),
                 qPrintable(gViewSQL));

        // The dirty list is read again, the clean one is not.
        gViewSQL.clear();
        RefreshIfDirty();
        QVERIFY(gViewSQL.isEmpty());
        gListDirty = true;
        RefreshIfDirty();
        QVERIFY(!gViewSQL.isEmpty());
        QVERIFY(!gListDirty);
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
};

VELMORA_TEST_MAIN(TreeTest)
#include "tree_test.moc"
