#include "toolkit/controls/ctlGoldButton.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <array>

#include "toolkit/vb/keyupguard.h"

namespace {

constexpr quint32 kButtonFace = 0x8000000F;

// A new button is 1075 by 375 twips, at 15 twips a pixel.
constexpr QSize kNewButtonSize(72, 25);

int VbButtons(Qt::MouseButtons buttons) {
    int code = 0;
    if (buttons & Qt::LeftButton) code |= ctlGoldButton::vbLeftButton;
    if (buttons & Qt::RightButton) code |= ctlGoldButton::vbRightButton;
    if (buttons & Qt::MiddleButton) code |= ctlGoldButton::vbMiddleButton;
    return code;
}

int VbShift(Qt::KeyboardModifiers modifiers) {
    int code = 0;
    if (modifiers & Qt::ShiftModifier) code |= ctlGoldButton::vbShiftMask;
    if (modifiers & Qt::ControlModifier) code |= ctlGoldButton::vbCtrlMask;
    if (modifiers & Qt::AltModifier) code |= ctlGoldButton::vbAltMask;
    return code;
}

quint32 OleColorOf(QRgb pixel) {
    return ctlGoldButton::RGB(qRed(pixel), qGreen(pixel), qBlue(pixel));
}

}  // namespace

qint64 ctlGoldButton::TranslateColor(quint32 color, const QPalette& palette) {
    const quint32 kind = color >> 24;
    if (kind == 0x00 || kind == 0x02) {
        return qRgb(int(color & 0xFF), int((color >> 8) & 0xFF), int((color >> 16) & 0xFF));
    }
    if (kind != 0x80) return -1;
    struct SystemColour {
        QPalette::ColorGroup group;
        QPalette::ColorRole role;
    };
    // The system colour numbers in their classic order, each with the palette entry that
    // plays its part on this desktop.
    static constexpr std::array<SystemColour, 25> kSystemColours = {{
        {QPalette::Active, QPalette::Midlight},           // scroll bar
        {QPalette::Active, QPalette::Window},             // desktop
        {QPalette::Active, QPalette::Highlight},          // active caption
        {QPalette::Inactive, QPalette::Highlight},        // inactive caption
        {QPalette::Active, QPalette::Window},             // menu
        {QPalette::Active, QPalette::Base},               // window
        {QPalette::Active, QPalette::Shadow},             // window frame
        {QPalette::Active, QPalette::WindowText},         // menu text
        {QPalette::Active, QPalette::Text},               // window text
        {QPalette::Active, QPalette::HighlightedText},    // caption text
        {QPalette::Active, QPalette::Button},             // active border
        {QPalette::Active, QPalette::Button},             // inactive border
        {QPalette::Active, QPalette::Dark},               // application workspace
        {QPalette::Active, QPalette::Highlight},          // highlight
        {QPalette::Active, QPalette::HighlightedText},    // highlighted text
        {QPalette::Active, QPalette::Button},             // button face
        {QPalette::Active, QPalette::Dark},               // button shadow
        {QPalette::Disabled, QPalette::Text},             // grey text
        {QPalette::Active, QPalette::ButtonText},         // button text
        {QPalette::Inactive, QPalette::HighlightedText},  // inactive caption text
        {QPalette::Active, QPalette::Light},              // button highlight
        {QPalette::Active, QPalette::Shadow},             // 3D dark shadow
        {QPalette::Active, QPalette::Midlight},           // 3D light
        {QPalette::Active, QPalette::ToolTipText},        // tooltip text
        {QPalette::Active, QPalette::ToolTipBase},        // tooltip background
    }};
    const quint32 index = color & 0xFFFFFF;
    if (index >= kSystemColours.size()) return -1;
    return palette.color(kSystemColours[index].group, kSystemColours[index].role).rgb();
}

ctlGoldButton::ctlGoldButton(QWidget* parent, const QString& name)
    : QWidget(parent), caption_(name) {
    setObjectName(name);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    keyupguard::Install();
    resize(kNewButtonSize);
    Redraw();
}

