#include <QLineEdit>
#include <QVBoxLayout>

#include "support/testsupport.h"
#include "toolkit/ctlGoldButton.h"

namespace {

constexpr int kW = 80;
constexpr int kH = 25;
const QPoint kCentre(kW / 2, kH / 2);

// A palette whose 3D colours are all different, as on the classic grey desktop.
QPalette ClassicPalette() {
    QPalette palette;
    palette.setColor(QPalette::Button, QColor(192, 192, 192));
    palette.setColor(QPalette::Light, QColor(255, 255, 255));
    palette.setColor(QPalette::Midlight, QColor(223, 223, 223));
    palette.setColor(QPalette::Dark, QColor(128, 128, 128));
    palette.setColor(QPalette::Shadow, QColor(0, 0, 0));
    palette.setColor(QPalette::ButtonText, QColor(0, 0, 0));
    return palette;
}

// Glyphs without smoothing, so every inked pixel has exactly the caption's colour.
void Prepare(ctlGoldButton& button, const QString& caption = QString()) {
    button.setPalette(ClassicPalette());
    QFont font("DejaVu Sans");
    font.setPixelSize(12);
    font.setStyleStrategy(QFont::NoAntialias);
    button.setFont(font);
    button.resize(kW, kH);
    button.setCaption(caption);
    if (button.isWindow()) {
        button.move(300, 300);
        button.show();
        if (!QTest::qWaitForWindowExposed(&button)) qWarning("button not exposed");
    }
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

QRect Ink(const QImage& image, QRgb colour, const QRect& area = QRect(0, 0, kW, kH)) {
    QRect box;
    for (const QPoint& p : Pixels(image, colour, area)) box |= QRect(p, QSize(1, 1));
    return box;
}

QRgb Rgb(quint32 oleColour) {
    return QRgb(ctlGoldButton::TranslateColor(oleColour, ClassicPalette()));
}

// A move with no button held, as the pointer passes over the button.
void Hover(ctlGoldButton& button, const QPoint& pos) {
    QMouseEvent move(QEvent::MouseMove, pos, button.mapToGlobal(pos), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(&button, &move);
}

void Leave(ctlGoldButton& button) {
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&button, &leave);
}

QPixmap Solid(const QColor& colour, int size = 8) {
    QPixmap pixmap(size, size);
    pixmap.fill(colour);
    return pixmap;
}

// A skin that says where each pixel came from: the cell in green, the side of the frame in
// red (0 body, 1 top, 2 left, 3 bottom, 4 right; the corners belong to the top and bottom).
QPixmap LabelledSkin() {
    QImage skin(82, 115, QImage::Format_RGB32);
    for (int y = 0; y < skin.height(); ++y) {
        const int cell = y / 23;
        const int row = y % 23;
        for (int x = 0; x < skin.width(); ++x) {
            const int side = row < 2 ? 1 : row >= 21 ? 3 : x < 2 ? 2 : x >= 80 ? 4 : 0;
            skin.setPixel(x, y, qRgb(side * 50, cell * 50, 77));
        }
    }
    return QPixmap::fromImage(skin);
}

struct Origin {
    int cell;
    int side;
};

// Where the skin pixel at this point came from; cell -1 for the plain face.
Origin OriginAt(const QImage& shot, const QPoint& p) {
    const QRgb pixel = shot.pixel(p);
    if (qBlue(pixel) != 77) return {-1, -1};
    return {qGreen(pixel) / 50, qRed(pixel) / 50};
}

// The cell drawn as the body and the cell drawn as the frame (-1 for none), checking that
// every piece of the frame comes from the right side of one cell.
QPair<int, int> SkinLook(ctlGoldButton& button) {
    const QImage shot = Shot(button);
    const int body = OriginAt(shot, kCentre).cell;
    for (const QPoint& p : {QPoint(2, 2), QPoint(kW - 3, kH - 3), QPoint(21, 20)}) {
        if (OriginAt(shot, p).cell != body) return {-2, -2};
    }
    const QList<QPair<QPoint, int>> frame = {
        {{0, 0}, 1},      {{kW / 2, 1}, 1},      {{kW - 1, 0}, 1},      {{0, kH / 2}, 2},
        {{0, kH - 1}, 3}, {{kW / 2, kH - 2}, 3}, {{kW - 1, kH - 1}, 3}, {{kW - 1, kH / 2}, 4}};
    const int edge = OriginAt(shot, {0, 0}).cell;
    for (const auto& [point, side] : frame) {
        const Origin origin = OriginAt(shot, point);
        if (origin.cell != edge || (edge >= 0 && origin.side != side)) return {-2, -2};
    }
    return {body, edge};
}

}  // namespace

class GoldButtonTest : public QObject {
    Q_OBJECT

