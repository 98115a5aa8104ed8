#pragma once

#include <QByteArray>
#include <QFrame>
#include <QImage>
#include <QTimer>

// The title editor's box for the front cover: shows the cover (or a word where there is none),
// takes an image file or a browser's image dropped on it, and turns a small spinner while a
// cover is being fetched.
class CoverBox : public QFrame {
    Q_OBJECT

  public:
    explicit CoverBox(QWidget* parent = nullptr);

    // An empty image shows text instead.
    void SetCover(const QImage& image, const QString& text);
    QImage Cover() const { return cover_; }
    QString Text() const { return text_; }
    void SetBusy(bool busy);
    bool Busy() const { return spinner_.isActive(); }

    // Larger files than this are not read when dropped.
    static constexpr qint64 kMaxDroppedBytes = 15 * 1024 * 1024;

  signals:
    // The bytes of an image dropped on the box and the name of where they came from.
    void Dropped(const QByteArray& bytes, const QString& source);
    // A drop that brought no image, or an image that could not be read.
    void DropRefused(const QString& problem);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    QImage cover_;
    QString text_;
    QTimer spinner_;
    int angle_ = 0;
};
