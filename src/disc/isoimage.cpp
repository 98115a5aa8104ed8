#include <cdio/iso9660.h>

#include <QFile>
#include <QFileInfo>
#include <memory>
#include <vector>

#include "disc/datadisc.h"
#include "disc/discnames.h"

namespace {

const qint64 kSectorSize = ISO_BLOCKSIZE;
// Deeper than any real disc: a damaged directory that points back at itself ends here.
const int kMaxDepth = 64;

struct IsoCloser {
    void operator()(iso9660_t* iso) const { iso9660_close(iso); }
};

struct ListCloser {
    void operator()(CdioISO9660FileList_t* list) const { iso9660_filelist_free(list); }
};

class IsoLister {
  public:
    explicit IsoLister(iso9660_t* iso) : iso_(iso), joliet_(iso9660_ifs_get_joliet_level(iso)) {}

    // False when a directory of the image cannot be read.
    bool List(const QByteArray& path, const QString& relative, int depth) {
        if (depth > kMaxDepth) return false;
        std::unique_ptr<CdioISO9660FileList_t, ListCloser> entries(
            iso9660_ifs_readdir(iso_, path.constData()));
        if (!entries) return false;
        CdioListNode_t* node = nullptr;
        _CDIO_LIST_FOREACH(node, entries.get()) {
            const auto* stat = static_cast<iso9660_stat_t*>(_cdio_list_node_data(node));
            const QByteArray raw(stat->filename);
            if (raw == "." || raw == ".." || raw.isEmpty()) continue;
            const QString name = relative + Name(stat);
            if (stat->type == iso9660_stat_s::_STAT_DIR) {
                if (!List(path + raw + "/", name + "/", depth + 1)) return false;
            } else {
                lines << ListingLine(name, stat->size);
            }
        }
        return true;
    }

    QStringList lines;

  private:
    // Rock Ridge and Joliet names stand as they are; a plain ISO 9660 name loses its version
    // and reads in lower case, as a mounted disc shows it.
    QString Name(const iso9660_stat_t* stat) const {
        if (stat->rr.b3_rock == yep || joliet_ > 0) return DecodeDiscText(stat->filename);
        std::vector<char> translated(strlen(stat->filename) + 1);
        iso9660_name_translate_ext(stat->filename, translated.data(), 0);
        return DecodeDiscText(translated.data());
    }

    iso9660_t* iso_;
    uint8_t joliet_;
};

}  // namespace

bool ListIsoImage(const QString& image, DataDisc& disc, QString& problem) {
    const QFileInfo info(image);
    if (!info.exists() || !info.isReadable()) {
        problem = "\"" + image + "\" does not exist or cannot be read.";
        return false;
    }
    const QByteArray path = QFile::encodeName(image);
    std::unique_ptr<iso9660_t, IsoCloser> iso(
        iso9660_open_ext(path.constData(), ISO_EXTENSION_ALL));
    if (!iso) {
        problem = "\"" + image + "\" is not an ISO 9660 disc image.";
        return false;
    }
    iso9660_pvd_t pvd;
    if (!iso9660_ifs_read_pvd(iso.get(), &pvd)) {
        problem = "\"" + image + "\" has no readable volume descriptor.";
        return false;
    }
    const qint64 volumeSize = qint64(iso9660_get_pvd_space_size(&pvd)) * kSectorSize;
    if (info.isFile() && info.size() < volumeSize) {
        problem = QString("\"%1\" is cut short: it holds %2 of the volume's %3 bytes.")
                      .arg(image)
                      .arg(info.size())
                      .arg(volumeSize);
        return false;
    }
    IsoLister lister(iso.get());
    if (!lister.List("/", QString(), 0)) {
        problem = "A folder of \"" + image + "\" cannot be read: the image is damaged.";
        return false;
    }
    DataDisc read;
    read.files = lister.lines.size();
    read.listing = JoinListing(lister.lines);
    read.capacity = static_cast<double>(volumeSize);
    read.freespace = 0;
    disc = read;
    return true;
}