  private slots:
    void startsNamedAndReportsChanges();
    void standardEdgesFollowTheState();
    void captionMovesWhenPressed();
    void skinCellsFollowTheState();
    void shippedSkinIsCopiedCellByCell();
    void picturesFollowTheState();
    void maskColourIsReplacedInPictures();
    void disabledCaptionIsDrawnInRelief();
    void captionAndPicturePlacement();
    void clickComesBeforeMouseUp();
    void keyboardAndFocus();
};

void GoldButtonTest::startsNamedAndReportsChanges() {
    ctlGoldButton button(nullptr, "cmdAddVendor");
    QCOMPARE(button.Caption(), QString("cmdAddVendor"));
    QCOMPARE(button.size(), QSize(72, 25));

    QSignalSpy changed(&button, &ctlGoldButton::PropertyChanged);
    button.setProperty("Caption", "&Add");
    button.setHoverColor(ctlGoldButton::RGB(1, 2, 3));
    button.setEnabled(false);
    QCOMPARE(changed.size(), 3);
    QCOMPARE(changed[0][0].toString(), QString("Caption"));
    QCOMPARE(changed[1][0].toString(), QString("HoverColor"));
    QCOMPARE(changed[2][0].toString(), QString("Enabled"));

    const QPalette palette = ClassicPalette();
    QCOMPARE(ctlGoldButton::TranslateColor(0x80000014, palette), qint64(qRgb(255, 255, 255)));
    QCOMPARE(ctlGoldButton::TranslateColor(0x80000015, palette), qint64(qRgb(0, 0, 0)));
    QCOMPARE(ctlGoldButton::TranslateColor(ctlGoldButton::RGB(10, 20, 30), palette),
             qint64(qRgb(10, 20, 30)));
    QCOMPARE(ctlGoldButton::TranslateColor(0x80000063, palette), qint64(-1));
    QCOMPARE(ctlGoldButton::TranslateColor(0x40000000, palette), qint64(-1));
}

void GoldButtonTest::standardEdgesFollowTheState() {
    ctlGoldButton button;
    Prepare(button);
    const QRgb face = qRgb(192, 192, 192), light = qRgb(255, 255, 255),
               midlight = qRgb(223, 223, 223), dark = qRgb(128, 128, 128), black = qRgb(0, 0, 0);
    // Outer top-left, inner top-left, top-right and bottom-left corners, outer and inner
    // bottom-right.
    auto edges = [&] {
        const QImage s = Shot(button);
        return QList<QRgb>{s.pixel(0, 0),      s.pixel(1, 1),           s.pixel(kW - 1, 0),
                           s.pixel(0, kH - 1), s.pixel(kW - 1, kH - 1), s.pixel(kW - 2, kH - 2)};
    };
    using rgb = QList<QRgb>;

    QCOMPARE(edges(), rgb({light, face, dark, dark, dark, face}));
    Hover(button, kCentre);
    QCOMPARE(edges(), rgb({midlight, light, black, black, black, dark}));
    QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
    QCOMPARE(edges(), rgb({dark, black, light, light, light, midlight}));
    QTest::mouseRelease(&button, Qt::LeftButton, {}, kCentre);
    QCOMPARE(edges(), rgb({light, face, dark, dark, dark, face}));

    button.setOnUp(ctlGoldButton::edgeSunkenOuter);
    QCOMPARE(edges(), rgb({dark, face, light, light, light, face}));
    button.setOnUp(ctlGoldButton::edgeEtched);
    QCOMPARE(edges(), rgb({dark, light, light, light, light, dark}));
    button.setOnUp(ctlGoldButton::edgeNone);
    QCOMPARE(edges(), rgb({face, face, face, face, face, face}));

    // A skinned style without a skin paints as the standard one.
    button.setOnUp(ctlGoldButton::edgeRaisedInner);
    button.setStyle(ctlGoldButton::bsSkin);
    QCOMPARE(edges(), rgb({light, face, dark, dark, dark, face}));
}

void GoldButtonTest::captionMovesWhenPressed() {
    ctlGoldButton button;
    Prepare(button, "Add");
    const quint32 red = ctlGoldButton::RGB(255, 0, 0), blue = ctlGoldButton::RGB(0, 0, 255);
    button.setForeColor(red);
    button.setDownColor(red);
    button.setHoverColor(blue);
    // Centred beside a picture, and right aligned without one: both sides of the caption's
    // box move with the press.
    button.setPicture(Solid(QColor(0, 255, 0)));
    for (int alignment : {ctlGoldButton::vbCenter, ctlGoldButton::vbRightJustify}) {
        button.setAlignment(alignment);
        const QRect atRest = Ink(Shot(button), Rgb(red));
        QVERIFY(!atRest.isEmpty());

        Hover(button, kCentre);
        QCOMPARE(Ink(Shot(button), Rgb(blue)), atRest);
        QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
        QCOMPARE(Ink(Shot(button), Rgb(red)), atRest.translated(1, 1));
        // Dragged out while held it shows the hover look, and pressed again when back inside.
        QTest::mouseMove(&button, QPoint(kW + 10, 5));
        QCOMPARE(Ink(Shot(button), Rgb(blue)), atRest);
        QTest::mouseMove(&button, kCentre);
        QCOMPARE(Ink(Shot(button), Rgb(red)), atRest.translated(1, 1));
        QTest::mouseRelease(&button, Qt::LeftButton, {}, kCentre);
        QCOMPARE(Ink(Shot(button), Rgb(red)), atRest);
        button.setPicture(QPixmap());
    }
}

void GoldButtonTest::skinCellsFollowTheState() {
    ctlGoldButton button;
    Prepare(button);
    button.setSkinPicture(LabelledSkin());
    button.setStyle(ctlGoldButton::bsSkin);
    using Look = QPair<int, int>;

    // At rest the body follows OnDown (10: cell 4) and the frame OnUp (4: cell 1).
    QCOMPARE(SkinLook(button), Look(4, 1));
    Hover(button, kCentre);
    QCOMPARE(SkinLook(button), Look(3, 3));
    QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
    QCOMPARE(SkinLook(button), Look(4, 4));
    QTest::mouseRelease(&button, Qt::LeftButton, {}, kCentre);
    QCOMPARE(SkinLook(button), Look(4, 1));
    button.setEnabled(false);
    QCOMPARE(SkinLook(button), Look(4, 1));
    button.setEnabled(true);

    button.setOnUp(ctlGoldButton::edgeNone);
    QCOMPARE(SkinLook(button), Look(4, 0));
    button.setOnUp(ctlGoldButton::edgeRaised);
    QCOMPARE(SkinLook(button), Look(4, 3));
    // OnDown leaves the face as it is until the next drawing.
    button.setOnDown(ctlGoldButton::edgeSunkenOuter);
    QCOMPARE(SkinLook(button), Look(4, 3));
    Hover(button, kCentre);
    Leave(button);
    QCOMPARE(SkinLook(button), Look(2, 3));
    QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
    QCOMPARE(SkinLook(button), Look(2, 2));
    QTest::mouseRelease(&button, Qt::LeftButton, {}, kCentre);
    // A resting code without a cell leaves the frame undrawn.
    button.setOnUp(ctlGoldButton::edgeSunken);
    QCOMPARE(OriginAt(Shot(button), {0, 0}).cell, -1);
    QCOMPARE(OriginAt(Shot(button), kCentre).cell, 2);
    button.setOnUp(ctlGoldButton::edgeRaisedInner);

    // Outside 0, 4 and 5, hovering draws no cell and keeps the plain face.
    button.setOnHover(ctlGoldButton::edgeSunkenOuter);
    Leave(button);
    Hover(button, kCentre);
    QCOMPARE(SkinLook(button), Look(-1, -1));
    button.setOnHover(ctlGoldButton::edgeNone);
    Leave(button);
    Hover(button, kCentre);
    QCOMPARE(SkinLook(button), Look(0, 0));
}

void GoldButtonTest::shippedSkinIsCopiedCellByCell() {
    const QImage skin = QImage(":/skins/goldbutton.png").convertToFormat(QImage::Format_RGB32);
    QCOMPARE(skin.size(), QSize(82, 115));
    ctlGoldButton button;
    Prepare(button);
    button.setSkinPicture(QPixmap::fromImage(skin));
    button.setStyle(ctlGoldButton::bsSkin);
    // The body at (x, y) is the tile pixel ((x - 2) mod 19 + 3, (y - 2) mod 19 + 2) of its
    // cell; the frame corner is the cell's own corner.
    auto matches = [&](const QImage& shot, int bodyCell, int edgeCell) {
        for (const QPoint& p : {QPoint(5, 4), QPoint(40, 12), QPoint(kW - 3, kH - 3)}) {
            const QPoint source((p.x() - 2) % 19 + 3, (p.y() - 2) % 19 + 2 + 23 * bodyCell);
            if (shot.pixel(p) != skin.pixel(source)) return false;
        }
        return shot.pixel(0, 0) == skin.pixel(0, 23 * edgeCell) &&
               shot.pixel(kW - 1, kH - 1) == skin.pixel(81, 23 * edgeCell + 22);
    };
    const QImage rest = Shot(button);
    QVERIFY(matches(rest, 4, 1));
    Hover(button, kCentre);
    const QImage hover = Shot(button);
    QVERIFY(matches(hover, 3, 3));
    QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
    QVERIFY(matches(Shot(button), 4, 4));
    QVERIFY(rest.pixel(40, 5) != hover.pixel(40, 5));
}

void GoldButtonTest::picturesFollowTheState() {
    ctlGoldButton button;
    Prepare(button);
    button.setAlignment(ctlGoldButton::vbLeftJustify);
    const QColor red(255, 0, 0), green(0, 255, 0), blue(0, 0, 255), yellow(255, 255, 0);
    button.setPicture(Solid(red));
    button.setPictureHover(Solid(green));
    button.setPictureDown(Solid(blue));
    button.setPictureDisabled(Solid(yellow));
    // An 8-pixel picture sits 4 pixels from the left, at (25 - 8) / 2 + 0.5 = 9 from the top.
    auto at = [&](int x, int y) { return QColor(Shot(button).pixel(x, y)); };
    QCOMPARE(at(4, 9), red);
    QCOMPARE(at(11, 16), red);
    QVERIFY(at(3, 9) != red && at(4, 8) != red);

    Hover(button, kCentre);
    QCOMPARE(at(4, 9), green);
    QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
    QCOMPARE(at(5, 10), blue);
    QCOMPARE(at(12, 17), blue);
    QVERIFY(at(4, 9) != blue);
    button.setPictureDown(QPixmap());
    QTest::mouseMove(&button, QPoint(kCentre.x() + 1, kCentre.y()));
    QCOMPARE(at(5, 10), green);
    button.setPictureHover(QPixmap());
    QTest::mouseMove(&button, kCentre);
    QCOMPARE(at(5, 10), red);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, kCentre);

