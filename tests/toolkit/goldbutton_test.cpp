#include "support/testsupport.h"
#include "toolkit/ctlGoldButton.h"

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

// A skin whose every pixel says, in green, which of its five cells it lies in.
QPixmap LabelledSkin() {
    QImage skin(82, 115, QImage::Format_RGB32);
    for (int y = 0; y < skin.height(); ++y) {
        for (int x = 0; x < skin.width(); ++x) skin.setPixel(x, y, qRgb(0, y / 23 * 50, 77));
    }
    return QPixmap::fromImage(skin);
}

// The skin cell a pixel came from; -1 for the plain face.
int CellAt(const QImage& shot, const QPoint& p) {
    const QRgb pixel = shot.pixel(p);
    return qBlue(pixel) == 77 ? qGreen(pixel) / 50 : -1;
}

// The cell drawn as the body and the cell drawn as the frame; -2 for a body or a frame
// that mixes cells.
QPair<int, int> SkinLook(ctlGoldButton& button) {
    const QImage shot = Shot(button);
    const int body = CellAt(shot, kCentre), edge = CellAt(shot, {0, 0});
    const bool oneBody = CellAt(shot, {2, 2}) == body && CellAt(shot, {kW - 3, kH - 3}) == body;
    const bool oneEdge = CellAt(shot, {0, kH / 2}) == edge &&
                         CellAt(shot, {kW / 2, kH - 1}) == edge &&
                         CellAt(shot, {kW - 1, kH / 2}) == edge;
    return {oneBody ? body : -2, oneEdge ? edge : -2};
}

}  // namespace

class GoldButtonTest : public QObject {
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
        button.setOnUp(ctlGoldButton::edgeSunkenOuter);
        QCOMPARE(edges(), rgb({dark, face, light, light, face}));
        button.setOnUp(ctlGoldButton::edgeRaisedInner);

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

    void skinCellsFollowTheState() {
        ctlGoldButton button;
        Prepare(button);
        button.setSkinPicture(LabelledSkin());
        button.setStyle(ctlGoldButton::bsSkin);
        using Look = QPair<int, int>;

        // At rest the body follows OnDown (10: cell 4) and the frame OnUp (4: cell 1).
        QCOMPARE(SkinLook(button), Look(4, 1));
        Hover(button);
        QCOMPARE(SkinLook(button), Look(3, 3));
        QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
        QCOMPARE(SkinLook(button), Look(4, 4));
        QTest::mouseRelease(&button, Qt::LeftButton, {}, kCentre);
        button.setEnabled(false);
        QCOMPARE(SkinLook(button), Look(4, 1));
        button.setEnabled(true);

        button.setOnUp(ctlGoldButton::edgeNone);
        QCOMPARE(SkinLook(button), Look(4, 0));
        button.setOnDown(ctlGoldButton::edgeSunkenOuter);
        Hover(button);
        QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
        QCOMPARE(SkinLook(button), Look(2, 2));
    }

    void picturesFollowTheState() {
        ctlGoldButton button;
        Prepare(button);
        button.setAlignment(ctlGoldButton::vbLeftJustify);
        const QColor red(255, 0, 0), green(0, 255, 0), blue(0, 0, 255), yellow(255, 255, 0);
        button.setPicture(Solid(red));
        button.setPictureHover(Solid(green));
        button.setPictureDown(Solid(blue));
        button.setPictureDisabled(Solid(yellow));
        // An 8-pixel picture sits 4 pixels from the left, at (25 - 8) / 2 + 0.5 = 9 from the top,
        // and one pixel further right and down while pressed.
        auto at = [&](int x, int y) { return QColor(Shot(button).pixel(x, y)); };
        QCOMPARE(Ink(Shot(button), red.rgb()), QRect(4, 9, 8, 8));
        Hover(button);
        QCOMPARE(at(4, 9), green);
        QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
        QCOMPARE(Ink(Shot(button), blue.rgb()), QRect(5, 10, 8, 8));
        // Without a pressed picture the hover one stands in, and without that the plain one.
        button.setPictureDown(QPixmap());
        QTest::mouseMove(&button, QPoint(kCentre.x() + 1, kCentre.y()));
        QCOMPARE(at(5, 10), green);
        button.setPictureHover(QPixmap());
        QTest::mouseMove(&button, kCentre);
        QCOMPARE(at(5, 10), red);
        QTest::mouseRelease(&button, Qt::LeftButton, {}, kCentre);
        button.setEnabled(false);
        QCOMPARE(at(4, 9), yellow);
    }

    void disabledCaptionIsDrawnInRelief() {
        ctlGoldButton button;
        Prepare(button, "Add");
        const QRect inside(2, 2, kW - 4, kH - 4);
        // The light copy is the dark one moved one pixel right and down, partly covered by it.
        auto checkRelief = [&](QRgb lightColour, QRgb darkColour) {
            const QImage shot = Shot(button);
            const QList<QPoint> light = Pixels(shot, lightColour, inside);
            const QList<QPoint> dark = Pixels(shot, darkColour, inside);
            QVERIFY(!light.isEmpty() && !dark.isEmpty());
            for (const QPoint& p : light) QVERIFY(dark.contains(p - QPoint(1, 1)));
            for (const QPoint& p : dark)
                QVERIFY(light.contains(p + QPoint(1, 1)) || dark.contains(p + QPoint(1, 1)));
        };
        QVERIFY(Pixels(Shot(button), qRgb(255, 255, 255), inside).isEmpty());
        button.setEnabled(false);
        checkRelief(qRgb(255, 255, 255), qRgb(128, 128, 128));

        // With a skin the relief takes the skin's own colours.
        button.setSkinHighlight(ctlGoldButton::RGB(255, 0, 0));
        button.setSkinDisabledText(ctlGoldButton::RGB(0, 0, 255));
        checkRelief(qRgb(255, 255, 255), qRgb(128, 128, 128));
        button.setSkinPicture(QPixmap(":/skins/goldbutton.png"));
        button.setStyle(ctlGoldButton::bsSkin);
        checkRelief(qRgb(255, 0, 0), qRgb(0, 0, 255));
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
};

VELMORA_TEST_MAIN(GoldButtonTest)
#include "goldbutton_test.moc"
