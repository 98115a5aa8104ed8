#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QStringList>
#include <QTabWidget>
#include <array>

class Recordset;

// The import window: brings titles into the catalogue from the default CD player's
// cdplayer.ini, the Deluxe CD player's database and a TAB-delimited file, in that order, and
// has the tree and the list reloaded when at least one title came in.
class frmImport : public QDialog {
    Q_OBJECT
  public:
    explicit frmImport(QWidget* owner = nullptr);

    void Form_Load();
    void cmbDefType_Click();
    void Check2_Click(int Index);
    void cmdOK_Click();
    void cmdCancel_Click();

    // The three importers; each counts into its own counters and deals with its own errors.
    void ImportCdPlayerIni();
    void ImportDeluxeDatabase();
    void ImportTabFile();
    // Adds one record of a TAB file through an open recordset on the table title.
    void ImportTabLine(const QStringList& Columns, Recordset& rs, bool WarnTitles, bool& Succeeded);

    // The window's busy flag: 11 while an importer runs, 1 at rest.
    int MousePointer() const { return mousePointer_; }
    void SetMousePointer(int pointer);

    QTabWidget* TabStrip1;
    QGroupBox* Frame1;
    QGroupBox* Frame2;
    QGroupBox* Frame3;
    // Default CD player, Deluxe CD player, TAB-delimited file.
    std::array<QCheckBox*, 3> Check1;
    // Overwrite, warn, summary.
    std::array<QCheckBox*, 3> Check2;
    QLabel* lblType;
    QComboBox* cmbDefType;
    QLabel* lblSpecific;
    QComboBox* cmbDefSpecific;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;

    QString IniPath;
    QString DeluxePath;
    bool OverwriteTitles = false;
    bool WarnTitles = false;
    bool ShowSummary = true;
    qint32 IniTried = 0;
    qint32 IniDuplicates = 0;
    qint32 DeluxeTried = 0;
    qint32 DeluxeDuplicates = 0;
    qint32 TabTried = 0;
    qint32 TabFailed = 0;
    qint16 LastDefaultType = 32765;

  protected:
    // Enter and Escape act at key-up, from every control of the window.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void BuildWindow();
    // The item data of the chosen row of a default combo.
    long DefaultId(const QComboBox* combo) const;
    void ShowSourceSummary(qint32 tried, qint32 refused, const QCheckBox* source);

    int mousePointer_ = 1;
};

// The import command: shows the import window modally over the main window.
void ShowImportWindow(QWidget* owner);