    button.setEnabled(false);
    QCOMPARE(at(4, 9), yellow);
    button.setPictureDisabled(QPixmap());
    QCOMPARE(at(4, 9), red);

    // Only a hover picture: nothing at rest.
    button.setEnabled(true);
    button.setPicture(QPixmap());
    button.setPictureHover(Solid(green));
    QCOMPARE(at(4, 9), QColor(192, 192, 192));
}

void GoldButtonTest::maskColourIsReplacedInPictures() {
    ctlGoldButton button;
    Prepare(button);
    button.setAlignment(ctlGoldButton::vbLeftJustify);
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(QColor(255, 0, 255));
    picture.setPixel(0, 0, qRgb(255, 0, 0));
    auto at = [&](int x, int y) { return QColor(Shot(button).pixel(x, y)); };

    button.setUseMaskColor(true);
    button.setMaskColor(ctlGoldButton::RGB(255, 0, 255));
    button.setPictureBackColor(ctlGoldButton::RGB(0, 128, 0));
    button.setPicture(QPixmap::fromImage(picture));
    QCOMPARE(at(4, 9), QColor(255, 0, 0));
    QCOMPARE(at(5, 10), QColor(0, 128, 0));

    // A system colour as the mask is never matched by a picture's pixels.
    button.setMaskColor(0x8000000F);
    picture.fill(QColor(192, 192, 192));
    button.setPicture(QPixmap::fromImage(picture));
    QCOMPARE(at(5, 10), QColor(192, 192, 192));
}

