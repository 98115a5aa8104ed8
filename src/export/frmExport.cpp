#include "export/frmExport.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedLayout>
#include <QTabBar>
#include <QVBoxLayout>

#include "app/mGlobals.h"
#include "store/dao.h"
#include "toolkit/platform/mUtility.h"
#include "toolkit/vb/GCommonDialog.h"
#include "toolkit/vb/cCommonDialog.h"
#include "toolkit/vb/guardeddialog.h"
#include "toolkit/vb/longwork.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

namespace {

struct FieldDesign {
    QString caption;
    QString tag;
    bool checked;
};

const std::array<FieldDesign, 10> kFields = {{
    {"Platform (audio, psx, pc, etc. )", "nmplatform", false},
    {"Title", "nmcd", true},
    {"By (vendor, creator, artist)", "nmvendor", true},
    {"Type (game, app, normal audio-cd, screener, etc. )", "nmtype", true},
    {"Specific (r&&b, flight-sim, add-on, adventure, rpg, etc. )", "nmexplicit", true},
    {"Rating", "rating", false},
    {"Label", "nmlabel", false},
    {"Memo", "memo", false},
    {"Nr cd's", "nrcds", true},
    {"Audio-tracks or listing (if available)", "TrackName", false},
}};

QCheckBox* AddCheckBox(QGroupBox* frame, const QString& caption, bool checked) {
    auto* box = new QCheckBox(caption, frame);
    box->setChecked(checked);
    frame->layout()->addWidget(box);
    return box;
}

}  // namespace

frmExport::frmExport(QWidget* parent) : QDialog(parent) {
    BuildWindow();
}

frmExport::~frmExport() = default;

QGroupBox* frmExport::AddFrame(const QString& tab, const QString& tooltip, const QString& caption) {
    const int index = TabStrip1->addTab(tab);
    TabStrip1->setTabToolTip(index, tooltip);
    auto* frame = new QGroupBox(caption, this);
    frame->setObjectName(QString("FrameTab%1").arg(index));
    new QVBoxLayout(frame);
    return frame;
}

void frmExport::BuildWindow() {
    setWindowTitle("Export titles from Velmora - cd cataloger pro");
    setModal(true);

    TabStrip1 = new QTabBar(this);
    TabStrip1->setObjectName("TabStrip1");
    FrameTab[0] = AddFrame("Select Titles", "Which cd-titles should be exported?",
                           "Select which titles you want to export");
    const QStringList options = {"All in current folder",
                                 "Current platform (only vcd, only pc, only dvd , etc)",
                                 "All folders", "From the search-folder"};
    for (int i = 0; i < 4; ++i) {
        Option1[i] = new QRadioButton(options[i], FrameTab[0]);
        FrameTab[0]->layout()->addWidget(Option1[i]);
    }
    Option1[0]->setChecked(true);
    Option1[3]->setEnabled(false);

    FrameTab[1] = AddFrame("Destination", "Where do you want to export the cd-titles to?",
                           "Export cd-titles to");
    const QStringList destinations = {"HTML-file", "Clipboard", "TAB-delimited file",
                                      "Windows Default CD-player",
                                      "Windows Deluxe CD-player (Plus! and 2000)"};
    for (int i = 0; i < 5; ++i) Check1[i] = AddCheckBox(FrameTab[1], destinations[i], i == 0);
    Check1[3]->setEnabled(false);
    Check1[4]->setEnabled(false);
    chkCalendar =
        AddCheckBox(FrameTab[1], "Calendar of the due dates of lent titles (.ics)", false);
    chkCalendar->setObjectName("chkCalendar");

    FrameTab[2] = AddFrame("Fields", "What kind of information do you want to export?",
                           "Mark all that apply");
    for (size_t i = 0; i < kFields.size(); ++i) {
        Check3[i] = AddCheckBox(FrameTab[2], kFields[i].caption, kFields[i].checked);
        Check3[i]->setProperty("Tag", kFields[i].tag);
    }
    chkCovers = AddCheckBox(FrameTab[2], "Covers", false);
    chkCovers->setObjectName("chkCovers");
    chkCovers->setToolTip("Put each title's cover on the HTML page, in a folder beside it");
    chkLentTo = AddCheckBox(FrameTab[2], "Lent to ... until ... (HTML-file)", false);
    chkLentTo->setObjectName("chkLentTo");

    FrameTab[3] = AddFrame("Options", "Here you can set various options.",
                           "Select one or more options for exporting");
    const QStringList settings = {"Overwrite titles allready present in other program",
                                  "Warn me when titles cannot be added", "Show final summary",
                                  "Open HTML-file after export"};
    for (int i = 0; i < 4; ++i) {
        Check2[i] = AddCheckBox(FrameTab[3], settings[i], i >= 2);
        connect(Check2[i], &QCheckBox::clicked, this, [this, i] { Check2_Click(i); });
    }
    Check2[0]->setEnabled(false);
    Check2[1]->setEnabled(false);

    frames_ = new QStackedLayout;
    for (QGroupBox* frame : FrameTab) {
        static_cast<QVBoxLayout*>(frame->layout())->addStretch();
        frames_->addWidget(frame);
    }
    connect(TabStrip1, &QTabBar::currentChanged, this, [this] { TabStrip1_Click(); });

    cmdOK = new QPushButton("OK", this);
    cmdCancel = new QPushButton("Cancel", this);
    cmdOK->setDefault(true);
    connect(cmdOK, &QPushButton::clicked, this, &frmExport::cmdOK_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmExport::cmdCancel_Click);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(TabStrip1);
    layout->addLayout(frames_);
    layout->addLayout(buttons);
}

