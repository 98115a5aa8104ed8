#include "store/shelfrecords.h"

#include "store/catalogue.h"
#include "toolkit/vb/vbruntime.h"

namespace {

std::unique_ptr<Recordset> RowOf(const QString& table, long idcd, const QString& columns = "*") {
    return gDatabase->OpenRecordset(
        "select " + columns + " from " + table + " where idcd = " + QString::number(idcd),
        dbOpenDynaset);
}

// Opens the title's row for writing: Edit on the row there is, AddNew when there is none.
std::unique_ptr<Recordset> EditRowOf(const QString& table, long idcd) {
    std::unique_ptr<Recordset> row = RowOf(table, idcd);
    if (row->IsEOF()) {
        row->AddNew();
        row->Fields("idcd").SetValue(static_cast<qlonglong>(idcd));
    } else {
        row->Edit();
    }
    return row;
}

void RemoveRowOf(const QString& table, long idcd) {
    gDatabase->Execute("delete from " + table + " where idcd = " + QString::number(idcd));
}

}  // namespace

TitleRelease ReadTitleRelease(long idcd) {
    TitleRelease release;
    std::unique_ptr<Recordset> row = RowOf("titlerelease", idcd);
    if (row->IsEOF()) return release;
    release.mbid = NzText(row->Fields("mbid").Value());
    release.barcode = NzText(row->Fields("barcode").Value());
    return release;
}

void WriteTitleRelease(long idcd, const TitleRelease& release) {
    if (release.IsEmpty()) return RemoveRowOf("titlerelease", idcd);
    std::unique_ptr<Recordset> row = EditRowOf("titlerelease", idcd);
    row->Fields("mbid").SetValue(release.mbid);
    row->Fields("barcode").SetValue(release.barcode);
    row->Update();
}

TitleCover ReadCover(long idcd) {
    TitleCover cover;
    std::unique_ptr<Recordset> row = RowOf("cover", idcd);
    if (row->IsEOF()) return cover;
    cover.image = row->Fields("image").Value().toByteArray();
    cover.thumbnail = row->Fields("thumbnail").Value().toByteArray();
    cover.mbid = NzText(row->Fields("mbid").Value());
    cover.source = NzText(row->Fields("source").Value());
    cover.added = NzText(row->Fields("added").Value());
    return cover;
}

QByteArray ReadCoverThumbnail(long idcd) {
    // Read for the list's tooltip and the HTML page, title after title: a plain forward read.
    std::unique_ptr<Recordset> row = gDatabase->OpenRecordset(
        "select thumbnail from cover where idcd = " + QString::number(idcd), dbOpenForwardOnly);
    return row->IsEOF() ? QByteArray() : row->Fields("thumbnail").Value().toByteArray();
}

void WriteCover(long idcd, const TitleCover& cover) {
    if (cover.IsEmpty()) return RemoveRowOf("cover", idcd);
    std::unique_ptr<Recordset> row = EditRowOf("cover", idcd);
    row->Fields("image").SetValue(cover.image);
    row->Fields("thumbnail").SetValue(cover.thumbnail);
    row->Fields("mbid").SetValue(cover.mbid);
    row->Fields("source").SetValue(cover.source);
    row->Fields("added").SetValue(cover.added);
    row->Update();
}
