#include "disc/barcodelookup.h"

#include <QUrl>

#include "disc/barcodeanswer.h"

void BarcodeLookup::StartSearch(const QString& digits) {
    emit Progress("Asking MusicBrainz for the barcode " + digits + "...");
    Ask("/ws/2/release?query=barcode:" + digits + "&fmt=json", [this](const Answer& answer) {
        if (answer.status == 0) return Fail(answer.failure);
        if (answer.status != 200) return Fail(UnexpectedStatus(answer));
        QList<DiscMatch> matches;
        QString problem;
        if (!ReadBarcodeSearchAnswer(answer.body, matches, problem)) return Fail(problem);
        Succeed(matches);
    });
}

void BarcodeLookup::StartTracks(const DiscMatch& match) {
    emit Progress("Asking MusicBrainz for the tracks of " + match.title + "...");
    Ask("/ws/2/release/" + QString::fromLatin1(QUrl::toPercentEncoding(match.identifier)) +
            "?inc=artist-credits+recordings+media&fmt=json",
        [this, match](const Answer& answer) {
            if (answer.status == 0) return Fail(answer.failure);
            if (answer.status != 200) return Fail(UnexpectedStatus(answer));
            DiscMatch named = match;
            QString problem;
            if (!ReadBarcodeReleaseAnswer(answer.body, named, problem)) return Fail(problem);
            Succeed({named});
        });
}
