#pragma once

#include <QByteArray>
#include <QList>
#include <QNetworkAccessManager>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <functional>

#include "disc/discmatch.h"

class QNetworkReply;

// What the look-up clients share: GETs to one server with the program's User-Agent, a
// time-out over each whole answer (a server that drips bytes does not hold the look-up), a
// cap on an answer's size, and a Cancel that stops everything at once. An answer that did not
// arrive whole is a failure, never a shorter answer. Everything runs from the event loop;
// nothing waits.
class OnlineDatabase : public QObject {
    Q_OBJECT

  public:
    // name is how the user is told of the database ("MusicBrainz"); server is its address
    // ("https://musicbrainz.org").
    OnlineDatabase(const QString& name, const QString& server, QObject* parent = nullptr);
    ~OnlineDatabase() override;

    int RequestTimeoutMs = 15000;
    static constexpr qint64 kMaxAnswerBytes = 4 * 1024 * 1024;
    // Images are larger than the databases' answers.
    qint64 MaxAnswerBytes = kMaxAnswerBytes;
    // A redirect is followed when it is no less safe, this many times at most.
    static constexpr int kMaxRedirects = 5;

    QString Name() const { return name_; }
    // Stops the request under way and any wait; Finished is not emitted.
    void Cancel();

  signals:
    // What is being asked now, for the user.
    void Progress(const QString& text);
    // The matches found, their text free of control characters, and what could not be asked or
    // read ("MusicBrainz (musicbrainz.org): ..."); a problem may come with matches.
    void Finished(const QList<DiscMatch>& matches, const QString& problem);

  protected:
    struct Answer {
        // The HTTP status, 0 when no answer came.
        int status = 0;
        QByteArray body;
        // Seconds, -1 when the server named none.
        int retryAfter = -1;
        // Why no answer came.
        QString failure;
    };
    using AnswerHandler = std::function<void(const Answer&)>;

    // Sends a GET of the server's pathAndQuery after delayMs.
    void Get(const QString& pathAndQuery, int delayMs, AnswerHandler then);
    // How long a request that is due must still wait; it is asked again as the request leaves.
    virtual int WaitBeforeSending() const { return 0; }
    // Called as each request leaves, and again once it has been written to the server.
    virtual void Sending() {}
    void Succeed(const QList<DiscMatch>& matches);
    void Fail(const QString& reason);
    // The matches read, with the reason some others could not be.
    void Finish(QList<DiscMatch> matches, const QString& reason);
    // The status line's words for an answer that was not the one asked for.
    static QString UnexpectedStatus(const Answer& answer);
    // Why an answer is not a whole 200 answer; empty when it is.
    static QString NotAnswered(const Answer& answer);

  private:
    void Send();
    void Done(const QString& failure);

    QString name_;
    QString server_;
    QNetworkAccessManager manager_;
    QPointer<QNetworkReply> reply_;
    QTimer delay_;
    QTimer deadline_;
    QString pending_;
    AnswerHandler then_;
};
