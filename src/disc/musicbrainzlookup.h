#pragma once

#include "disc/onlinedatabase.h"
#include "disc/onlinediscids.h"

// Asks the MusicBrainz web service (version 2, JSON) for the releases of a disc: by its disc
// ID, and when that is unknown by its table of contents. No more than one request a second
// leaves the program, as the service asks; a 503 is waited out once, as its Retry-After says.
class MusicBrainzLookup : public OnlineDatabase {
    Q_OBJECT

  public:
    explicit MusicBrainzLookup(const QString& server, QObject* parent = nullptr);

    void Start(const OnlineDiscIds& ids);
    // After Finished: the releases that carry the disc's ID on a medium without a track list.
    QList<DiscMatch> ReleasesWithoutTracks() const { return withoutTracks_; }

    // Longer waits than this are not waited out: the server is busy.
    static constexpr int kMaxRetryAfterSeconds = 30;

  protected:
    // Asks for path at the pace the service allows; a 503 is tried once more.
    void Ask(const QString& path, AnswerHandler then);

  private:
    // The interval runs from the time the previous request was sent, whichever look-up sent it.
    int WaitBeforeSending() const override;
    void Sending() override;
    void TakeReleases(const Answer& answer);

    OnlineDiscIds ids_;
    QList<DiscMatch> withoutTracks_;
};