void frmExport::Form_Load() {
    ExportFailed = true;
    OverwriteTitles = Check2[0]->isChecked();
    WarnTitles = Check2[1]->isChecked();
    ShowSummary = Check2[2]->isChecked();
    OpenHtmlAfterExport = Check2[3]->isChecked();
    IniExportTried = IniExportDuplicates = 0;
    DeluxeExportTried = DeluxeExportDuplicates = 0;

    IniPath = GetWindowsDirectory() + "/cdplayer.ini";
    Check1[3]->setEnabled(QFileInfo(IniPath).isFile());

    DeluxePath = DeluxeDatabasePath();
    Check1[4]->setEnabled(!DeluxePath.startsWith("Err") && QFileInfo(DeluxePath).isFile());

    if (!gSearchSQL.isEmpty()) Option1[3]->setEnabled(true);
}

void frmExport::TabStrip1_Click() {
    frames_->setCurrentWidget(FrameTab[TabStrip1->currentIndex()]);
}

void frmExport::Check2_Click(int index) {
    const bool checked = Check2[index]->isChecked();
    switch (index) {
        case 0:
            OverwriteTitles = checked;
            Check2[1]->setEnabled(!checked);
            break;
        case 1:
            WarnTitles = checked;
            break;
        case 2:
            ShowSummary = checked;
            break;
        case 3:
            OpenHtmlAfterExport = checked;
            break;
    }
}

void frmExport::SetMousePointer(int pointer) {
    mousePointer_ = pointer;
    if (pointer == vbHourglass)
        setCursor(Qt::WaitCursor);
    else
        unsetCursor();
}

frmExport::Writer frmExport::DestinationWriter(int index) const {
    static const std::array<Writer, 5> writers = {
        &frmExport::ExportToHtml, &frmExport::ExportToClipboard, &frmExport::ExportToTabFile,
        &frmExport::ExportToCdPlayerIni, &frmExport::ExportToDeluxe};
    return writers[index];
}

bool frmExport::NoFieldChosen() const {
    for (const QCheckBox* field : Check3)
        if (field->isChecked()) return false;
    return true;
}

bool frmExport::ExportIsEmpty() const {
    return !ExportRecordset || (ExportRecordset->IsBOF() && ExportRecordset->IsEOF());
}

void frmExport::RunDestination(Writer writer, bool nothingToExport, const QString& caption,
                               long& count) {
    if (nothingToExport) {
        MsgBox("No titles to export.", vbExclamation, caption);
        ExportFailed = true;
        return;
    }
    ExportRecordset->MoveFirst();
    SetMousePointer(vbHourglass);
    {
        // The writers pump events (their boxes, the file chooser); the program's end waits.
        const BusyScope busy;
        (this->*writer)(count);
    }
    // Every road out of a writer, its failures too, ends the progress it reported.
    EndProgress("Exporting title");
    SetMousePointer(vbArrow);
    ExportRecordset->MoveFirst();
}

void frmExport::cmdOK_Click() {
    ExportFailed = true;
    for (const QCheckBox* destination : Check1)
        if (destination->isEnabled() && destination->isChecked()) ExportFailed = false;
    if (chkCalendar->isChecked()) ExportFailed = false;
    if (ExportFailed) {
        MsgBox("Please select where you want to want to export your cd-titles to.", vbCritical,
               "No destination given for export");
        return;
    }

    int option = 0;
    while (option < 3 && !Option1[option]->isChecked()) ++option;
    if (!OpenExportTitles(option)) return;

    if ((Check1[0]->isChecked() || Check1[1]->isChecked()) && NoFieldChosen()) {
        MsgBox(
            "You want to export cd-titles, but didn't select any fields.\r\n\r\nPlease correct "
            "this before continuing.",
            vbExclamation, "Fields");
        return;
    }

    long count = 0;
    if (ExportRecordset && !ExportRecordset->IsBOF() && !ExportRecordset->IsEOF()) {
        ExportRecordset->MoveLast();
        count = ExportRecordset->RecordCount();
        ExportRecordset->MoveFirst();
    }

    const QStringList fileCaptions = {"Exporting titles to file", "Exporting titles to clipboard",
                                      "Exporting titles to TAB-delimited file"};
    for (int i = 0; i < 3; ++i)
        if (Check1[i]->isChecked())
            RunDestination(DestinationWriter(i), ExportIsEmpty(), fileCaptions[i], count);
    for (int i = 3; i < 5; ++i)
        if (Check1[i]->isEnabled() && Check1[i]->isChecked())
            RunDestination(DestinationWriter(i), count < 1,
                           "Exporting titles to " + Check1[i]->text(), count);
    if (chkCalendar->isChecked()) ExportLoanCalendar();

    if (!ExportFailed) accept();
}

void frmExport::cmdCancel_Click() {
    reject();
}

QString frmExport::AskSaveFileName(const QString& title, const QString& defaultExt,
                                   const QString& filter) {
    cCommonDialog dialog;
    dialog.DialogTitle = title;
    dialog.DefaultExt = defaultExt;
    // 0x9806, as the save dialogs of every destination ask.
    dialog.flags = cdlOFNOverwritePrompt | cdlOFNHideReadOnly | cdlOFNPathMustExist |
                   cdlOFNFileMustExist | cdlOFNNoReadOnlyReturn;
    dialog.InitDir = App.Path;
    dialog.Filter = filter;
    dialog.FilterIndex = 1;
    dialog.ShowSave();
    return dialog.Filename;
}

void ShowExportForm(QWidget* owner) {
    GuardedDialog<frmExport> form(owner);
    form->Form_Load();
    form.exec();
}
