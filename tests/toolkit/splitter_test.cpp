// The divider between two panes, dragged with the real mouse events of its frame.

#include <QFrame>
#include <QListWidget>
#include <QRubberBand>

#include "support/testsupport.h"
#include "toolkit/cVSplitter.h"

class SplitterTest : public QObject {
    Q_OBJECT

    struct Window {
        QWidget form;
        QListWidget* left = new QListWidget(&form);
        QListWidget* right = new QListWidget(&form);
        QFrame* divider = new QFrame(&form);
        cVSplitter splitter;

        explicit Window(bool tracking) {
            form.resize(600, 400);
            divider->setGeometry(200, 0, 4, 10);
            splitter.SetControls(&form, left, right, divider);
            splitter.SetTrackSplit(tracking);
            splitter.SetTop(30);
            splitter.SetHeightOffset(20);
            form.show();
            QVERIFY(QTest::qWaitForWindowExposed(&form));
        }
        void Press(int x) { QTest::mousePress(divider, Qt::LeftButton, {}, QPoint(x, 5)); }
        void Move(int x) { QTest::mouseMove(divider, QPoint(x, 5)); }
        void Release(int x) { QTest::mouseRelease(divider, Qt::LeftButton, {}, QPoint(x, 5)); }
    };

  private slots:
    void layoutAndProperties() {
        Window window(true);
        QCOMPARE(window.splitter.Left(), 200L);
        // Sunken panes overlap the divider by their border.
        QCOMPARE(window.left->geometry(), QRect(0, 30, 201, 350));
        QCOMPARE(window.right->geometry(), QRect(202, 30, 600 - 203 + 1, 350));
        QCOMPARE(window.divider->geometry(), QRect(200, 30, 3, 350));

        window.splitter.SetLeft(-5);
        window.splitter.SetTop(-1);
        window.splitter.SetHeightOffset(-1);
        window.splitter.SetWidth(0);
        QCOMPARE(window.splitter.Left(), 200L);
        QCOMPARE(window.splitter.Top(), 30L);
        QCOMPARE(window.splitter.HeightOffset(), 20L);
        QCOMPARE(window.splitter.Width(), 3);

        window.splitter.SetLeft(150);
        QCOMPARE(window.left->width(), 151);

        // A window too low for the panes leaves them where they were.
        const QRect before = window.right->geometry();
        window.form.resize(600, 40);
        QCOMPARE(window.right->geometry(), before);
        // Growing keeps the divider's pixel place.
        window.form.resize(800, 500);
        QCOMPARE(window.splitter.Left(), 150L);
        QCOMPARE(window.right->geometry(), QRect(152, 30, 800 - 153 + 1, 450));

        // A missing pane is refused; the divider keeps the panes it has.
        ScriptedDialogs dialogs;
        QVERIFY(!window.splitter.SetControls(&window.form, window.left, nullptr, window.divider));
        QCOMPARE(dialogs.prompts(), QStringList("Pane must be a window (have a window handle)."));
        window.splitter.SetLeft(120);
        QCOMPARE(window.left->width(), 121);
    }

    void dragClampsAtBothEdges() {
        Window window(true);
        const long minPane = window.splitter.MinPane();
        QVERIFY(minPane > 0);
        window.Press(1);
        QVERIFY(window.splitter.Splitting());
        window.Move(-500);
        QCOMPARE(window.splitter.Left(), minPane);
        QCOMPARE(window.left->width(), int(minPane) + 1);
        window.Move(2000);
        QCOMPARE(window.splitter.Left(), 600 - (3 + minPane));
        window.Release(2000);
        QVERIFY(!window.splitter.Splitting());
        QCOMPARE(window.divider->x(), int(600 - (3 + minPane)));
    }

    void escapeCancelsADrag() {
        for (const bool tracking : {true, false}) {
            Window window(tracking);
            const QRect left = window.left->geometry();
            window.Press(1);
            window.Move(-100);
            QCOMPARE(window.splitter.GhostBar() != nullptr, !tracking);
            QCOMPARE(window.left->geometry() != left, tracking);
            QTest::keyClick(&window.form, Qt::Key_Escape);
            QVERIFY(!window.splitter.Splitting());
            QVERIFY(!window.splitter.GhostBar());
            QCOMPARE(window.splitter.Left(), 200L);
            QCOMPARE(window.left->geometry(), left);
        }
    }

    void ghostBarMovesThePanesAtTheEnd() {
        Window window(false);
        window.Press(1);
        window.Move(-50);
        QRubberBand* bar = window.splitter.GhostBar();
        QVERIFY(bar);
        QCOMPARE(bar->geometry(), QRect(150, 30, 3, 350));
        QCOMPARE(window.left->width(), 201);
        window.Release(-50);
        QVERIFY(!window.splitter.GhostBar());
        QCOMPARE(window.left->width(), 151);
    }
};

VELMORA_TEST_MAIN(SplitterTest)
#include "splitter_test.moc"
