#pragma once

#include <QFont>
#include <QImage>
#include <QPixmap>
#include <QWidget>

class QDropEvent;
class QMimeData;
class QPainter;

// The owner-painted push button of the dialogues. It keeps its look in a bitmap of its own
// (the surface) that every state change redraws: the plain face with edges drawn like the
// classic Windows ones, or a skin strip, an optional picture per state and a one-line caption.
//
// Colours are OLE colour values: 0x00BBGGRR for a plain colour (see RGB), 0x800000nn for the
// system colour number nn, which follows the widget's palette at drawing time.
class ctlGoldButton : public QWidget {
    Q_OBJECT
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)
    Q_PROPERTY(int Alignment READ Alignment WRITE setAlignment)
    Q_PROPERTY(quint32 HoverColor READ HoverColor WRITE setHoverColor)
    Q_PROPERTY(quint32 ForeColor READ ForeColor WRITE setForeColor)
    Q_PROPERTY(quint32 DownColor READ DownColor WRITE setDownColor)
    Q_PROPERTY(quint32 SkinDisabledText READ SkinDisabledText WRITE setSkinDisabledText)
    Q_PROPERTY(quint32 SkinHighlight READ SkinHighlight WRITE setSkinHighlight)
    Q_PROPERTY(QFont Font READ Font WRITE setFont)
    Q_PROPERTY(int OnDown READ OnDown WRITE setOnDown)
    Q_PROPERTY(int OnUp READ OnUp WRITE setOnUp)
    Q_PROPERTY(int OnHover READ OnHover WRITE setOnHover)
    Q_PROPERTY(QPixmap SkinPicture READ SkinPicture WRITE setSkinPicture)
    Q_PROPERTY(QPixmap Picture READ Picture WRITE setPicture)
    Q_PROPERTY(QPixmap PictureHover READ PictureHover WRITE setPictureHover)
    Q_PROPERTY(QPixmap PictureDown READ PictureDown WRITE setPictureDown)
    Q_PROPERTY(QPixmap PictureDisabled READ PictureDisabled WRITE setPictureDisabled)
    Q_PROPERTY(quint32 PictureBackColor READ PictureBackColor WRITE setPictureBackColor)
    Q_PROPERTY(quint32 MaskColor READ MaskColor WRITE setMaskColor)
    Q_PROPERTY(int Style READ Style WRITE setStyle)
    Q_PROPERTY(bool UseMaskColor READ UseMaskColor WRITE setUseMaskColor)

  public:
    enum ButtonStyle { bsStandard = 0, bsSkin = 1 };
    enum CaptionAlignment { vbLeftJustify = 0, vbRightJustify = 1, vbCenter = 2 };
    // Edge codes as the classic DrawEdge takes them; any other combination of the four
    // border bits (1 raised outer, 2 sunken outer, 4 raised inner, 8 sunken inner) works too.
    enum EdgeCode {
        edgeNone = 0,
        edgeSunkenOuter = 2,
        edgeRaisedInner = 4,
        edgeRaised = 5,
        edgeEtched = 6,
        edgeSunken = 10
    };
    // Mouse buttons and shift keys as the mouse signals report them.
    enum MouseButtonCode { vbLeftButton = 1, vbRightButton = 2, vbMiddleButton = 4 };
    enum ShiftMask { vbShiftMask = 1, vbCtrlMask = 2, vbAltMask = 4 };
    // The states of OLEDragOver.
    enum DragOverState { vbEnter = 0, vbLeave = 1, vbOver = 2 };

    static constexpr quint32 RGB(int red, int green, int blue) {
        return quint32(red & 0xFF) | quint32(green & 0xFF) << 8 | quint32(blue & 0xFF) << 16;
    }
    // The colour a value stands for under the palette, as a QRgb, or -1 when it names none.
    static qint64 TranslateColor(quint32 color, const QPalette& palette);

    // The caption starts as the control's name.
    explicit ctlGoldButton(QWidget* parent = nullptr, const QString& name = QString());

    QSize sizeHint() const override;

    QString Caption() const { return caption_; }
    void setCaption(const QString& value);
    bool Enabled() const { return isEnabled(); }
    int Alignment() const { return alignment_; }
    void setAlignment(int value);
    quint32 HoverColor() const { return hoverColor_; }
    void setHoverColor(quint32 value);
    quint32 ForeColor() const { return foreColor_; }
    void setForeColor(quint32 value);
    quint32 DownColor() const { return downColor_; }
    void setDownColor(quint32 value);
    quint32 SkinDisabledText() const { return skinDisabledText_; }
    void setSkinDisabledText(quint32 value);
    quint32 SkinHighlight() const { return skinHighlight_; }
    void setSkinHighlight(quint32 value);
    QFont Font() const { return font(); }
    int OnDown() const { return onDown_; }
    void setOnDown(int value);
    int OnUp() const { return onUp_; }
    void setOnUp(int value);
    int OnHover() const { return onHover_; }
    void setOnHover(int value);
    QPixmap SkinPicture() const { return QPixmap::fromImage(pSkinPic.picture); }
    void setSkinPicture(const QPixmap& value);
    QPixmap Picture() const { return QPixmap::fromImage(pBtnPic.picture); }
    void setPicture(const QPixmap& value);
    QPixmap PictureHover() const { return QPixmap::fromImage(pBtnPicHov.picture); }
    void setPictureHover(const QPixmap& value);
    QPixmap PictureDown() const { return QPixmap::fromImage(pBtnPicDn.picture); }
    void setPictureDown(const QPixmap& value);
    QPixmap PictureDisabled() const { return QPixmap::fromImage(pBtnPicDis.picture); }
    void setPictureDisabled(const QPixmap& value);
    quint32 PictureBackColor() const { return pictureBackColor_; }
    void setPictureBackColor(quint32 value);
    // Compared with the pictures' pixels as it stands, so a system colour never matches.
    // The replacement runs when a picture or PictureBackColor is set, so set MaskColor and
    // UseMaskColor first.
    quint32 MaskColor() const { return maskColor_; }
    void setMaskColor(quint32 value);
    int Style() const { return style_; }
    void setStyle(int value);
    bool UseMaskColor() const { return useMaskColor_; }
    void setUseMaskColor(bool value);

    // Starts dragging from the button: OLEStartDrag fills the data, OLESetData renders a
    // format that was announced without data when a target asks for it, OLEGiveFeedback
    // follows the action offered, OLECompleteDrag tells the outcome.
    void OLEDrag();

  signals:
    void Click();
    void MouseEnter();
    void MouseExit();
    void MouseDown(int Button, int Shift, int X, int Y);
    void MouseMove(int Button, int Shift, int X, int Y);
    void MouseUp(int Button, int Shift, int X, int Y);
    void OLECompleteDrag(Qt::DropAction Effect);
    void OLEDragDrop(QDropEvent* Data);
    // Drops arrive after setAcceptDrops(true); Data is null when the drag leaves.
    void OLEDragOver(QDropEvent* Data, int State);
    void OLEGiveFeedback(Qt::DropAction Effect);
    void OLESetData(QMimeData* Data, const QString& DataFormat);
    void OLEStartDrag(QMimeData* Data, Qt::DropActions& AllowedEffects);
    void PropertyChanged(const QString& PropertyName);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    // A hidden picture box: the picture as given and the bitmap drawn from it, the one that
    // is copied onto the button.
    struct PictureBox {
        QImage picture;
        QImage image;
        bool present() const { return !picture.isNull(); }
    };

    void DrawButton(bool bDown, bool bHover);
    void DrawSkinCentre(QPainter& painter, int iCell);
    void DrawSkinEdges(QPainter& painter, int iCell);
    void DrawEdge(QPainter& painter, int edge);
    void DrawCaption(QPainter& painter, const QRect& rect, int flags, const QColor& color);
    void Redraw();
    void ApplyMaskColor(PictureBox& box);
    void SetButtonPicture(PictureBox& box, const QPixmap& value, const char* name);
    void Changed(const char* name, bool repaint = true);
    // A colour that names none comes back invalid.
    QColor Translated(quint32 color) const;
    QImage Flattened(const QImage& picture) const;
    bool Inside(const QPoint& pos) const;
    void Exit();
    void SetTextColor(quint32 color) { textColor_ = color; }

    QString caption_;
    int alignment_ = vbCenter;
    quint32 hoverColor_ = RGB(0, 0, 255);
    quint32 foreColor_ = 0x80000012;
    quint32 downColor_ = RGB(0, 0, 255);
    quint32 skinDisabledText_ = 0x80000010;
    quint32 skinHighlight_ = 0x80000014;
    quint32 pictureBackColor_ = 0x8000000F;
    int onUp_ = edgeRaisedInner;
    int onDown_ = edgeSunken;
    int onHover_ = edgeRaised;
    int style_ = bsStandard;
    quint32 maskColor_ = 0x8000000F;
    bool useMaskColor_ = false;

    PictureBox pSkinPic;
    PictureBox pBtnPic;
    PictureBox pBtnPicHov;
    PictureBox pBtnPicDn;
    PictureBox pBtnPicDis;

    QImage surface_;
    quint32 textColor_ = 0x80000012;
    bool bMouseDown = false;
    bool bHovering = false;
};
