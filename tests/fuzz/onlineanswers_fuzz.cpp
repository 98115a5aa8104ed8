// Reads any byte string as the online databases' answers: a MusicBrainz JSON answer, the
// answers of a look-up by barcode, a CDDB query answer and an xmcd entry, and clears the matches'
// text of control characters.
#include <cstddef>
#include <cstdint>

#include "disc/barcodeanswer.h"
#include "disc/cddbanswer.h"
#include "disc/musicbrainzanswer.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray answer(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QList<DiscMatch> matches, withoutTracks;
    QString problem;
    ReadMusicBrainzAnswer(answer, "xUp1F2NkfP8s8jaeFn_Av3jNEI4-", 3, matches, withoutTracks,
                          problem);
    for (DiscMatch& match : matches + withoutTracks) ReplaceControlCharacters(match);
    QList<CddbEntryName> entries;
    ReadCddbQueryAnswer(answer, entries, problem);
    DiscMatch match;
    if (ReadCddbEntry(answer, {"rock", "370fce16", "A / B"}, match, problem))
        ReplaceControlCharacters(match);
    ReadBarcodeSearchAnswer(answer, matches, problem);
    DiscMatch release;
    release.identifier = "f1a2-deluxe";
    release.discNumber = 2;
    ReadBarcodeReleaseAnswer(answer, release, problem);
    return 0;
}
