#pragma once

#include <QFrame>
#include <QString>

// One panel of the status bar. The count panel changes on every row of a list fill, so a new
// text only schedules a repaint; nothing is laid out again.
class StatusPanel : public QFrame {
    Q_OBJECT
  public:
    explicit StatusPanel(QWidget* parent);

    QString text() const { return text_; }
    void setText(const QString& text);
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString text_;
    bool repaintPending_ = false;
};
