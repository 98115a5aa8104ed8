#include "disc/lookupsettings.h"

#include "toolkit/platform/mRegistry.h"
#include "toolkit/vb/vbruntime.h"

namespace {

QString Setting(const QString& valueName, const QString& fallback) {
    const QString value = GetRegistryValue(LookupSettingsKey(), valueName).trimmed();
    return value.isEmpty() || value == "Error" ? fallback : value;
}

QString Server(const char* environment, const QString& valueName, const QString& fallback) {
    QString server = qEnvironmentVariable(environment, Setting(valueName, fallback));
    while (server.endsWith('/')) server.chop(1);
    return server;
}

}  // namespace

QString LookupSettingsKey() {
    return "HKEY_CURRENT_USER\\Software\\" + kMakerName + "\\" + App.Title + "\\Online lookup";
}

LookupSettings ReadLookupSettings() {
    LookupSettings settings;
    settings.musicBrainzServer =
        Server("VELMORA_MUSICBRAINZ_SERVER", "MusicBrainzServer", "https://musicbrainz.org");
    settings.gnudbServer = Server("VELMORA_GNUDB_SERVER", "GnudbServer", "https://gnudb.gnudb.org");
    settings.coverArtServer =
        Server("VELMORA_COVERART_SERVER", "CoverArtServer", "https://coverartarchive.org");
    settings.largeCovers = Setting("LargeCovers", "0") == "1";
    settings.cddbUser = Setting("CddbUser", "velmora");
    return settings;
}

QByteArray LookupUserAgent() {
    return QString("%1/%2.%3.%4 ( %5 )")
        .arg(App.Title)
        .arg(App.Major)
        .arg(App.Minor)
        .arg(App.Revision)
        .arg(kMakerWebAddress)
        .toUtf8();
}
