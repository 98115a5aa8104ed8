#include <functional>

#include "lookups/lookupoperations.h"
#include "shell/mGlobals.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "support/testsupport.h"

namespace {

const QString kCrLf = "\r\n";

QVariant Value(const QString& sql) {
    return gDatabase->OpenRecordset(sql, dbOpenSnapshot)->Fields(0).Value();
}

long Rows(const QString& table, const QString& where = "1 = 1") {
    return Value("select count(*) from " + table + " where " + where).toLongLong();
}

// Every lookup table names its columns id<table> and nm<table>.
QString NameOf(const QString& table, long id) {
    return Value(QString("select nm%1 from %1 where id%1 = %2").arg(table).arg(id)).toString();
}

// Titles are written as plain SQL so that only the routines under test touch the lookups.
void AddTitle(long platform, long type, long specific, long vendor) {
    gDatabase->Execute(
        QString::asprintf("insert into title (nmcd, idplatform, idtype, idspecific, "
                          "idvendor, idmediatype) values ('t', %ld, %ld, %ld, %ld, 1)",
                          platform, type, specific, vendor));
}

// Boxes as one comparable line each.
QString Box(const MsgBoxCall& box) {
    return box.prompt + " | " + QString::number(box.flags) + " | " + box.title;
}
QString Asked(const InputBoxCall& box) {
    return box.prompt + " | " + box.title + " | " + box.defaultText;
}

using Routine = std::function<QString(int, long, QString&)>;

QString Call(const Routine& routine, int action, long id, QString name = QString()) {
    return routine(action, id, name);
}

// The platform has no parent: its parent column "0" holds the parent 0 on every row.
struct Table {
    QString name, noun, parentField;
    Routine routine;
    long parent;
    int limit;
    bool treeAfterChange, listAfterChange, treeAfterDelete, listAfterDelete;
};

const QList<Table> kTables = {
    {"platform", "platform", "0", ModifyPlatform, 0, 50, true, false, true, true},
    {"mediatype", "mediatype", "iddevicetype", ModifyMediatype, 2, 50, false, false, false, false},
    {"type", "type", "idplatform", ModifyType, 3, 50, true, true, true, true},
    {"specific", "specific item", "idtype", ModifySpecific, 10, 50, false, true, false, true},
    {"vendor", "vendor", "idplatform", ModifyVendor, 3, 100, false, true, false, true},
};

}  // namespace

class LookupOperationsTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<TempProgramFolder> folder;

    void checkDirty(bool tree, bool list) {
        QCOMPARE(gTreeDirty, tree);
        QCOMPARE(gListDirty, list);
        gTreeDirty = gListDirty = false;
    }

  private slots:
    void init() {
        folder = std::make_unique<TempProgramFolder>();
        folder->openCatalogue();
        ReadFieldSizes();
        gTreeDirty = gListDirty = false;
    }
    void cleanup() { folder.reset(); }

    void everyTableAddsRenamesAndDeletes() {
        for (const Table& t : kTables) {
            ScriptedDialogs dialogs;
            // A wanted name skips the dialogue and is used up; a name may hold the separator.
            QString wanted = "Acme~Records";
            const QString added = t.routine(kLookupAdd, t.parent, wanted);
            const long id = LookupResultId(added);
            QVERIFY2(wanted.isEmpty() && dialogs.inputs.isEmpty(), qPrintable(t.name));
            QCOMPARE(LookupResultName(added), QString("Acme~Records"));
            QCOMPARE(Rows(t.name, QString("id%1 = %2 and nm%1 = 'Acme~Records' and %3 = %4")
                                      .arg(t.name, QString::number(id), t.parentField,
                                           QString::number(t.parent))),
                     1L);
            checkDirty(t.treeAfterChange, t.listAfterChange);

            // Names of exactly the limit pass, blanks around them do not count, case does.
            const QString full(t.limit, 'b'), limit = QString("(Max. length = %1)").arg(t.limit);
            dialogs.answerInput("  " + full + "  ");
            dialogs.answerInput(full.toUpper());
            const long boxed = LookupResultId(Call(t.routine, kLookupAdd, t.parent));
            QCOMPARE(Call(t.routine, kLookupRename, boxed, full),
                     QString::number(boxed) + "~" + full.toUpper());
            QCOMPARE(NameOf(t.name, boxed), full.toUpper());
            QCOMPARE(Asked(dialogs.inputs[0]),
                     Asked({"Please enter a name for this new " + t.noun + ":" + kCrLf + limit,
                            "Add " + t.noun, "New " + t.noun}));
            QCOMPARE(Asked(dialogs.inputs[1]),
                     Asked({"Please enter a new name for this " + t.noun + ":" + kCrLf + limit,
                            "Rename " + t.noun, full}));
            checkDirty(t.treeAfterChange, t.listAfterChange);

            // Cancelled, blank, unchanged and unknown end in silence; one more than the limit
            // is refused, typed or wanted. Nothing is written either way.
            const long rows = Rows(t.name);
            dialogs.answerInput(QString());
            dialogs.answerInput("   ");
            dialogs.answerInput(full.toUpper() + " ");
            const QStringList silent = {Call(t.routine, kLookupAdd, t.parent),
                                        Call(t.routine, kLookupAdd, t.parent),
                                        Call(t.routine, kLookupRename, boxed, full.toUpper()),
                                        Call(t.routine, 0, boxed, full.toUpper())};
            QCOMPARE(silent.join(""), QString());
            dialogs.answerInput(full + "b");
            dialogs.answerInput(full + "b");
            wanted = full + "b";
            QCOMPARE(Call(t.routine, kLookupAdd, t.parent), QString());
            QCOMPARE(Call(t.routine, kLookupRename, boxed, full.toUpper()), QString());
            QCOMPARE(t.routine(kLookupAdd, t.parent, wanted), QString());
            QVERIFY(wanted.isEmpty());
            const QString tooLong = QString("Name is too long! Maximum length is %1.").arg(t.limit);
            QCOMPARE(dialogs.msgBoxes.size(), 3);
            for (const auto& box : dialogs.msgBoxes)
                QCOMPARE(Box(box), Box({tooLong, vbCritical, "Velmora"}));
            QCOMPARE(Rows(t.name), rows);
            QCOMPARE(NameOf(t.name, boxed), full.toUpper());
            checkDirty(false, false);

            if (t.name == "specific") continue;  // never deleted; see errorsEndInACriticalBox
            dialogs.answerMsgBox(vbYes);
            QCOMPARE(Call(t.routine, kLookupDelete, boxed, full), QString("0~"));
            QCOMPARE(Rows(t.name), rows - 1);
            checkDirty(t.treeAfterDelete, t.listAfterDelete);
        }
    }

    void errorsEndInACriticalBox() {
        ScriptedDialogs dialogs;
        QCOMPARE(Call(ModifyVendor, kLookupDelete, 0, "Nobody"), QString());
        // The specific item's count names a column title lacks: the store's message, alone.
        dialogs.answerMsgBox(vbYes);
        QCOMPARE(Call(ModifySpecific, kLookupDelete, 1, "Album"), QString());
        QCOMPARE(dialogs.msgBoxes.size(), 3);
        QCOMPARE(Box(dialogs.msgBoxes[0]),
                 Box({"An error occured when trying to delete vendor 0.", vbCritical, "Velmora"}));
        QCOMPARE(Box(dialogs.msgBoxes[2]),
                 Box({"Too few parameters. Expected 1.", vbCritical, "Velmora"}));
        QCOMPARE(NameOf("specific", 1), QString("Album"));
        checkDirty(false, false);
    }

    void deletingPlatforms() {
        ScriptedDialogs dialogs;
        for (long id = 1; id <= 5; ++id) {
            QCOMPARE(Call(ModifyPlatform, kLookupDelete, id, "Audio"), QString());
            QCOMPARE(Box(dialogs.msgBoxes.takeLast()),
                     Box({"These folders cannot be deleted since they are a part of the program." +
                              kCrLf + "You can however 'hide' this platform.",
                          vbInformation, "Unable to delete platform"}));
        }
        QCOMPARE(Rows("platform", "idplatform <= 5"), 5L);

        const long platform = LookupResultId(Call(ModifyPlatform, kLookupAdd, 0, "Laserdisc"));
        QCOMPARE(platform, 6L);  // the first user platform, just past the reserved ones
        const long type = LookupResultId(Call(ModifyType, kLookupAdd, platform, "Features"));
        const long specific = LookupResultId(Call(ModifySpecific, kLookupAdd, type, "Wide"));
        const long vendor = LookupResultId(Call(ModifyVendor, kLookupAdd, platform, "Pioneer"));
        AddTitle(platform, type, specific, vendor);
        AddTitle(platform, type, specific, vendor);
        AddTitle(1, 2, 4, 1);
        const QString own = QString("idplatform = %1").arg(platform);
        gTreeDirty = gListDirty = false;

        // Cancel at the second question keeps everything.
        dialogs.answerMsgBox(vbYes);
        dialogs.answerMsgBox(vbCancel);
        QCOMPARE(Call(ModifyPlatform, kLookupDelete, platform, "Laserdisc"), QString());
        QCOMPARE(dialogs.msgBoxes.size(), 3);
        QCOMPARE(Box(dialogs.msgBoxes[2]),
                 Box({"You didn't want the cd-title(s) deleted. As a consequence the platform "
                      "will not be deleted.",
                      vbInformation, "Unable to delete platform"}));
        QCOMPARE(Rows("platform", own) + Rows("title", own), 3L);
        checkDirty(false, false);

        dialogs.msgBoxes.clear();
        dialogs.answerMsgBox(vbYes);
        dialogs.answerMsgBox(vbYes);
        QCOMPARE(Call(ModifyPlatform, kLookupDelete, platform, "Laserdisc"), QString("0~"));
        QCOMPARE(dialogs.msgBoxes.size(), 2);
        QCOMPARE(Box(dialogs.msgBoxes[0]),
                 Box({"Are you sure you want to delete the platform \"Laserdisc\"?",
                      vbYesNoCancel + vbQuestion, "Confirm Delete"}));
        QCOMPARE(Box(dialogs.msgBoxes[1]),
                 Box({"Found 2 CD-title(s) with platform \"Laserdisc\"." + kCrLf +
                          "Deleting this platform means that 2 CD-title(s) will be deleted too!" +
                          kCrLf + "Do you want to delete the 2 CD-title(s) as well?",
                      vbYesNoCancel + vbExclamation,
                      "Found related CD-tile(s) in Velmora's Database!"}));
        QCOMPARE(Rows("platform", own) + Rows("title", own) + Rows("type", own) +
                     Rows("vendor", own) + Rows("specific", QString("idtype = %1").arg(type)),
                 0L);
        QCOMPARE(Rows("title"), 1L);
        checkDirty(true, true);
    }
};

VELMORA_TEST_MAIN(LookupOperationsTest)
#include "lookupoperations_test.moc"
