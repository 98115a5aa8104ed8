// The opening of the title editor: the lists, and the add or edit road.

#include <QComboBox>
#include <QDate>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "app/mGlobals.h"
#include "app/mainwindow.h"
#include "editor/frmEdit.h"
#include "loans/loanhistorypanel.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "toolkit/vb/vbruntime.h"
#include "toolkit/vb/vbstrings.h"

namespace {

// A width of 0 is an unread one: no limit then, rather than no text at all.
int MaxLengthOf(int width) {
    return width > 0 ? width : 32767;
}

// A stored date reads in the locale's short form; text that is no date shows as it stands.
QString StoredDateText(const QVariant& value) {
    const QDate date = QDate::fromString(NzText(value), Qt::ISODate);
    return date.isValid() ? ShortDate(date) : NzText(value);
}

// The empty text mark and a plain empty text both show as an empty field.
QString StoredText(const QVariant& value) {
    const QString text = NzText(value);
    return text == kEmptyTextMark ? QString() : text;
}

}  // namespace

void frmEdit::FillList(int index, const QString& sql, const QString& textField,
                       const QString& idField) {
    QComboBox* combo = Combo1[index];
    // Filling selects nothing and fires nothing; a list shows no row until one is chosen.
    const QSignalBlocker blocker(combo);
    combo->clear();
    try {
        std::unique_ptr<Recordset> records = gDatabase->OpenRecordset(sql, dbOpenForwardOnly);
        while (!records->IsEOF()) {
            combo->addItem(NzText(records->Fields(textField).Value()),
                           records->Fields(idField).Value().toLongLong());
            records->MoveNext();
        }
    } catch (const VbError&) {
        // A list that cannot be read stays as far as it got; the save names a missing choice.
    }
    combo->setCurrentIndex(-1);
}

void frmEdit::Form_Load() {
    IgnoreKeyUp = false;
    txtTitle->setMaxLength(MaxLengthOf(gLenTitle));
    Text2->setMaxLength(MaxLengthOf(gLenLabel));
    TracksEdited = false;
    tracksCaption_ = "Enter audiotracks here...";
    listingCaption_ = "Enter listing here...";

    FillList(0, "select * from platform order by nmplatform", "nmplatform", "idplatform");
    FillList(4, "select * from mediatype order by nmmediatype", "nmmediatype", "idmediatype");

    Combo1[6]->setCurrentIndex(0);
    Combo1[5]->setCurrentIndex(25);
    if (Combo1[4]->count() > 0) Combo1[4]->setCurrentIndex(0);

    lblCreated->setText(ShortDate(QDate::currentDate()));
    lblModified->setText(ShortDate(QDate::currentDate()));

    if (!gModifyingTitle)
        LoadAddRoad();
    else
        LoadEditRoad();
    LoadShelfFields();

    SetMousePointer(vbArrow);
}

void frmEdit::LoadAddRoad() {
    setWindowTitle("Add Title");
    cmdOK->setText("&Add");
    fraLoans->Load(0, QString());

    const QString key = SelectedFolderKey();
    if (key.isEmpty() || key == "root") return;

    long platformId = 0;
    long typeId = 0;
    const QString parentKey = ParentFolderKey(key);
    if (parentKey == "root") {
        platformId = Val(key.mid(3));
    } else if (!parentKey.isEmpty() && ParentFolderKey(parentKey) == "root") {
        platformId = Val(parentKey.mid(3));
        typeId = Val(key.mid(parentKey.size() + 3));
    }

    if (platformId >= 1) SelectItemData(0, static_cast<qlonglong>(platformId));
    if (typeId >= 1) SelectItemData(2, static_cast<qlonglong>(typeId));
}

void frmEdit::LoadEditRoad() {
    setWindowTitle("Edit Title");
    cmdOK->setText("&Update");

    std::unique_ptr<Recordset> record;
    try {
        record = gDatabase->OpenRecordset(
            "select * from title where title.idcd = " + QString::number(gCurrentTitleId),
            dbOpenDynaset);
    } catch (const VbError&) {
        return;
    }
    if (record->IsEOF()) return;

    txtTitle->setText(NzText(record->Fields("nmcd").Value()));
    // Each list takes the stored row; a platform fills vendors and types, a type the specific
    // items, so the order matters.
    const std::array<std::pair<int, const char*>, 7> lists{{{0, "idplatform"},
                                                            {1, "idvendor"},
                                                            {2, "idtype"},
                                                            {3, "idspecific"},
                                                            {4, "idmediatype"},
                                                            {6, "nrcds"},
                                                            {5, "rating"}}};
    for (const auto& [index, field] : lists) SelectItemData(index, record->Fields(field).Value());

    Text2->setText(StoredText(record->Fields("label").Value()));
    lblCreated->setText(StoredDateText(record->Fields("created").Value()));
    lblModified->setText(StoredDateText(record->Fields("modified").Value()));
    Memo->setPlainText(StoredText(record->Fields("memo").Value()).replace(vbCrLf, "\n"));
    fraLoans->Load(gCurrentTitleId, txtTitle->text());
}
