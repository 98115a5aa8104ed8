#pragma once

#include <QColor>
#include <QImage>
#include <QTimer>
#include <QWidget>

#include "toolkit/controls/gifwalk.h"

// Plays an animated GIF from the program's resources. The stream is walked by hand, each frame
// is cut into a GIF file of its own that Qt's GIF reader turns into a picture, and the frames
// are then played on a canvas by a timer.
class AnimatedGifCtl : public QWidget {
    Q_OBJECT

  public:
    explicit AnimatedGifCtl(QWidget* parent = nullptr);

    int UserDelay() const { return userDelay_; }
    // Non-numeric text becomes 10; the value is clamped to 1..1000.
    void SetUserDelay(const QVariant& value);
    bool AutoBackColor = false;
    bool ChangeTransparentColor = true;
    int NumberofFrames() const { return numberOfFrames_; }
    int CurrentFrame() const { return currentFrame_; }
    bool bValidGif() const { return validGif_; }
    QColor BackColor() const { return backColor_; }
    void SetBackColor(const QColor& color);
    const GifStream& Stream() const { return stream_; }
    const QImage& Canvas() const { return canvas_; }
    QImage FramePicture(int frame) const { return pictures_.value(frame); }
    int TimerInterval() const { return Timer1.interval(); }
    bool TimerRunning() const { return Timer1.isActive(); }

    void LoadGif(int iIdResource, const QString& sTypeResource = "CUSTOM");
    // Loads a stream that did not come from the resources; used by LoadGif and by tests.
    void LoadGifData(const QByteArray& data);
    void RenderGif(int iFrame);
    void PaintGif(int iFrame, bool bContinueAnimation);
    void StartTimer();
    void StopTimer();

  signals:
    void Resize();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    // False when the stream ended inside a block or held no frame.
    bool ParseGif(const QByteArray& data);
    void ClearFrames();
    void LoadFramePictures();
    void BuildCanvas();
    void Timer1_Timer();

    QTimer Timer1;
    GifStream stream_;
    QList<QImage> pictures_;
    QImage canvas_;
    QColor backColor_;
    int userDelay_ = 1;
    int numberOfFrames_ = 0;
    int currentFrame_ = 0;
    bool validGif_ = false;
};
