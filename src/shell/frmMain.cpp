#include "shell/frmMain.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QScreen>

#include "app/mGlobals.h"
#include "loans/loanstore.h"
#include "shell/frmSplash.h"
#include "shell/mGlobalFunctions.h"
#include "shell/progressstatus.h"
#include "shell/readrecords.h"
#include "shell/singleinstance.h"
#include "shell/statuspanel.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "store/guardedfile.h"
#include "store/jettextcolumns.h"
#include "store/shelftables.h"
#include "toolkit/controls/cVSplitter.h"
#include "toolkit/controls/imagelists.h"
#include "toolkit/vb/msgbox.h"
#include "toolkit/vb/vbruntime.h"

frmMain* gMainForm = nullptr;

namespace {
// The list's and the tree's pale cream background.
const QColor kViewBackground(0xFE, 0xF8, 0xE0);
const int kTwipsPerPixel = 15;
}  // namespace

frmMain::frmMain()
    : Toolbar1(new QToolBar(this)),
      TV1(new QTreeWidget(this)),
      ListView1(new QTreeView(this)),
      Frame1(new QFrame(this)),
      StatusBar1(new QStatusBar(this)) {
    BuildWindow();
    // A catalogue that could not be opened again after its compaction leaves the program
    // nothing to show: it closes through its normal exit.
    SetCatalogueLostHandler([] {
        if (!gMainForm) return;
        gMainForm->SetMousePointer(vbArrow);
        gMainForm->Unload();
    });
    SetTheMainWindow(this);
}

frmMain::~frmMain() {
    if (gMainForm == this) gMainForm = nullptr;
    if (TheMainWindow() == this) SetTheMainWindow(nullptr);
}

void frmMain::BuildWindow() {
    setWindowTitle(App.Title);
    setWindowIcon(AppIcon());
    resize(820, 560);

    Toolbar1->setObjectName("Toolbar1");
    Toolbar1->setMovable(false);
    // The bar keeps the height of its buttons (picture above caption) from the start, since
    // the panes are placed below it before it is filled.
    Toolbar1->setFixedHeight(24 + Toolbar1->fontMetrics().height() + 16);
    addToolBar(Toolbar1);

    TV1->setObjectName("TV1");
    TV1->setHeaderHidden(true);
    ListView1->setObjectName("ListView1");
    ListView1->setRootIsDecorated(false);
    Frame1->setObjectName("Frame1");
    Frame1->setFrameShape(QFrame::NoFrame);
    // The divider's first place; the splitter takes the panes from here.
    Frame1->setGeometry(220, 0, 4, 100);

    StatusBar1->setObjectName("StatusBar1");
    setStatusBar(StatusBar1);
    for (int panel = 1; panel <= 3; ++panel) {
        auto* label = new StatusPanel(StatusBar1);
        StatusBar1->addPermanentWidget(label, panel == 1 ? 1 : 0);
        panels_.append(label);
    }
    // The count panel keeps one width whatever it counts.
    const int countWidth = panels_[1]->fontMetrics().horizontalAdvance(gItemCountText + "00");
    panels_[1]->setFixedWidth(countWidth + 2 * panels_[1]->frameWidth() + 8);
    SetPanelText(3, "Record");
    new ProgressStatus(this);

    // The search node read before any search asks for the search window, after the read.
    connect(this, &frmMain::SearchWindowRequested, this, &frmMain::ShowSearch);

    BuildContextMenus();
    InstallCommandEvents();
    SetupTree();
    SetupList();
}

void frmMain::SetMousePointer(int pointer) {
    mousePointer_ = pointer;
    if (pointer == vbHourglass) {
        setCursor(Qt::WaitCursor);
        if (!hourglassBusy_) hourglassBusy_.emplace();
    } else {
        unsetCursor();
        hourglassBusy_.reset();
    }
}

QString frmMain::PanelText(int panel) const {
    return panels_.value(panel - 1)->text();
}

void frmMain::SetPanelText(int panel, const QString& text) {
    if (StatusPanel* label = panels_.value(panel - 1)) label->setText(text);
}

void frmMain::FlipDatabaseHeader(const QString& path, int mode) {
    ::FlipDatabaseHeader(path, mode);
}

void frmMain::SetSplashStatus(const QString& text) {
    if (gSplashForm) gSplashForm->SetStatus(text);
    DoEvents();
}

void frmMain::HideSplash() {
    if (gSplashForm) gSplashForm->hide();
}

void frmMain::UnloadSplash() {
    if (gSplashForm) gSplashForm->Unload();
}

void frmMain::SetColours() {
    for (QAbstractItemView* view : std::initializer_list<QAbstractItemView*>{TV1, ListView1}) {
        QPalette palette = view->palette();
        palette.setColor(QPalette::Base, kViewBackground);
        view->setPalette(palette);
    }
}