QSize ctlGoldButton::sizeHint() const {
    return kNewButtonSize;
}

void ctlGoldButton::Changed(const char* name, bool repaint) {
    emit PropertyChanged(QString::fromLatin1(name));
    if (repaint) Redraw();
}

void ctlGoldButton::setCaption(const QString& value) {
    caption_ = value;
    Changed("Caption");
}

void ctlGoldButton::setAlignment(int value) {
    alignment_ = value;
    Changed("Alignment");
}

// Hover and down looks are only seen in those states, so their setters leave the face alone.
void ctlGoldButton::setHoverColor(quint32 value) {
    hoverColor_ = value;
    Changed("HoverColor", false);
}

void ctlGoldButton::setForeColor(quint32 value) {
    foreColor_ = value;
    Changed("ForeColor");
}

void ctlGoldButton::setDownColor(quint32 value) {
    downColor_ = value;
    Changed("DownColor", false);
}

void ctlGoldButton::setSkinDisabledText(quint32 value) {
    skinDisabledText_ = value;
    Changed("SkinDisabledText");
}

void ctlGoldButton::setSkinHighlight(quint32 value) {
    skinHighlight_ = value;
    Changed("SkinHighlight");
}

void ctlGoldButton::setOnDown(int value) {
    onDown_ = value;
    Changed("OnDown", false);
}

void ctlGoldButton::setOnUp(int value) {
    onUp_ = value;
    Changed("OnUp");
}

void ctlGoldButton::setOnHover(int value) {
    onHover_ = value;
    Changed("OnHover", false);
}

void ctlGoldButton::setSkinPicture(const QPixmap& value) {
    pSkinPic.picture = value.toImage();
    pSkinPic.image = Flattened(pSkinPic.picture);
    Changed("SkinPicture");
}

void ctlGoldButton::SetButtonPicture(PictureBox& box, const QPixmap& value, const char* name) {
    box.picture = value.toImage();
    box.image = QImage();
    if (box.present()) ApplyMaskColor(box);
    Changed(name);
}

void ctlGoldButton::setPicture(const QPixmap& value) {
    SetButtonPicture(pBtnPic, value, "Picture");
}

void ctlGoldButton::setPictureHover(const QPixmap& value) {
    SetButtonPicture(pBtnPicHov, value, "PictureHover");
}

void ctlGoldButton::setPictureDown(const QPixmap& value) {
    SetButtonPicture(pBtnPicDn, value, "PictureDown");
}

void ctlGoldButton::setPictureDisabled(const QPixmap& value) {
    SetButtonPicture(pBtnPicDis, value, "PictureDisabled");
}

void ctlGoldButton::setPictureBackColor(quint32 value) {
    pictureBackColor_ = value;
    for (PictureBox* box : {&pBtnPic, &pBtnPicHov, &pBtnPicDn, &pBtnPicDis}) {
        if (box->present()) ApplyMaskColor(*box);
    }
    Changed("PictureBackColor");
}

void ctlGoldButton::setMaskColor(quint32 value) {
    maskColor_ = value;
    Changed("MaskColor");
}

void ctlGoldButton::setStyle(int value) {
    style_ = value;
    Changed("Style");
}

void ctlGoldButton::setUseMaskColor(bool value) {
    useMaskColor_ = value;
    Changed("UseMaskColor");
}

QColor ctlGoldButton::Translated(quint32 color) const {
    const qint64 rgb = TranslateColor(color, palette());
    return rgb < 0 ? QColor() : QColor::fromRgb(QRgb(rgb));
}

// A picture box shows its picture on the button face colour: the bitmap it keeps is opaque,
// so that a block copy puts exactly these pixels on the button.
QImage ctlGoldButton::Flattened(const QImage& picture) const {
    if (picture.isNull()) return QImage();
    QImage image(picture.size(), QImage::Format_RGB32);
    image.fill(Translated(kButtonFace));
    QPainter(&image).drawImage(0, 0, picture);
    return image;
}