void GoldButtonTest::disabledCaptionIsDrawnInRelief() {
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
        for (const QPoint& p : dark) {
            const QPoint below = p + QPoint(1, 1);
            QVERIFY(light.contains(below) || dark.contains(below));
        }
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

void GoldButtonTest::captionAndPicturePlacement() {
    ctlGoldButton button;
    Prepare(button, "Go");
    const quint32 captionColour = ctlGoldButton::RGB(255, 0, 0);
    const QRgb ink = Rgb(captionColour);
    const QColor pictureColour(0, 0, 255);
    button.setForeColor(captionColour);
    auto pictureBox = [&] { return Ink(Shot(button), pictureColour.rgb()); };

    // Left aligned: 4 pixels from the edge without pictures, 7 past an 8-pixel picture.
    button.setAlignment(ctlGoldButton::vbLeftJustify);
    const int bare = Ink(Shot(button), ink).left();
    QVERIFY(bare >= 4 && bare <= 6);
    button.setPicture(Solid(pictureColour));
    QCOMPARE(Ink(Shot(button), ink).left(), bare + 8 + 3);
    QCOMPARE(pictureBox().left(), 4);

    // Right aligned: the picture goes just before the caption, unless both don't fit.
    button.setAlignment(ctlGoldButton::vbRightJustify);
    QVERIFY(pictureBox().left() > 4);
    QVERIFY(pictureBox().right() < Ink(Shot(button), ink).left());
    button.setCaption("A caption much too wide");
    QCOMPARE(pictureBox().left(), 4);

    button.setAlignment(ctlGoldButton::vbCenter);
    QCOMPARE(pictureBox().left(), 4);
    button.setCaption("Go");
    QVERIFY(pictureBox().left() > 4);
}

void GoldButtonTest::clickComesBeforeMouseUp() {
    ctlGoldButton button;
    Prepare(button, "Add");
    QStringList events;
    connect(&button, &ctlGoldButton::Click, [&] { events << "Click"; });
    connect(&button, &ctlGoldButton::MouseEnter, [&] { events << "MouseEnter"; });
    connect(&button, &ctlGoldButton::MouseExit, [&] { events << "MouseExit"; });
    connect(&button, &ctlGoldButton::MouseDown, [&] { events << "MouseDown"; });
    connect(&button, &ctlGoldButton::MouseMove, [&] { events << "MouseMove"; });
    connect(&button, &ctlGoldButton::MouseUp, [&] { events << "MouseUp"; });
    QSignalSpy downs(&button, &ctlGoldButton::MouseDown);

    QTest::mousePress(&button, Qt::LeftButton, Qt::ShiftModifier, QPoint(10, 12));
    QTest::mouseRelease(&button, Qt::LeftButton, {}, QPoint(10, 12));
    QCOMPARE(events, QStringList({"MouseDown", "Click", "MouseUp"}));
    QCOMPARE(downs[0],
             QVariantList({ctlGoldButton::vbLeftButton, ctlGoldButton::vbShiftMask, 10, 12}));

    events.clear();
    QTest::mousePress(&button, Qt::LeftButton, {}, kCentre);
    QTest::mouseMove(&button, QPoint(kW + 5, kCentre.y()));
    QTest::mouseRelease(&button, Qt::LeftButton, {}, QPoint(kW + 5, kCentre.y()));
    QCOMPARE(events, QStringList({"MouseDown", "MouseMove", "MouseUp"}));

    events.clear();
    QTest::mouseClick(&button, Qt::RightButton, {}, kCentre);
    QTest::mouseRelease(&button, Qt::LeftButton, {}, kCentre);
    QCOMPARE(events, QStringList({"MouseDown", "MouseUp", "MouseUp"}));

    events.clear();
    Hover(button, kCentre);
    Hover(button, kCentre + QPoint(1, 0));
    Leave(button);
    Leave(button);
    QCOMPARE(events, QStringList({"MouseEnter", "MouseMove", "MouseMove", "MouseExit"}));
}

void GoldButtonTest::keyboardAndFocus() {
    QWidget window;
    auto* layout = new QVBoxLayout(&window);
    auto* button = new ctlGoldButton(&window, "cmdAdd");
    auto* other = new QLineEdit(&window);
    layout->addWidget(button);
    layout->addWidget(other);
    Prepare(*button, "Add");
    button->setFixedSize(kW, kH);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QSignalSpy clicks(button, &ctlGoldButton::Click);

    button->setFocus();
    QTest::keyPress(button, Qt::Key_Space);
    QCOMPARE(clicks.size(), 0);
    QTest::keyRelease(button, Qt::Key_Space);
    QCOMPARE(clicks.size(), 1);
    // A key-up whose key-down went elsewhere does nothing.
    QTest::keyRelease(button, Qt::Key_Space);
    QCOMPARE(clicks.size(), 1);

    // Losing the focus while pressed puts the button at rest, and the release is no click.
    const QImage atRest = Shot(*button);
    QTest::mousePress(button, Qt::LeftButton, {}, kCentre);
    QVERIFY(Shot(*button) != atRest);
    other->setFocus();
    QVERIFY(!button->hasFocus());
    QCOMPARE(Shot(*button), atRest);
    QTest::mouseRelease(button, Qt::LeftButton, {}, kCentre);
    QCOMPARE(clicks.size(), 1);
}

VELMORA_TEST_MAIN(GoldButtonTest)
#include "goldbutton_test.moc"
