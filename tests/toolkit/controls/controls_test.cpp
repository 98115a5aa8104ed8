// The toolkit's own controls: the gold button (its edges, caption and events), the divider
// between two panes, dragged with the real mouse events of its frame, the owner-drawn menus (the
// main window's menus' widths, their help texts in the status bar and their accelerators), and the
// animated GIF control.

#include <QFrame>
#include <QListWidget>
#include <QMenu>

#include "shell/frmMain.h"
#include "support/testsupport.h"
#include "toolkit/controls/AnimatedGifCtl.h"
#include "toolkit/controls/WndCoolMenu.h"
#include "toolkit/controls/cVSplitter.h"
#include "toolkit/controls/ctlGoldButton.h"
#include "toolkit/controls/gifbuilder.h"
#include "toolkit/controls/mCoolMenu.h"
#include "toolkit/vb/vbruntime.h"

namespace {

constexpr int kW = 80;
constexpr int kH = 25;
const QPoint kCentre(kW / 2, kH / 2);

// A palette whose 3D colours are all different, as on the classic grey desktop, and glyphs
// without smoothing, so every inked pixel has exactly the caption's colour.
void Prepare(ctlGoldButton& button, const QString& caption = QString()) {
    QPalette palette;
    palette.setColor(QPalette::Button, QColor(192, 192, 192));
    palette.setColor(QPalette::Light, QColor(255, 255, 255));
    palette.setColor(QPalette::Midlight, QColor(223, 223, 223));
    palette.setColor(QPalette::Dark, QColor(128, 128, 128));
    palette.setColor(QPalette::Shadow, QColor(0, 0, 0));
    palette.setColor(QPalette::ButtonText, QColor(0, 0, 0));
    button.setPalette(palette);
    QFont font("DejaVu Sans");
    font.setPixelSize(12);
    font.setStyleStrategy(QFont::NoAntialias);
    button.setFont(font);
    button.resize(kW, kH);
    button.setCaption(caption);
    button.move(300, 300);
    button.show();
    if (!QTest::qWaitForWindowExposed(&button)) qWarning("button not exposed");
}

QImage Shot(ctlGoldButton& button) {
    return button.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

QList<QPoint> Pixels(const QImage& image, QRgb colour, const QRect& area) {
    QList<QPoint> found;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixel(x, y) == colour) found.append(QPoint(x, y));
        }
    }
    return found;
}

QRect Ink(const QImage& image, QRgb colour) {
    QRect box;
    for (const QPoint& p : Pixels(image, colour, QRect(0, 0, kW, kH))) box |= QRect(p, QSize(1, 1));
    return box;
}

