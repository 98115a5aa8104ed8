#pragma once

#include <QDialog>
#include <QList>
#include <QStringList>

class CoverArtArchive;
class QLabel;
class QProgressBar;
class QPushButton;
struct CoverAnswer;

// Fetches the front cover of every title of a list that has a release and no cover, one after
// the other at the archive's pace, showing how far it is here and in the main window's status
// panel. Each cover is stored as it comes, so that a fetch stopped by Cancel or Escape (or cut
// off) keeps what it fetched and the next one goes on with the rest.
class frmFetchCovers : public QDialog {
    Q_OBJECT

  public:
    struct Summary {
        int tried = 0;
        int fetched = 0;
        int without = 0;
        // "Title: reason", one a failure.
        QStringList failures;
        bool stopped = false;
    };

    // titleIds: the titles to look at; those without a release or with a cover are left out.
    frmFetchCovers(const QList<long>& titleIds, QWidget* parent = nullptr);

    // The titles that will be asked for.
    int Count() const { return static_cast<int>(todo_.size()); }
    // Runs modally until every title was asked for or the user stopped.
    Summary Run();

    QLabel* lblStatus;
    QProgressBar* barProgress;
    QPushButton* cmdCancel;

  private:
    struct Todo {
        long idcd;
        QString mbid;
        QString title;
    };

    void Next();
    void Take(const CoverAnswer& answer);

    QList<Todo> todo_;
    int next_ = 0;
    Summary summary_;
    CoverArtArchive* archive_;
    bool large_ = false;
};

// The command: fetches the missing covers of titleIds and ends with a box that sums them up
// ("340 tried, 312 fetched, 26 without a cover, 2 failed: ...").
void FetchMissingCovers(const QList<long>& titleIds, QWidget* owner);
