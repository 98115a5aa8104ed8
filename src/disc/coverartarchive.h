#pragma once

#include "disc/onlinedatabase.h"

// What the Cover Art Archive said of one release's front cover.
struct CoverAnswer {
    enum class Outcome { Fetched, NoCover, Failed };
    Outcome outcome = Outcome::Failed;
    QString mbid;
    // The image's bytes as they came, when Fetched.
    QByteArray image;
    // The address asked.
    QString url;
    // Why it failed, for the user ("Cover Art Archive (coverartarchive.org): ...").
    QString problem;
};

// Fetches a release's front cover from the Cover Art Archive:
// {server}/release/{mbid}/front-500 (front-1200 for large covers), which redirects to the
// image. The look-up's rules hold: the program's User-Agent, the time-out over the whole
// answer, a 503 waited out once as its Retry-After says, a cap on the size.
class CoverArtArchive : public OnlineDatabase {
    Q_OBJECT

  public:
    explicit CoverArtArchive(const QString& server, QObject* parent = nullptr);

    static constexpr qint64 kMaxImageBytes = 15 * 1024 * 1024;
    // Longer waits than this are not waited out: the server is busy.
    static constexpr int kMaxRetryAfterSeconds = 30;

    // No more than one request a second leaves the program for the archive, whoever asks.
    static constexpr int kRequestIntervalMs = 1000;

    // Asks at the archive's pace; Answered follows unless Cancel comes first.
    void Fetch(const QString& mbid, bool large);

  signals:
    void Answered(const CoverAnswer& answer);

  private:
    void Sending() override;
    void Take(const Answer& answer, bool retried);

    QString server_;
    CoverAnswer pending_;
    QString path_;
};
