#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QStringList>

class VbError;

// Small pieces the three importers share.

// The lines of a text file, each read as UTF-8 when it is valid UTF-8 and as Windows-1252
// otherwise; CR LF, CR and LF each end a line. False when the file cannot be read, and the
// system's reason in problem.
bool ReadTextLines(const QString& path, QStringList& lines, QString* problem = nullptr);

// The vendor of the audio platform with this name, added when there is none; the id of the
// last one found when there are several. The name goes into the statement as it stands: an
// apostrophe breaks it, and the importer's trap takes the disc as refused.
long AudioVendorId(const QString& artist);

// Today as the catalogue stores dates.
QString TodayText();

// The box of an error that stops an importer: the file, the error's number and description.
void ShowImportStopped(const QString& source, const QString& file, int number,
                       const QString& description);

// The transactions of one import: its titles are committed in batches of at most 500 titles
// or 250 ms, so that a failure (a disk that is full when a batch is committed) loses only the
// batch in flight and what was committed before stays. A statement that fails undoes only
// itself. Inside a transaction of someone else's it does nothing and never fails.
class ImportBatches {
  public:
    // source and file name the import in the box of a failed commit.
    ImportBatches(const QString& source, const QString& file);
    // Commits what is still open, as Finish does.
    ~ImportBatches();
    ImportBatches(const ImportBatches&) = delete;
    ImportBatches& operator=(const ImportBatches&) = delete;

    // After each title; kept tells that it went in (added or renewed). False once a batch is
    // lost: its box has been shown, and the import must stop.
    bool TitleDone(bool kept);
    // Ends the import on an error that every later title would meet too, with its one box;
    // kept tells whether the title in flight went in. What can still be committed stays.
    void Stop(const VbError& error, bool kept);
    // Commits the last batch; false when it is lost.
    bool Finish();
    // The titles that went in and stayed: the summary's count of what did not go wrong.
    int Stayed() const { return keptInAll_ - lost_; }

  private:
    bool Commit();
    void Fail(int number, const QString& description);

    QString source_;
    QString file_;
    bool own_ = false;
    bool failed_ = false;
    int titles_ = 0;
    int kept_ = 0;
    int keptInAll_ = 0;
    int lost_ = 0;
    QElapsedTimer clock_;
};