void ctlGoldButton::ApplyMaskColor(PictureBox& box) {
    box.image = Flattened(box.picture);
    if (!useMaskColor_) return;
    const QColor back = Translated(pictureBackColor_);
    if (!back.isValid()) return;
    for (int y = 0; y < box.image.height(); ++y) {
        for (int x = 0; x < box.image.width(); ++x) {
            if (OleColorOf(box.image.pixel(x, y)) == maskColor_)
                box.image.setPixel(x, y, back.rgb());
        }
    }
}

void ctlGoldButton::Redraw() {
    SetTextColor(foreColor_);
    DrawButton(false, false);
}

void ctlGoldButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawImage(0, 0, surface_);
}

void ctlGoldButton::resizeEvent(QResizeEvent*) {
    Redraw();
}

void ctlGoldButton::changeEvent(QEvent* event) {
    switch (event->type()) {
        case QEvent::EnabledChange:
            Changed("Enabled");
            break;
        case QEvent::FontChange:
            Changed("Font");
            break;
        case QEvent::PaletteChange:
            Redraw();
            break;
        default:
            break;
    }
    QWidget::changeEvent(event);
}

bool ctlGoldButton::Inside(const QPoint& pos) const {
    return pos.x() >= 0 && pos.y() >= 0 && pos.x() < width() && pos.y() < height();
}

void ctlGoldButton::mousePressEvent(QMouseEvent* event) {
    const QPoint pos = event->position().toPoint();
    emit MouseDown(VbButtons(event->button()), VbShift(event->modifiers()), pos.x(), pos.y());
    if (event->button() == Qt::LeftButton) {
        SetTextColor(downColor_);
        DrawButton(true, false);
        bMouseDown = true;
    }
}

// Hover needs no capture here: the pointer leaving without a button held arrives as a leave
// event, and while the button is held the toolkit already sends every move to this control.
void ctlGoldButton::mouseMoveEvent(QMouseEvent* event) {
    const QPoint pos = event->position().toPoint();
    if (event->buttons() == Qt::NoButton) {
        if (!Inside(pos)) {
            Exit();
        } else if (!bHovering) {
            bHovering = true;
            emit MouseEnter();
            SetTextColor(hoverColor_);
            DrawButton(false, true);
        }
    } else if (event->buttons() & Qt::LeftButton) {
        if (Inside(pos)) {
            SetTextColor(downColor_);
            DrawButton(true, false);
        } else {
            SetTextColor(hoverColor_);
            DrawButton(false, true);
        }
    }
    emit MouseMove(VbButtons(event->buttons()), VbShift(event->modifiers()), pos.x(), pos.y());
}

void ctlGoldButton::leaveEvent(QEvent* event) {
    if (bHovering && !bMouseDown) Exit();
    QWidget::leaveEvent(event);
}

void ctlGoldButton::Exit() {
    bHovering = false;
    emit MouseExit();
    SetTextColor(foreColor_);
    DrawButton(false, false);
}

// The face is back at rest before Click runs, and Click comes before MouseUp.
void ctlGoldButton::mouseReleaseEvent(QMouseEvent* event) {
    const QPoint pos = event->position().toPoint();
    const bool click = event->button() == Qt::LeftButton && bMouseDown && Inside(pos);
    SetTextColor(foreColor_);
    DrawButton(false, false);
    bHovering = false;
    if (click) emit Click();
    bMouseDown = false;
    emit MouseUp(VbButtons(event->button()), VbShift(event->modifiers()), pos.x(), pos.y());
}

// Losing the focus puts the button at rest, so that it can't stay lit.
void ctlGoldButton::focusOutEvent(QFocusEvent* event) {
    SetTextColor(foreColor_);
    DrawButton(false, false);
    bMouseDown = false;
    bHovering = false;
    QWidget::focusOutEvent(event);
}

// Like every keyboard command of the program, the space bar acts at key-up, and only when
// its key-down came to this button.
void ctlGoldButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space) QWidget::keyPressEvent(event);
}

void ctlGoldButton::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space) {
        QWidget::keyReleaseEvent(event);
        return;
    }
    if (keyupguard::CameHere(this, event)) emit Click();
}