// A move with no button held, as the pointer passes over the button.
void Hover(ctlGoldButton& button, const QPoint& pos = kCentre) {
    QMouseEvent move(QEvent::MouseMove, pos, button.mapToGlobal(pos), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(&button, &move);
}

QPixmap Solid(const QColor& colour) {
    QPixmap pixmap(8, 8);
    pixmap.fill(colour);
    return pixmap;
}

// The two panes and their divider in a window of their own.
struct Panes {
    QWidget form;
    QListWidget* left = new QListWidget(&form);
    QListWidget* right = new QListWidget(&form);
    QFrame* divider = new QFrame(&form);
    cVSplitter splitter;

    explicit Panes(bool tracking) {
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

// Black, red, green, blue.
const QByteArray kGlobalTable("\x00\x00\x00\xFF\x00\x00\x00\xFF\x00\x00\x00\xFF", 12);
// White, yellow, cyan, and red again, so the transparent red shares its colour.
const QByteArray kLocalTable("\xFF\xFF\xFF\xFF\xFF\x00\x00\xFF\xFF\xFF\x00\x00", 12);

TestGifFrame Filled(int left, int top, int width, int height, unsigned char index) {
    TestGifFrame frame;
    frame.left = left;
    frame.top = top;
    frame.width = width;
    frame.height = height;
    frame.pixels = QList<unsigned char>(width * height, index);
    return frame;
}

QStringList TempFrameFiles() {
    return QDir(QDir::tempPath()).entryList({"*.CUSTOM"}, QDir::Files);
}

}  // namespace

class ControlsTest : public QObject {
    Q_OBJECT

  private slots:
    void edgesAndCaptionFollowThePress() {
        ctlGoldButton button;
        Prepare(button, "Add");
        const QRgb face = qRgb(192, 192, 192), light = qRgb(255, 255, 255),
                   midlight = qRgb(223, 223, 223), dark = qRgb(128, 128, 128),
                   black = qRgb(0, 0, 0);
        // Outer and inner top-left, top-right corner, outer and inner bottom-right.
        auto edges = [&] {
            const QImage s = Shot(button);
            return QList<QRgb>{s.pixel(0, 0), s.pixel(1, 1), s.pixel(kW - 1, 0),
                               s.pixel(kW - 1, kH - 1), s.pixel(kW - 2, kH - 2)};
        };
        using rgb = QList<QRgb>;
        QCOMPARE(edges(), rgb({light, face, dark, dark, face}));

        const quint32 red = ctlGoldButton::RGB(255, 0, 0), blue = ctlGoldButton::RGB(0, 0, 255);
        const QRgb redInk = qRgb(255, 0, 0), blueInk = qRgb(0, 0, 255);
        button.setForeColor(red);
        button.setDownColor(red);
        button.setHoverColor(blue);
        // Centred beside a picture, and right aligned without one: both sides of the caption's
        // box move with the press.
        button.setPicture(Solid(QColor(0, 255, 0)));
        for (int alignment : {ctlGoldButton::vbCenter, ctlGoldButton::vbRightJustify}) {
            button.setAlignment(alignment);
            const QRect atRest = Ink(Shot(button), redInk);
            QVERIFY(!atRest.isEmpty());

            Hover(button);
            QCOMPARE(Ink(Shot(button), blueInk), atRest);
            QCOMPARE(edges(), rgb({midlight, light, black, black, dark}));
            QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
            QCOMPARE(Ink(Shot(button), redInk), atRest.translated(1, 1));
            QCOMPARE(edges(), rgb({dark, black, light, light, midlight}));
            // Dragged out while held it shows the hover look, and pressed again when back inside.
            QTest::mouseMove(&button, QPoint(kW + 10, 5));
            QCOMPARE(Ink(Shot(button), blueInk), atRest);
            QTest::mouseMove(&button, kCentre);
            QCOMPARE(Ink(Shot(button), redInk), atRest.translated(1, 1));
            QTest::mouseRelease(&button, Qt::LeftButton, {}, kCentre);
            QCOMPARE(Ink(Shot(button), redInk), atRest);
            button.setPicture(QPixmap());
        }
    }

    void clickComesBeforeMouseUp() {
        ctlGoldButton button;
        Prepare(button, "Add");
        button.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&button));
        QStringList events;
        connect(&button, &ctlGoldButton::Click, [&] { events << "Click"; });
        connect(&button, &ctlGoldButton::MouseDown, [&] { events << "MouseDown"; });
        connect(&button, &ctlGoldButton::MouseMove, [&] { events << "MouseMove"; });
        connect(&button, &ctlGoldButton::MouseUp, [&] { events << "MouseUp"; });
        QSignalSpy downs(&button, &ctlGoldButton::MouseDown);

        QTest::mousePress(&button, Qt::LeftButton, Qt::ShiftModifier, QPoint(10, 12));
        QTest::mouseRelease(&button, Qt::LeftButton, {}, QPoint(10, 12));
        QCOMPARE(events, QStringList({"MouseDown", "Click", "MouseUp"}));
        QCOMPARE(downs[0],
                 QVariantList({ctlGoldButton::vbLeftButton, ctlGoldButton::vbShiftMask, 10, 12}));

        // Released outside, or clicked with the right button: no Click.
        events.clear();
        QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
        QTest::mouseMove(&button, QPoint(kW + 5, kCentre.y()));
        QTest::mouseRelease(&button, Qt::LeftButton, {}, QPoint(kW + 5, kCentre.y()));
        QTest::mouseClick(&button, Qt::RightButton, {}, kCentre);
        QCOMPARE(events,
                 QStringList({"MouseDown", "MouseMove", "MouseUp", "MouseDown", "MouseUp"}));

        // Space clicks at key-up only, and only after its own key-down.
        events.clear();
        button.setFocus();
        QTest::keyPress(&button, Qt::Key_Space);
        QCOMPARE(events, QStringList());
        QTest::keyRelease(&button, Qt::Key_Space);
        QTest::keyRelease(&button, Qt::Key_Space);
        QCOMPARE(events, QStringList({"Click"}));
    }

    void escapeCancelsADrag() {
        for (const bool tracking : {true, false}) {
            Panes window(tracking);
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

    void mainWindowMenus() {
        TempProgramFolder folder;
        folder.installCatalogue();
        frmMain* form = StartProgram();
        QVERIFY(form);

        // Every caption shows whole: an item is as wide as its caption and the classic margins,
        // 5 and a picture column of 16 + 2 on either side. (Run at 100 % and at 200 % scale.)
        for (QMenu* menu : {form->mnuListviewContext, form->mnuTreeviewContext}) {
            const QFontMetrics metrics(menu->font());
            for (QAction* action : menu->actions()) {
                if (action->isSeparator()) continue;
                const int caption = metrics.horizontalAdvance(QString(action->text()).remove('&'));
                QVERIFY2(menu->actionGeometry(action).width() >= caption + 5 + (16 + 2) * 2,
                         qPrintable(action->text()));
            }
        }

        // The help of the item under the pointer, then under the keys, reaches the status bar;
        // a disabled item is highlighted as the others are, and its help shows too.
        QMenu* menu = form->mnuListviewContext;
        for (QAction* action : menu->actions()) action->setEnabled(true);
        form->mnuRenameCD->setEnabled(false);
        menu->popup(form->mapToGlobal(QPoint(40, 80)));
        QVERIFY(QTest::qWaitForWindowExposed(menu));
        QTest::mouseMove(menu, menu->actionGeometry(form->mnuDeleteCD).center());
        QTRY_COMPARE(form->PanelText(1), QString("Delete the CD-title"));
        QTest::keyClick(menu, Qt::Key_Up);
        QTRY_COMPARE(form->PanelText(1), QString("Rename the CD-title"));
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Down);
        QTRY_COMPARE(form->PanelText(1), QString("Lend the CD-title(s) to someone"));
        QTest::keyClick(menu, Qt::Key_Down);
        QTest::keyClick(menu, Qt::Key_Down);
        QTRY_COMPARE(form->PanelText(1), QString("Search for CD"));
        // An accelerator picks its item.
        QSignalSpy picked(form->mnuDeleteCD, &QAction::triggered);
        QTest::keyClick(menu, Qt::Key_D);
        QTRY_VERIFY(!menu->isVisible());
        QCOMPARE(picked.count(), 1);
        QCOMPARE(form->PanelText(1), QString());

        EndProgram();
    }

    void framesOfDifferentSizesAndTablesAreCutAndDrawn() {
        ScriptedDialogs dialogs;
        // Frame files the control leaves behind are looked for in a temporary folder of this
        // run's own: other programs' GIF controls use the shared one at the same time.
        QTemporaryDir temp;
        const QByteArray sharedTemp = qgetenv("TMPDIR");
        qputenv("TMPDIR", QFile::encodeName(temp.path()));
        const auto restoreTemp = qScopeGuard([&sharedTemp] {
            if (sharedTemp.isEmpty())
                qunsetenv("TMPDIR");
            else
                qputenv("TMPDIR", sharedTemp);
        });
        TestGifFrame first = Filled(0, 0, 4, 3, 1);
        first.delay = 7;
        TestGifFrame wide = Filled(2, 1, 40, 2, 2);
        wide.localTable = kLocalTable;
        wide.disposal = 2;
        AnimatedGifCtl gif;
        gif.SetUserDelay(500);
        gif.LoadGifData(BuildGif(8, 4, kGlobalTable, {first, wide}));
        QVERIFY(gif.bValidGif());
        QCOMPARE(gif.NumberofFrames(), 1);
        QCOMPARE(gif.UserDelay(), 1);
        QVERIFY(TempFrameFiles().isEmpty());
        QCOMPARE(gif.Stream().frames[0].iDelay, 7);
        // The wide frame widens the canvas, rounded up to 32 pixels.
        QCOMPARE(gif.Canvas().size(), QSize(64, 4));
        QCOMPARE(gif.FramePicture(0).pixel(0, 0), qRgb(255, 0, 0));
        QCOMPARE(gif.FramePicture(1).size(), QSize(40, 2));
        QCOMPARE(gif.FramePicture(1).pixel(0, 0), qRgb(0, 255, 255));
        QCOMPARE(gif.Canvas().pixel(3, 2), qRgb(255, 0, 0));
        // The second frame clears the canvas first, then lands at its own place.
        gif.RenderGif(1);
        QCOMPARE(gif.Canvas().pixel(0, 0), gif.BackColor().rgb());
        QCOMPARE(gif.Canvas().pixel(2, 1), qRgb(0, 255, 255));
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }
};

VELMORA_TEST_MAIN(ControlsTest)
#include "controls_test.moc"
