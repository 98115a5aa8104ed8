#include "toolkit/controls/AnimatedGifCtl.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QTemporaryFile>

#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vberror.h"
#include "toolkit/vb/vbruntime.h"

AnimatedGifCtl::AnimatedGifCtl(QWidget* parent) : QWidget(parent) {
    backColor_ = palette().color(QPalette::Window);
    connect(&Timer1, &QTimer::timeout, this, [this] {
        try {
            Timer1_Timer();
        } catch (const VbError& error) {
            // An error no trap catches stops the animation with its box, not the program.
            Timer1.stop();
            MsgBox(error.Description, vbCritical);
        }
    });
}

void AnimatedGifCtl::SetUserDelay(const QVariant& value) {
    bool numeric = false;
    const double number = value.toDouble(&numeric);
    const qint64 delay = numeric ? RoundToEven(number) : 10;
    userDelay_ = static_cast<int>(std::clamp<qint64>(delay, 1, 1000));
}

void AnimatedGifCtl::SetBackColor(const QColor& color) {
    backColor_ = color;
    update();
}

void AnimatedGifCtl::LoadGif(int iIdResource, const QString& sTypeResource) {
    QFile resource(":/" + sTypeResource + "/" + QString::number(iIdResource));
    LoadGifData(resource.open(QIODevice::ReadOnly) ? resource.readAll() : QByteArray());
}

void AnimatedGifCtl::LoadGifData(const QByteArray& data) {
    StopTimer();
    canvas_.fill(backColor_);
    update();
    ClearFrames();
    validGif_ = true;
    setCursor(Qt::WaitCursor);
    AutoBackColor = true;
    const bool walked = ParseGif(data);
    unsetCursor();
    SetUserDelay(0);
    if (walked) PaintGif(0, false);
}

bool AnimatedGifCtl::ParseGif(const QByteArray& data) {
    switch (WalkGif(data, ChangeTransparentColor, stream_)) {
        case GifWalkResult::NotAGif:
            MsgBox("Sorry, not an Animated Gif file", vbOKOnly, "Not a Valid Animated Gif File!");
            validGif_ = false;
            return true;
        case GifWalkResult::Truncated:
            // A stream that ends inside a block cannot be played; the load fails quietly.
            validGif_ = false;
            return false;
        case GifWalkResult::Walked:
            break;
    }
    if (stream_.frames.isEmpty()) {
        validGif_ = false;
        return false;
    }
    numberOfFrames_ = static_cast<int>(stream_.frames.size()) - 1;
    LoadFramePictures();
    BuildCanvas();
    return true;
}

namespace {

// Qt's reader clips a frame to the logical screen, where the bitmap of a frame must hold all of
// it (the canvas grows for a frame larger than the screen): the file's screen is widened to
// cover the frame.
QByteArray ScreenCoveringFrame(QByteArray file, const GifFrame& frame) {
    const auto widen = [&file](int at, int needed) {
        const int current =
            static_cast<unsigned char>(file[at]) | (static_cast<unsigned char>(file[at + 1]) << 8);
        if (current >= needed) return;
        file[at] = static_cast<char>(needed & 0xFF);
        file[at + 1] = static_cast<char>((needed >> 8) & 0xFF);
    };
    widen(6, std::min(frame.iLeft + frame.iWidth, 0xFFFF));
    widen(8, std::min(frame.iTop + frame.iHeight, 0xFFFF));
    return file;
}

}  // namespace

