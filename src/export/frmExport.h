#pragma once

#include <QDialog>
#include <QString>
#include <array>
#include <memory>

class QCheckBox;
class QGroupBox;
class QPushButton;
class QRadioButton;
class QStackedLayout;
class QTabBar;
class Recordset;

// The modal window that takes a chosen set of titles out of the catalogue to up to five
// destinations in one go: an HTML page, the clipboard, a TAB-delimited file, the cdplayer.ini
// of the Windows default CD player and the Deluxe CD player's database.
class frmExport : public QDialog {
    Q_OBJECT
  public:
    explicit frmExport(QWidget* parent = nullptr);
    ~frmExport() override;

    void Form_Load();
    // Brings the frame of the selected tab to the front.
    void TabStrip1_Click();
    void Check2_Click(int index);
    // Checks the choices, opens the titles and runs the writers in their fixed order; closes
    // the window unless a destination had nothing to export.
    void cmdOK_Click();
    void cmdCancel_Click();

    // The writers. Each reads the export recordset from its current row and handles its own
    // errors; Count is the number of titles the driver found.
    void ExportToHtml(long& Count);
    void ExportToClipboard(long& Count);
    void ExportToTabFile(long& Count);
    void ExportToCdPlayerIni(long& Count);
    void ExportToDeluxe(long& Count);

    int MousePointer() const { return mousePointer_; }
    void SetMousePointer(int pointer);

    QTabBar* TabStrip1;
    std::array<QGroupBox*, 4> FrameTab;
    // All in current folder, current platform, all folders, from the search-folder.
    std::array<QRadioButton*, 4> Option1;
    // HTML-file, clipboard, TAB-delimited file, Windows default CD player, Deluxe CD player.
    std::array<QCheckBox*, 5> Check1;
    // The fields: platform, title, by, type, specific, rating, label, memo, nr cd's, tracks.
    std::array<QCheckBox*, 10> Check3;
    // Each title's cover thumbnail on the HTML page, in a folder beside it.
    QCheckBox* chkCovers;
    // Overwrite, warn, show summary, open the HTML file afterwards.
    std::array<QCheckBox*, 4> Check2;
    // The loan register: "lent to ... until ..." under each title out on the HTML page, and a
    // calendar of the due dates as a destination of its own.
    QCheckBox* chkLentTo;
    QCheckBox* chkCalendar;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

    QString ExportFileName;
    QString IniPath;
    QString DeluxePath;
    bool ExportFailed = true;
    bool OverwriteTitles = false;
    bool WarnTitles = false;
    bool ShowSummary = true;
    bool OpenHtmlAfterExport = true;
    qint16 IniExportTried = 0;
    qint16 IniExportDuplicates = 0;
    qint16 DeluxeExportTried = 0;
    qint16 DeluxeExportDuplicates = 0;
    // The titles to export; it lives as long as the window.
    std::unique_ptr<Recordset> ExportRecordset;

  private:
    using Writer = void (frmExport::*)(long&);

    void BuildWindow();
    QGroupBox* AddFrame(const QString& tab, const QString& tooltip, const QString& caption);
    // Opens the titles of the selected tree node by the chosen Option1; false when the click
    // ends here (the user declined the question).
    bool OpenExportTitles(int option);
    void OpenCurrentFolder(const QString& key);
    bool OpenCurrentPlatform(const QString& key);
    bool NoFieldChosen() const;
    bool ExportIsEmpty() const;
    // Runs one destination: the "No titles to export." box when there is nothing, else the
    // writer under the hourglass, with the recordset on its first row before and after.
    void RunDestination(Writer writer, bool nothingToExport, const QString& caption, long& count);
    // The writer of each destination, in the fixed order; a destination without one is never
    // offered.
    Writer DestinationWriter(int index) const;
    // The file chooser of the HTML and TAB writers; empty when the user cancelled.
    QString AskSaveFileName(const QString& title, const QString& defaultExt, const QString& filter);
    void ShowFileSummary(const QString& caption, long count);
    // Writes the open loans of the titles to export, with a due date, as an iCalendar file.
    void ExportLoanCalendar();

    QStackedLayout* frames_;
    int mousePointer_ = 1;
};

// The export command: opens the export window modally over the main window.
void ShowExportForm(QWidget* owner);
