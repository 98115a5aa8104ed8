#include "loans/borrowerspanel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "app/lookupresult.h"
#include "app/mGlobals.h"
#include "loans/borrowers.h"
#include "store/catalogue.h"
#include "toolkit/controls/imagelists.h"
#include "toolkit/vb/vbruntime.h"

BorrowersPanel::BorrowersPanel(QWidget* parent) : QWidget(parent) {
    lstBorrower = new QListWidget(this);
    lstBorrower->setObjectName("lstBorrower");
    lstBorrower->setToolTip("The people you lend cd-titles to");
    lstBorrower->setMinimumWidth(220);
    lstBorrower->installEventFilter(this);
    auto* caption = new QLabel("&Borrowers", this);
    caption->setToolTip("People who borrow your cd-titles");
    caption->setBuddy(lstBorrower);

    auto* heading = new QHBoxLayout;
    heading->setSpacing(2);
    heading->addWidget(caption);
    heading->addStretch();
    const std::array<QString, 3> names{"Add", "Mod", "Del"};
    const std::array<QString, 3> icons{"add", "rename", "delete"};
    const std::array<QString, 3> tips{"Add a new borrower", "Change the name of the borrower",
                                      "Delete the borrower"};
    for (int action = 0; action < 3; ++action) {
        auto* picture = new QToolButton(this);
        picture->setObjectName("picBorrower" + names[action]);
        picture->setIcon(DatabaseButtonPicture(icons[action]));
        picture->setIconSize(QSize(16, 16));
        picture->setAutoRaise(true);
        picture->setFocusPolicy(Qt::NoFocus);
        picture->setToolTip(tips[action]);
        connect(picture, &QToolButton::clicked, this,
                [this, action] { Picture_Click(action + 1); });
        heading->addWidget(picture);
        pictures[action] = picture;
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(heading);
    layout->addWidget(lstBorrower, 1);
}

void BorrowersPanel::Fill(long selectId) {
    lstBorrower->clear();
    try {
        auto records = gDatabase->OpenRecordset(
            "select idborrower, nmborrower from borrower order by nmborrower", dbOpenSnapshot);
        for (; !records->IsEOF(); records->MoveNext()) {
            auto* item = new QListWidgetItem(NzText(records->Fields(1).Value()), lstBorrower);
            item->setData(Qt::UserRole, records->Fields(0).Value());
            if (records->Fields(0).Value().toLongLong() == selectId)
                lstBorrower->setCurrentItem(item);
        }
    } catch (const VbError&) {
        // A catalogue without the register has no borrowers to show.
    }
    const bool any = lstBorrower->count() > 0;
    pictures[1]->setEnabled(any);
    pictures[2]->setEnabled(any);
}

void BorrowersPanel::Picture_Click(int action) {
    QListWidgetItem* item = lstBorrower->currentItem();
    if (action != kLookupAdd && !item) return;
    const long id = item ? item->data(Qt::UserRole).toLongLong() : 0;
    const QString result = ModifyBorrower(action, id, item ? item->text() : QString());
    if (result.isEmpty()) return;
    changed_ = true;
    // The lent-out folder shows the names.
    gListDirty = true;
    Fill(LookupResultId(result));
}

bool BorrowersPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lstBorrower && event->type() == QEvent::KeyRelease) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool ctrl = key->modifiers() & Qt::ControlModifier;
        if (key->isAutoRepeat()) return false;
        if (ctrl && key->key() == Qt::Key_Insert)
            Picture_Click(kLookupAdd);
        else if (ctrl && key->key() == Qt::Key_Delete)
            Picture_Click(kLookupDelete);
        else if (key->modifiers() == Qt::NoModifier && key->key() == Qt::Key_F2)
            Picture_Click(kLookupRename);
    }
    return QWidget::eventFilter(watched, event);
}
