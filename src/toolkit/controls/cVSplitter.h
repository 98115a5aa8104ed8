#pragma once

#include <QObject>
#include <QPointer>

class QFrame;
class QRubberBand;
class QWidget;

// Turns a frame between two side-by-side panes into a divider the user drags. It follows the
// frame's mouse and the parent window's resizing and keys, and places the panes itself; all
// measures are pixels in the parent's client area.
class cVSplitter : public QObject {
    Q_OBJECT
  public:
    cVSplitter();
    ~cVSplitter() override;

    // The parent window, the two panes and the divider frame; false (after a box) when a pane
    // is missing.
    bool SetControls(QWidget* frm, QWidget* left, QWidget* right, QFrame* fra);

    long Left() const { return lLeft; }
    // Values below 0 are ignored.
    void SetLeft(long value);
    int Width() const { return bWidth; }
    // 0 is ignored.
    void SetWidth(int value);
    long Top() const { return lTop; }
    void SetTop(long value);
    long HeightOffset() const { return lHeightOffset; }
    void SetHeightOffset(long value);
    bool Splitting() const { return hCapture; }
    // True: the panes follow the mouse while dragging; false: a ghost bar follows and the
    // panes move when the button is let go.
    bool TrackSplit() const { return bTrackSplit; }
    void SetTrackSplit(bool value) { bTrackSplit = value; }
    // Ends a drag and puts the divider back where it was before.
    void CancelSplit();
    // The least width of either pane.
    long MinPane() const { return lMinPane; }
    // The ghost bar while it shows, else null.
    QRubberBand* GhostBar() const;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void ComputeMetrics();
    void ResizePanes(bool bUpdate);
    void LayoutPanes(bool bUpdate);
    void Clamp(int mouseX);
    // Shows the ghost bar at the divider's place, or takes it away when it shows: drawing it
    // twice restores the window.
    void DrawBar();
    void fraSplit_MouseDown(int mouseX);
    void fraSplit_MouseMove(int mouseX);
    void fraSplit_MouseUp(int mouseX);

    QPointer<QWidget> frmParent;
    QPointer<QWidget> ctlLeft;
    QPointer<QWidget> ctlRight;
    QPointer<QFrame> fraSplit;
    long lLeft = 0;
    long lPrevLeft = 0;
    long lStartLeft = 0;
    int bWidth = 0;
    long lTop = 0;
    long lHeightOffset = 0;
    long lRight = 0;
    long lBottom = 0;
    long lMinPane = 0;
    long lBorder = 0;
    bool bTrackSplit = false;
    bool hCapture = false;
    QPointer<QRubberBand> ghostBar_;
    long lFormWidth = 0;
    float fRatio = 0;
};