void frmMain::Form_Load() {
    // The start-up pumps events (the splash's status line): a close meanwhile waits for it.
    const BusyScope starting;
    loading_ = true;
    updateInProgress = false;
    bReadRecordsNow = true;
    gTreeDirty = false;
    gListDirty = false;

    App.HelpFile = AddBackslash(App.Path) + "velmora.html";
    SetColours();

    gSecondInstance = false;
    if (FindPreviousInstance()) return;

    SetSplashStatus("Initializing popup-menus");
    InstallCoolMenus();

    splitter_ = std::make_unique<cVSplitter>();
    if (splitter_->SetControls(this, TV1, ListView1, Frame1)) {
        splitter_->SetTrackSplit(true);
        splitter_->SetTop(Toolbar1->height() + 12);
        splitter_->SetHeightOffset(StatusBar1->sizeHint().height());
    }

    SetSplashStatus("Initializing button-bar");
    InitializeToolbar();

    if (!OpenDatabaseStage1()) return;
    if (!OpenDatabaseStage2()) return;
    // The tree and the list sort by the catalogue's text order, so it must be right before
    // either is filled.
    try {
        if (TextColumnsNeedJetOrder(*gDatabase)) {
            SetSplashStatus("Updating Database to new structure");
            GiveTextColumnsJetOrder(*gDatabase);
        }
        MakeShelfTables(*gDatabase);
        if (loans::TablesMissing(*gDatabase)) {
            SetSplashStatus("Updating Database to new structure");
            loans::MakeTables(*gDatabase);
        }
    } catch (const VbError& error) {
        ReportUnableToLoad(error);
        return;
    }

    gAddingTitle = false;
    gModifyingTitle = false;
    lastTreeButton = 1;
    gItemCountText = "00000 item(s) found";
    gRequestedKey.clear();
    gListReadState = ListReadState();

    SetSplashStatus("Setting up treeview");
    FillTree(2, "");
    SetupListColumns();

    SetSplashStatus("Reading CD-titles");
    try {
        ReadFieldSizes();
    } catch (const VbError& error) {
        ReportUnableToLoad(error);
        return;
    }
    if (gLenLabel < 32) {
        try {
            WidenTextColumn("label", 32);
        } catch (const VbError& error) {
            ReportUnableToLoad(error);
            return;
        }
    }

    TV1->setRootIsDecorated(true);
    SelectFirstNode();
    ShowLoanCount();

    loading_ = false;
    show();
    if (gSplashForm) {
        gSplashForm->SetStatus("Brings you only the best");
        gSplashForm->raise();
        gSplashForm->Timer->start();
    }
}

void frmMain::SelectFirstNode() {
    TV1_NodeClick(NodeCount() >= 2 ? Node(2) : Node(1));
}

bool frmMain::FindPreviousInstance() {
    instance_ = new SingleInstance(CatalogueFolder(), this);
    if (instance_->Claim()) {
        instance_->Listen([this] { RaiseFromOtherInstance(); });
        return false;
    }
    instance_->AskPreviousInstanceToRaise();
    gSecondInstance = true;
    App.Title = "Looking for other instance of Velmora";
    setWindowTitle(App.Title);
    Unload();
    return true;
}

void frmMain::RaiseFromOtherInstance() {
    // A window on its way out stays hidden; the asking start ends as a second one anyway.
    if (unloaded_) return;
    if (isMinimized()) showNormal();
    show();
    raise();
    activateWindow();
}

void frmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    Form_Resize();
}

void frmMain::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    Form_Resize();
}

void frmMain::Form_Resize() {
    if (isMinimized() || unloaded_ || !isVisible()) return;
    // The limits are the window's outer measure in twips.
    const QRect outer = frameGeometry();
    const int screenHeightTwips =
        QGuiApplication::primaryScreen()->geometry().height() * kTwipsPerPixel;
    const int maximumTop = 90 * screenHeightTwips / 100;
    if (outer.top() * kTwipsPerPixel > maximumTop) move(x(), maximumTop / kTwipsPerPixel);
    const int frameExtraHeight = outer.height() - height();
    const int frameExtraWidth = outer.width() - width();
    const int minimumOuterHeight = (490 + kTwipsPerPixel - 1) / kTwipsPerPixel;
    const int minimumOuterWidth = (115 + kTwipsPerPixel - 1) / kTwipsPerPixel;
    if (outer.height() < minimumOuterHeight) resize(width(), minimumOuterHeight - frameExtraHeight);
    if (outer.width() < minimumOuterWidth) resize(minimumOuterWidth - frameExtraWidth, height());
}
