#include "import/frmImport.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "app/mGlobals.h"
#include "app/mainwindow.h"
#include "store/catalogue.h"
#include "toolkit/platform/mUtility.h"
#include "toolkit/vb/guardeddialog.h"
#include "toolkit/vb/keyupguard.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

QCheckBox* CheckBox(const QString& caption, const QString& tooltip, bool checked) {
    auto* box = new QCheckBox(caption);
    box->setToolTip(tooltip);
    box->setChecked(checked);
    return box;
}

}  // namespace

frmImport::frmImport(QWidget* owner) : QDialog(owner) {
    keyupguard::Install();
    BuildWindow();
}

void frmImport::BuildWindow() {
    setWindowTitle("Import titles into Velmora's Database");
    setModal(true);

    Check1 = {CheckBox("Windows Default CD-player",
                       "Import titles from Microsoft default cd-player (cdplayer.ini)", true),
              CheckBox("Windows Deluxe CD-player (Plus! and 2000)",
                       "Import titles from Microsoft Deluxe cd-player (deluxe.mdb)", true),
              CheckBox("TAB delimited file",
                       "Import titles from a TAB-delimited file (any textfile)", true)};
    Check2 = {
        CheckBox("Overwrite titles allready in Velmora's Database",
                 "This is an extra option for imported audio-cd's", false),
        CheckBox("Warn me when titles cannot be added",
                 "Shows error-messages on each title that cannot be added", false),
        CheckBox("Show final summary after importing data",
                 "Shows how many titles have been read and how many have been imported", true)};
    for (int index = 0; index < 3; ++index)
        connect(Check2[index], &QCheckBox::clicked, this, [this, index] { Check2_Click(index); });

    Frame1 = new QGroupBox("Import CD-titles from");
    auto* sources = new QVBoxLayout(Frame1);
    for (QCheckBox* box : Check1) sources->addWidget(box);
    Frame2 = new QGroupBox("Options");
    auto* options = new QVBoxLayout(Frame2);
    for (QCheckBox* box : Check2) options->addWidget(box);

    Frame3 = new QGroupBox("Defaults");
    const QString typeTip =
        "Select a default type if none is provided (when importing from a program or TAB-file "
        "with no specified Type)";
    const QString specificTip =
        "Select a default specific item if none is provided (when importing from a program or "
        "TAB-file with no specified Specific item)";
    lblType = new QLabel("Type");
    lblType->setToolTip(typeTip);
    cmbDefType = new QComboBox;
    cmbDefType->setToolTip(typeTip);
    lblSpecific = new QLabel("Specific item");
    lblSpecific->setToolTip(specificTip);
    cmbDefSpecific = new QComboBox;
    cmbDefSpecific->setToolTip(specificTip);
    cmbDefSpecific->setEnabled(false);
    lblType->setBuddy(cmbDefType);
    lblSpecific->setBuddy(cmbDefSpecific);
    connect(cmbDefType, &QComboBox::activated, this, [this] { cmbDefType_Click(); });
    auto* defaults = new QGridLayout(Frame3);
    defaults->addWidget(lblType, 0, 0);
    defaults->addWidget(cmbDefType, 0, 1);
    defaults->addWidget(lblSpecific, 1, 0);
    defaults->addWidget(cmbDefSpecific, 1, 1);
    defaults->setColumnStretch(1, 1);

    auto* page = new QWidget;
    auto* pageLayout = new QVBoxLayout(page);
    pageLayout->addWidget(Frame1);
    pageLayout->addWidget(Frame2);
    pageLayout->addWidget(Frame3);
    TabStrip1 = new QTabWidget;
    TabStrip1->addTab(page, "Source");
    TabStrip1->setTabToolTip(0, "Select where you want to import titles from");

    cmdOK = new QPushButton("&OK");
    cmdOK->setToolTip("Click OK to start import of the cd-titles");
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton("Cancel");
    cmdCancel->setToolTip("Don't import any cd-titles");
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(TabStrip1);
    layout->addLayout(buttons);

    std::vector<QWidget*> controls = {cmbDefType, cmbDefSpecific, cmdOK, cmdCancel,
                                      TabStrip1->tabBar()};
    controls.insert(controls.end(), Check1.begin(), Check1.end());
    controls.insert(controls.end(), Check2.begin(), Check2.end());
    for (QWidget* control : controls) control->installEventFilter(this);
}

bool frmImport::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
        return QDialog::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    const bool escape = key->key() == Qt::Key_Escape;
    if (!enter && !escape) return false;
    // The key-down must not reach the dialog's own handling, which would act at once.
    if (event->type() == QEvent::KeyPress) return true;
    // A key-up whose key-down went to a box or an open list is not ours.
    if (!keyupguard::CameHere(watched, key)) return false;
    // OK is the default button: Enter on any control but Cancel starts the import.
    if (escape || watched == cmdCancel)
        cmdCancel_Click();
    else
        cmdOK_Click();
    return true;
}

void frmImport::SetMousePointer(int pointer) {
    mousePointer_ = pointer;
    if (pointer == vbHourglass)
        setCursor(Qt::WaitCursor);
    else
        unsetCursor();
}

