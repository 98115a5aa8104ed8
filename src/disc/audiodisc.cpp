#include "disc/audiodisc.h"

#include <cdio/cdio.h>
#include <cdio/cdtext.h>
#include <cdio/iso9660.h>
#include <cdio/logging.h>

#include <QFile>
#include <QFileInfo>
#include <memory>

#include "disc/discnames.h"

namespace {

std::function<QString()> gDriveLocator;

// libcdio reports to stderr unless told otherwise; the last complaint serves as the reason.
QString gLastComplaint;

void KeepComplaint(cdio_log_level_t level, const char message[]) {
    if (level >= CDIO_LOG_WARN) gLastComplaint = QString::fromLocal8Bit(message).trimmed();
}

struct CdioCloser {
    void operator()(CdIo_t* cdio) const { cdio_destroy(cdio); }
};

QString CdTextField(cdtext_t* text, cdtext_field_t field, track_t track) {
    if (!text) return {};
    const char* value = cdtext_get_const(text, field, track);
    return value ? DecodeDiscText(QByteArray(value)).trimmed() : QString();
}

bool LooksLikeDataImage(const QByteArray& path) {
    iso9660_t* iso = iso9660_open(path.constData());
    if (iso) iso9660_close(iso);
    return iso != nullptr;
}

QString SystemDrive() {
    if (QFileInfo::exists("/dev/cdrom")) return "/dev/cdrom";
    driver_id_t driver = DRIVER_DEVICE;
    char* device = cdio_get_default_device_driver(&driver);
    if (!device) return {};
    const QString drive = QString::fromLocal8Bit(device);
    cdio_free(device);
    return drive;
}

}  // namespace

QString FindDiscDrive() {
    return gDriveLocator ? gDriveLocator() : SystemDrive();
}

void SetDiscDriveLocator(std::function<QString()> locator) {
    gDriveLocator = std::move(locator);
}

bool ReadAudioDisc(const QString& source, AudioDisc& disc, QString& problem) {
    cdio_log_set_handler(KeepComplaint);
    gLastComplaint.clear();
    const QFileInfo info(source);
    if (!info.exists()) {
        problem = "\"" + source + "\" does not exist.";
        return false;
    }
    if (!info.isReadable()) {
        problem = "\"" + source + "\" cannot be read: permission denied.";
        return false;
    }
    const QByteArray path = QFile::encodeName(source);
    std::unique_ptr<CdIo_t, CdioCloser> cdio(cdio_open(path.constData(), DRIVER_UNKNOWN));
    if (!cdio && LooksLikeDataImage(path)) {
        problem = "\"" + source + "\" holds a data disc, not an audio CD.";
        return false;
    }
    if (!cdio) {
        problem = "\"" + source + "\" is neither a CD drive with a disc nor a CD image.";
        if (!gLastComplaint.isEmpty()) problem += "\n" + gLastComplaint;
        return false;
    }
    const track_t first = cdio_get_first_track_num(cdio.get());
    const track_t count = cdio_get_num_tracks(cdio.get());
    if (first == CDIO_INVALID_TRACK || count == CDIO_INVALID_TRACK || count == 0) {
        problem = "There is no disc in \"" + source + "\", or it cannot be read.";
        return false;
    }

    AudioDisc read;
    bool anyAudio = false;
    for (track_t track = first; track < first + count; ++track) {
        const lsn_t start = cdio_get_track_lsn(cdio.get(), track);
        if (start == CDIO_INVALID_LSN) {
            problem = QString("Track %1 of \"%2\" cannot be read.").arg(track).arg(source);
            return false;
        }
        read.toc.trackStarts << start;
        const bool audio = cdio_get_track_format(cdio.get(), track) == TRACK_FORMAT_AUDIO;
        anyAudio = anyAudio || audio;
        read.toc.trailingDataTracks = audio ? 0 : read.toc.trailingDataTracks + 1;
    }
    if (!anyAudio) {
        problem = "\"" + source + "\" holds a data disc, not an audio CD.";
        return false;
    }
    read.toc.leadout = cdio_get_track_lsn(cdio.get(), CDIO_CDROM_LEADOUT_TRACK);
    if (read.toc.leadout == CDIO_INVALID_LSN || read.toc.leadout <= read.toc.trackStarts.last()) {
        problem = "The last track of \"" + source +
                  "\" has no length: the disc or the image is incomplete.";
        return false;
    }
    read.titleId = DiscTitleId(read.toc);

    cdtext_t* text = cdio_get_cdtext(cdio.get());
    read.album = CdTextField(text, CDTEXT_FIELD_TITLE, 0);
    read.performer = CdTextField(text, CDTEXT_FIELD_PERFORMER, 0);
    for (track_t track = first; track < first + count; ++track)
        read.trackTitles << CdTextField(text, CDTEXT_FIELD_TITLE, track);
    disc = read;
    return true;
}