// Each frame goes through a file of its own, read back by Qt's GIF reader and deleted.
void AnimatedGifCtl::LoadFramePictures() {
    for (int i = 0; i < stream_.frames.size(); ++i) {
        QImage picture;
        {
            QTemporaryFile file(QDir::tempPath() + "/ " + QString::number(i) + "XXXXXX.CUSTOM");
            if (!file.open()) break;
            file.write(ScreenCoveringFrame(CutGifFrame(stream_, i), stream_.frames[i]));
            file.close();
            picture.load(file.fileName(), "GIF");
        }
        const GifFrame& frame = stream_.frames[i];
        if (!picture.isNull())
            picture = picture.copy(frame.iLeft, frame.iTop, frame.iWidth, frame.iHeight);
        if (!picture.isNull() && frame.bTransparent) {
            // Keep the transparent entry visible as its own colour; the drawing masks it.
            picture = picture.convertToFormat(QImage::Format_ARGB32);
            const int key = frame.bTransparentIndex * 3;
            const QRgb keyColor = qRgb(frame.abFramePalette[key], frame.abFramePalette[key + 1],
                                       frame.abFramePalette[key + 2]);
            for (int y = 0; y < picture.height(); ++y) {
                auto* line = reinterpret_cast<QRgb*>(picture.scanLine(y));
                for (int x = 0; x < picture.width(); ++x)
                    if (qAlpha(line[x]) == 0) line[x] = keyColor;
            }
        }
        pictures_.append(picture);
    }
}

void AnimatedGifCtl::BuildCanvas() {
    for (const GifFrame& frame : stream_.frames) {
        stream_.iScreenWidth = std::max(stream_.iScreenWidth, frame.iWidth);
        stream_.iScreenHeight = std::max(stream_.iScreenHeight, frame.iHeight);
    }
    const int canvasWidth = (stream_.iScreenWidth + 31) & ~31;
    canvas_ = QImage(canvasWidth, stream_.iScreenHeight, QImage::Format_RGB32);
    canvas_.fill(backColor_);
}

void AnimatedGifCtl::ClearFrames() {
    pictures_.clear();
    stream_ = GifStream{};
    currentFrame_ = 0;
    numberOfFrames_ = 0;
}

void AnimatedGifCtl::RenderGif(int iFrame) {
    if (iFrame < 0 || iFrame >= pictures_.size() || pictures_[iFrame].isNull()) return;
    const GifFrame& frame = stream_.frames[iFrame];
    const QImage& picture = pictures_[iFrame];
    // This frame's own disposal is applied before it is drawn.
    if (frame.bDisposal == 2) canvas_.fill(backColor_);
    QPainter painter(&canvas_);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    if (!frame.bTransparent) {
        painter.drawImage(frame.iLeft, frame.iTop, picture);
    } else {
        const int key = frame.bTransparentIndex * 3;
        const QRgb keyColor = qRgb(frame.abFramePalette[key], frame.abFramePalette[key + 1],
                                   frame.abFramePalette[key + 2]);
        QImage masked = picture.convertToFormat(QImage::Format_ARGB32);
        for (int y = 0; y < masked.height(); ++y) {
            auto* line = reinterpret_cast<QRgb*>(masked.scanLine(y));
            for (int x = 0; x < masked.width(); ++x)
                if ((line[x] & 0xFFFFFF) == (keyColor & 0xFFFFFF)) line[x] = 0;
        }
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter.drawImage(frame.iLeft, frame.iTop, masked);
    }
    update();
}

void AnimatedGifCtl::PaintGif(int iFrame, bool bContinueAnimation) {
    if (!validGif_) {
        MsgBox("Sorry, you must first load a valid Animated Gif file.");
        return;
    }
    Timer1.setSingleShot(false);
    if (bContinueAnimation)
        Timer1.start();
    else
        Timer1.stop();
    RenderGif(iFrame);
}

void AnimatedGifCtl::StartTimer() {
    if (!validGif_) {
        MsgBox("Sorry, you must first load an Animated Gif file");
        return;
    }
    Timer1.start(250);
}

void AnimatedGifCtl::StopTimer() {
    Timer1.stop();
}

void AnimatedGifCtl::Timer1_Timer() {
    PaintGif(currentFrame_, true);
    // The tenfold delay is 16-bit arithmetic: above 3276 hundredths it overflows.
    const int delay = CInt(stream_.frames.value(currentFrame_).iDelay * 10.0);
    Timer1.setInterval(std::max(1, delay + userDelay_));
    if (++currentFrame_ > numberOfFrames_) currentFrame_ = 0;
}

void AnimatedGifCtl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), backColor_);
    if (!canvas_.isNull()) painter.drawImage(0, 0, canvas_);
}

void AnimatedGifCtl::resizeEvent(QResizeEvent*) {
    emit Resize();
}