void frmImport::Form_Load() {
    cmbDefType->clear();
    cmbDefSpecific->clear();
    // Until a type is chosen the specific list holds those of all audio types, less the first
    // row of each type, as the walk below leaves them.
    auto rs = gDatabase->OpenRecordset(
        "select * from type, specific where type.idtype = specific.idtype and idplatform = 1");
    long rememberedType = 0;
    for (; !rs->IsEOF(); rs->MoveNext()) {
        const long type = (*rs)["type.idtype"].toLongLong();
        if (type != rememberedType) {
            cmbDefType->addItem(NzText((*rs)["nmtype"]), QVariant::fromValue<qint64>(type));
            rememberedType = type;
        } else {
            cmbDefSpecific->addItem(NzText((*rs)["nmspecific"]), (*rs)["idspecific"]);
        }
    }
    cmbDefType->setCurrentIndex(-1);
    cmbDefSpecific->setCurrentIndex(-1);

    OverwriteTitles = false;
    WarnTitles = false;
    ShowSummary = true;
    IniTried = IniDuplicates = DeluxeTried = DeluxeDuplicates = 0;

    IniPath = GetWindowsDirectory() + "/" + "cdplayer.ini";
    if (!QFileInfo::exists(IniPath)) {
        Check1[0]->setChecked(false);
        Check1[0]->setEnabled(false);
    }

    DeluxePath = DeluxeDatabasePath();
    if (DeluxePath.startsWith("Err") || !QFileInfo(DeluxePath).isFile()) {
        Check1[1]->setChecked(false);
        Check1[1]->setEnabled(false);
    }
}

void frmImport::cmbDefType_Click() {
    const int type = cmbDefType->currentData().toInt();
    if (type == LastDefaultType) return;
    LastDefaultType = static_cast<qint16>(type);
    auto rs = gDatabase->OpenRecordset(
        "select * from specific where idtype = " + QString::number(type) + " order by nmspecific");
    cmbDefSpecific->clear();
    cmbDefSpecific->setEnabled(true);
    cmbDefSpecific->setPalette(palette());
    // As many rows as the count right after opening reports, without going to the last row.
    const long count = rs->RecordCount();
    for (long row = 0; row < count; ++row) {
        cmbDefSpecific->addItem(NzText((*rs)["nmspecific"]), (*rs)["idspecific"]);
        rs->MoveNext();
    }
    cmbDefSpecific->setCurrentIndex(-1);
}

void frmImport::Check2_Click(int Index) {
    switch (Index) {
        case 0:
            OverwriteTitles = Check2[0]->isChecked();
            Check2[1]->setEnabled(!OverwriteTitles);
            break;
        case 1:
            WarnTitles = Check2[1]->isChecked();
            break;
        case 2:
            ShowSummary = Check2[2]->isChecked();
            break;
        default:
            break;
    }
}

long frmImport::DefaultId(const QComboBox* combo) const {
    return combo->currentData().toLongLong();
}

void frmImport::ShowSourceSummary(qint32 tried, qint32 refused, const QCheckBox* source) {
    if (!ShowSummary) return;
    MsgBox("Tried to import " + QString::number(tried) + " title(s) from " + source->text() +
               "\r\n" + "Of those " + QString::number(refused) +
               " went wrong because of duplicates.",
           vbInformation);
}

void frmImport::cmdOK_Click() {
    if (std::none_of(Check1.begin(), Check1.end(),
                     [](QCheckBox* box) { return box->isChecked(); })) {
        MsgBox("You should at least select one program or file to import cd's from", vbInformation,
               "Select a program");
        return;
    }
    const bool playerChosen = Check1[0]->isChecked() || Check1[1]->isChecked();
    if (playerChosen && cmbDefType->currentIndex() < 0) {
        MsgBox("Please select a default type when importing CD-titles", vbInformation,
               "Select a type first");
        return;
    }
    if (playerChosen && cmbDefSpecific->currentIndex() < 0) {
        MsgBox("Please select a default specific item when importing CD-titles", vbInformation,
               "Select a specific item first");
        return;
    }
    // Closing the program waits until the imports and their boxes are done.
    const BusyScope busy;
    if (Check1[0]->isChecked()) {
        SetMousePointer(vbHourglass);
        ImportCdPlayerIni();
        SetMousePointer(vbArrow);
        ShowSourceSummary(IniTried, IniDuplicates, Check1[0]);
    }
    if (Check1[1]->isChecked()) {
        SetMousePointer(vbHourglass);
        ImportDeluxeDatabase();
        SetMousePointer(vbArrow);
        ShowSourceSummary(DeluxeTried, DeluxeDuplicates, Check1[1]);
    }
    if (Check1[2]->isChecked()) {
        SetMousePointer(vbHourglass);
        ImportTabFile();
        SetMousePointer(vbArrow);
    }
    const qint64 added =
        qint64(IniTried) + DeluxeTried - IniDuplicates - DeluxeDuplicates + TabTried - TabFailed;
    if (MainWindow* main = TheMainWindow(); added > 0 && main) {
        gTreeDirty = true;
        gListDirty = true;
        main->RefreshIfDirty();
    }
    accept();
}

void frmImport::cmdCancel_Click() {
    reject();
}

void ShowImportWindow(QWidget* owner) {
    GuardedDialog<frmImport> window(owner);
    window->Form_Load();
    window.exec();
}
