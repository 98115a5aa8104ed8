#include <functional>

#include "lookups/lookupoperations.h"
#include "shell/mGlobals.h"
#include "store/catalogue.h"
#include "store/fieldsizes.h"
#include "support/testsupport.h"

namespace {

const QString kCrLf = "\r\n";

long Scalar(const QString& sql) {
    auto recordset = gDatabase->OpenRecordset(sql, dbOpenSnapshot);
    return recordset->Fields(0).Value().toLongLong();
}

long CountRows(const QString& table, const QString& where) {
    return Scalar("select count(*) from " + table + " where " + where);
}

QString NameOf(const QString& table, const QString& idField, const QString& nameField, long id) {
    auto recordset = gDatabase->OpenRecordset("select " + nameField + " from " + table + " where " +
                                                  idField + " = " + QString::number(id),
                                              dbOpenSnapshot);
    return recordset->IsEOF() ? QString() : recordset->Fields(0).Value().toString();
}

// A title filed under the given lookups, written as plain SQL so that only the routines under
// test touch the lookup tables.
void AddTitle(const QString& name, long platform, long type, long specific, long vendor,
              long mediatype = 1) {
    gDatabase->Execute(
        QString("insert into title (nmcd, idplatform, idtype, idspecific, idvendor, idmediatype) "
                "values ('%1', %2, %3, %4, %5, %6)")
            .arg(name)
            .arg(platform)
            .arg(type)
            .arg(specific)
            .arg(vendor)
            .arg(mediatype));
}

using Routine = std::function<QString(int, long, QString&)>;

QString Call(const Routine& routine, int action, long id, QString name = QString()) {
    return routine(action, id, name);
}

}  // namespace

class LookupOperationsTest : public QObject {
    Q_OBJECT

  private:
    std::unique_ptr<TempProgramFolder> folder;

    // A user platform (id 6 or more) with one type, specific item and vendor of its own.
    struct UserPlatform {
        long platform, type, specific, vendor;
    };
    UserPlatform addUserPlatform(const QString& name) {
        QString wanted = name;
        UserPlatform made{};
        made.platform = LookupResultId(ModifyPlatform(kLookupAdd, 0, wanted));
        wanted = "Features";
        made.type = LookupResultId(ModifyType(kLookupAdd, made.platform, wanted));
        wanted = "Widescreen";
        made.specific = LookupResultId(ModifySpecific(kLookupAdd, made.type, wanted));
        wanted = "Pioneer";
        made.vendor = LookupResultId(ModifyVendor(kLookupAdd, made.platform, wanted));
        return made;
    }

  private slots:
    void init() {
        folder = std::make_unique<TempProgramFolder>();
        folder->openCatalogue();
        ReadFieldSizes();
        gTreeDirty = false;
        gListDirty = false;
    }
    void cleanup() { folder.reset(); }

    void addWithWantedNameSkipsTheDialogue() {
        ScriptedDialogs dialogs;
        QString name = "Acme Software";
        const QString result = ModifyVendor(kLookupAdd, 3, name);
        QVERIFY(dialogs.inputs.isEmpty());
        QVERIFY(dialogs.msgBoxes.isEmpty());
        QVERIFY2(name.isEmpty(), "the wanted name is used up");
        const long id = LookupResultId(result);
        QVERIFY(id > 0);
        QCOMPARE(result, QString::number(id) + "~Acme Software");
        QCOMPARE(CountRows("vendor", QString("idvendor = %1 and idplatform = 3").arg(id)), 1L);

        // The parent field differs per table; platform has none.
        name = "Blu-ray";
        const long media = LookupResultId(ModifyMediatype(kLookupAdd, 2, name));
        QCOMPARE(
            Scalar(QString("select iddevicetype from mediatype where idmediatype = %1").arg(media)),
            2L);
        name = "Puzzle";
        const long type = LookupResultId(ModifyType(kLookupAdd, 3, name));
        QCOMPARE(Scalar(QString("select idplatform from type where idtype = %1").arg(type)), 3L);
        name = "Word games";
        const long specific = LookupResultId(ModifySpecific(kLookupAdd, type, name));
        QCOMPARE(Scalar(QString("select idtype from specific where idspecific = %1").arg(specific)),
                 type);
        name = "Laserdisc";
        const long platform = LookupResultId(ModifyPlatform(kLookupAdd, 99, name));
        QVERIFY(platform >= 6);
        QCOMPARE(NameOf("platform", "idplatform", "nmplatform", platform), QString("Laserdisc"));
        QVERIFY(dialogs.inputs.isEmpty());
    }

    void addAndRenameThroughTheInputBox() {
        ScriptedDialogs dialogs;
        dialogs.answerInput("  Films  ");
        const QString added = Call(ModifyPlatform, kLookupAdd, 0);
        QCOMPARE(dialogs.inputs.size(), 1);
        QCOMPARE(dialogs.inputs[0].title, QString("Add platform"));
        QCOMPARE(dialogs.inputs[0].prompt,
                 "Please enter a name for this new platform:" + kCrLf + "(Max. length = 50)");
        QCOMPARE(dialogs.inputs[0].defaultText, QString("New platform"));
        const long id = LookupResultId(added);
        QCOMPARE(added, QString::number(id) + "~Films");
        QCOMPARE(NameOf("platform", "idplatform", "nmplatform", id), QString("Films"));

        dialogs.answerInput("Shareware");
        const QString specific = Call(ModifySpecific, kLookupAdd, 10);
        QCOMPARE(specific,
                 QString::number(Scalar("select max(idspecific) from specific")) + "~Shareware");
        QCOMPARE(Scalar(QString("select idtype from specific where idspecific = %1")
                            .arg(LookupResultId(specific))),
                 10L);
        QCOMPARE(dialogs.inputs[1].title, QString("Add specific item"));
        QCOMPARE(dialogs.inputs[1].defaultText, QString("New specific item"));
        QCOMPARE(dialogs.inputs[1].prompt,
                 "Please enter a name for this new specific item:" + kCrLf + "(Max. length = 50)");

        dialogs.answerInput("Arcade");
        QCOMPARE(Call(ModifyType, kLookupRename, 10, "Games"), QString("10~Arcade"));
        QCOMPARE(dialogs.inputs[2].title, QString("Rename type"));
        QCOMPARE(dialogs.inputs[2].prompt,
                 "Please enter a new name for this type:" + kCrLf + "(Max. length = 50)");
        QCOMPARE(dialogs.inputs[2].defaultText, QString("Games"));
        QCOMPARE(NameOf("type", "idtype", "nmtype", 10), QString("Arcade"));

        // The vendor column is wider, and the prompt says so.
        dialogs.answerInput("Own backups");
        QCOMPARE(Call(ModifyVendor, kLookupRename, 5, "Own backup"), QString("5~Own backups"));
        QCOMPARE(dialogs.inputs[3].prompt,
                 "Please enter a new name for this vendor:" + kCrLf + "(Max. length = 100)");

        // A change of case alone is a rename.
        dialogs.answerInput("ARCADE");
        QCOMPARE(Call(ModifyType, kLookupRename, 10, "Arcade"), QString("10~ARCADE"));
        QCOMPARE(NameOf("type", "idtype", "nmtype", 10), QString("ARCADE"));
        QVERIFY(dialogs.msgBoxes.isEmpty());
    }

    void tooLongNameIsRefusedWithTheLimit() {
        ScriptedDialogs dialogs;
        const long platforms = CountRows("platform", "1 = 1");
        dialogs.answerInput(QString(51, 'p'));
        QCOMPARE(Call(ModifyPlatform, kLookupAdd, 0), QString());
        QCOMPARE(dialogs.msgBoxes.size(), 1);
        QCOMPARE(dialogs.msgBoxes[0].prompt, QString("Name is too long! Maximum length is 50."));
        QCOMPARE(dialogs.msgBoxes[0].flags, int(vbCritical));
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Velmora"));
        QCOMPARE(CountRows("platform", "1 = 1"), platforms);
        QVERIFY(!gTreeDirty && !gListDirty);

        // A wanted name from an import meets the same limit and is used up all the same.
        QString wanted(101, 'v');
        QCOMPARE(ModifyVendor(kLookupAdd, 3, wanted), QString());
        QVERIFY(wanted.isEmpty());
        QCOMPARE(dialogs.prompts().last(), QString("Name is too long! Maximum length is 100."));
        QCOMPARE(CountRows("vendor", "length(nmvendor) > 100"), 0L);

        // A rename keeps the row as it was; blanks around the name do not count.
        dialogs.answerInput(QString(51, 't'));
        QCOMPARE(Call(ModifyType, kLookupRename, 10, "Games"), QString());
        QCOMPARE(NameOf("type", "idtype", "nmtype", 10), QString("Games"));
        dialogs.answerInput("  " + QString(50, 't') + "  ");
        QCOMPARE(Call(ModifyType, kLookupRename, 10, "Games"), "10~" + QString(50, 't'));
        QCOMPARE(dialogs.msgBoxes.size(), 3);
    }

    void storeRefusalAtUpdateEndsInTheTrap() {
        ScriptedDialogs dialogs;
        // A limit wider than the column lets the name through to the store, which refuses it.
        gLenType = 60;
        dialogs.answerInput(QString(55, 'x'));
        QCOMPARE(Call(ModifyType, kLookupRename, 10, "Games"), QString());
        QCOMPARE(dialogs.msgBoxes.size(), 1);
        QCOMPARE(dialogs.msgBoxes[0].flags, int(vbCritical));
        QVERIFY(!dialogs.msgBoxes[0].prompt.isEmpty());
        QCOMPARE(NameOf("type", "idtype", "nmtype", 10), QString("Games"));
        QVERIFY(!gTreeDirty && !gListDirty);
    }

    void nothingChangedEndsInSilence() {
        ScriptedDialogs dialogs;
        const long vendors = CountRows("vendor", "1 = 1");
        dialogs.answerInput(QString());  // cancelled
        QCOMPARE(Call(ModifyVendor, kLookupAdd, 3), QString());
        dialogs.answerInput("    ");
        QCOMPARE(Call(ModifyVendor, kLookupAdd, 3), QString());
        dialogs.answerInput("Own backup ");
        QCOMPARE(Call(ModifyVendor, kLookupRename, 5, "Own backup"), QString());
        dialogs.answerInput(QString());
        QCOMPARE(Call(ModifyPlatform, kLookupRename, 3, "PC"), QString());
        QCOMPARE(dialogs.inputs.size(), 4);

        // Unknown actions change nothing and ask nothing.
        QCOMPARE(Call(ModifyVendor, 0, 5, "Own backup"), QString());
        QCOMPARE(Call(ModifyPlatform, 4, 6, "PC"), QString());

        QVERIFY(dialogs.msgBoxes.isEmpty());
        QCOMPARE(dialogs.inputs.size(), 4);
        QCOMPARE(CountRows("vendor", "1 = 1"), vendors);
        QCOMPARE(NameOf("vendor", "idvendor", "nmvendor", 5), QString("Own backup"));
        QVERIFY(!gTreeDirty && !gListDirty);
    }

    void reservedPlatformsAreRefused() {
        ScriptedDialogs dialogs;
        AddTitle("Abbey Road", 1, 2, 4, 1);
        for (long id = 1; id <= 5; ++id) {
            QCOMPARE(Call(ModifyPlatform, kLookupDelete, id, "Audio"), QString());
            const MsgBoxCall& box = dialogs.msgBoxes.last();
            QCOMPARE(box.prompt,
                     "These folders cannot be deleted since they are a part of the program." +
                         kCrLf + kCrLf + "You can however 'hide' this platform.");
            QCOMPARE(box.flags, int(vbInformation));
            QCOMPARE(box.title, QString("Unable to delete platform"));
        }
        QCOMPARE(dialogs.msgBoxes.size(), 5);
        QCOMPARE(CountRows("platform", "idplatform <= 5"), 5L);
        QCOMPARE(CountRows("title", "1 = 1"), 1L);

        // The first user platform goes through the confirmation.
        QString name = "Laserdisc";
        QCOMPARE(LookupResultId(ModifyPlatform(kLookupAdd, 0, name)), 6L);
        dialogs.answerMsgBox(vbNo);
        QCOMPARE(Call(ModifyPlatform, kLookupDelete, 6, "Laserdisc"), QString());
        QCOMPARE(dialogs.msgBoxes.last().title, QString("Confirm Delete"));
        QCOMPARE(CountRows("platform", "idplatform = 6"), 1L);
        QVERIFY(!gListDirty);
    }

    void deleteWithRelatedTitlesAsksTwiceAndCascades() {
        ScriptedDialogs dialogs;
        const UserPlatform made = addUserPlatform("Laserdisc");
        AddTitle("Blade Runner", made.platform, made.type, made.specific, made.vendor);
        AddTitle("Alien", made.platform, made.type, made.specific, made.vendor);
        AddTitle("Abbey Road", 1, 2, 4, 1);
        gTreeDirty = gListDirty = false;

        dialogs.answerMsgBox(vbYes);
        dialogs.answerMsgBox(vbYes);
        QCOMPARE(Call(ModifyPlatform, kLookupDelete, made.platform, "Laserdisc"), QString("0~"));
        QCOMPARE(dialogs.msgBoxes.size(), 2);
        QCOMPARE(dialogs.msgBoxes[0].prompt,
                 QString("Are you sure you want to delete the platform \"Laserdisc\"?"));
        QCOMPARE(dialogs.msgBoxes[0].flags, int(vbYesNoCancel + vbQuestion));
        QCOMPARE(dialogs.msgBoxes[0].title, QString("Confirm Delete"));
        QCOMPARE(dialogs.msgBoxes[1].prompt,
                 "Found 2 CD-title(s) with platform \"Laserdisc\"." + kCrLf +
                     "Deleting this platform means that 2 CD-title(s) will be deleted too!" +
                     kCrLf + "Do you want to delete the 2 CD-title(s) as well?");
        QCOMPARE(dialogs.msgBoxes[1].flags, 51);
        QCOMPARE(dialogs.msgBoxes[1].title,
                 QString("Found related CD-tile(s) in Velmora's Database!"));

        const QString own = QString("idplatform = %1").arg(made.platform);
        QCOMPARE(CountRows("platform", own), 0L);
        QCOMPARE(CountRows("title", own), 0L);
        QCOMPARE(CountRows("type", own), 0L);
        QCOMPARE(CountRows("vendor", own), 0L);
        QCOMPARE(CountRows("specific", QString("idtype = %1").arg(made.type)), 0L);
        QCOMPARE(CountRows("title", "1 = 1"), 1L);
        QVERIFY(gTreeDirty && gListDirty);

        // Without related titles one question is enough.
        dialogs.answerMsgBox(vbYes);
        QCOMPARE(Call(ModifyVendor, kLookupDelete, 6, "Unknown vendor"), QString("0~"));
        QCOMPARE(dialogs.msgBoxes.size(), 3);
        QCOMPARE(dialogs.msgBoxes[2].prompt,
                 QString("Are you sure you want to delete the vendor \"Unknown vendor\"?"));
        QCOMPARE(CountRows("vendor", "idvendor = 6"), 0L);
    }

    void refusedConfirmationsKeepEverything() {
        ScriptedDialogs dialogs;
        AddTitle("Abbey Road", 1, 2, 4, 1);
        AddTitle("Let It Be", 1, 2, 4, 1);

        for (int answer : {int(vbCancel), int(vbNo)}) {
            dialogs.msgBoxes.clear();
            dialogs.answerMsgBox(vbYes);
            dialogs.answerMsgBox(answer);
            QCOMPARE(Call(ModifyVendor, kLookupDelete, 1, "Various artists"), QString());
            QCOMPARE(dialogs.msgBoxes.size(), 3);
            QVERIFY(dialogs.msgBoxes[1].prompt.startsWith(
                "Found 2 CD-title(s) with vendor \"Various artists\"." + kCrLf));
            QCOMPARE(dialogs.msgBoxes[2].prompt,
                     QString("You didn't want the cd-title(s) deleted. As a consequence the "
                             "vendor will not be deleted."));
            QCOMPARE(dialogs.msgBoxes[2].flags, int(vbInformation));
            QCOMPARE(dialogs.msgBoxes[2].title, QString("Unable to delete vendor"));
        }

        // Anything but Yes in the first box ends at once.
        for (int answer : {int(vbCancel), int(vbNo)}) {
            dialogs.msgBoxes.clear();
            dialogs.answerMsgBox(answer);
            QCOMPARE(Call(ModifyType, kLookupDelete, 2, "Rock"), QString());
            QCOMPARE(dialogs.msgBoxes.size(), 1);
        }

        QCOMPARE(CountRows("vendor", "idvendor = 1"), 1L);
        QCOMPARE(CountRows("type", "idtype = 2"), 1L);
        QCOMPARE(CountRows("title", "1 = 1"), 2L);
        QVERIFY(!gTreeDirty && !gListDirty);
    }

    void specificDeleteEndsInTheStoresMessage() {
        ScriptedDialogs dialogs;
        dialogs.answerMsgBox(vbYes);
        QCOMPARE(Call(ModifySpecific, kLookupDelete, 1, "Album"), QString());
        QCOMPARE(dialogs.msgBoxes.size(), 2);
        QCOMPARE(dialogs.msgBoxes[0].prompt,
                 QString("Are you sure you want to delete the specific item \"Album\"?"));
        QCOMPARE(dialogs.msgBoxes[1].flags, int(vbCritical));
        QCOMPARE(dialogs.msgBoxes[1].title, QString("Velmora"));
        // The store's refusal of the unknown column "idspecifc", alone in the box.
        QCOMPARE(dialogs.msgBoxes[1].prompt, QString("Too few parameters. Expected 1."));
        QCOMPARE(NameOf("specific", "idspecific", "nmspecific", 1), QString("Album"));
        QVERIFY(!gListDirty);
    }

    void deleteOfIdZeroOrBelowRaises1501() {
        ScriptedDialogs dialogs;
        QCOMPARE(Call(ModifyVendor, kLookupDelete, 0, "Nobody"), QString());
        QCOMPARE(Call(ModifySpecific, kLookupDelete, -3, "Nothing"), QString());
        QCOMPARE(Call(ModifyMediatype, kLookupDelete, 0, "None"), QString());
        QCOMPARE(Call(ModifyType, kLookupDelete, 0, "None"), QString());
        QCOMPARE(dialogs.prompts(),
                 QStringList({"An error occured when trying to delete vendor 0.",
                              "An error occured when trying to delete specific item -3.",
                              "An error occured when trying to delete mediatype 0.",
                              "An error occured when trying to delete type 0."}));
        for (const auto& box : dialogs.msgBoxes) QCOMPARE(box.flags, int(vbCritical));
    }

    void dirtyFlagsFollowTheTable() {
        struct Case {
            const char* name;
            Routine routine;
            long parent;
            bool treeAfterChange, listAfterChange, treeAfterDelete, listAfterDelete;
        };
        const QList<Case> cases = {
            {"platform", ModifyPlatform, 0, true, false, true, true},
            {"mediatype", ModifyMediatype, 1, false, false, false, false},
            {"type", ModifyType, 3, true, true, true, true},
            {"vendor", ModifyVendor, 3, false, true, false, true},
        };
        ScriptedDialogs dialogs;
        for (const Case& c : cases) {
            gTreeDirty = gListDirty = false;
            const long id = LookupResultId(Call(c.routine, kLookupAdd, c.parent, "Fresh"));
            QVERIFY2(id > 0, c.name);
            QCOMPARE(gTreeDirty, c.treeAfterChange);
            QCOMPARE(gListDirty, c.listAfterChange);

            gTreeDirty = gListDirty = false;
            dialogs.answerInput("Renamed");
            QCOMPARE(Call(c.routine, kLookupRename, id, "Fresh"), QString::number(id) + "~Renamed");
            QCOMPARE(gTreeDirty, c.treeAfterChange);
            QCOMPARE(gListDirty, c.listAfterChange);

            gTreeDirty = gListDirty = false;
            dialogs.answerMsgBox(vbYes);
            QCOMPARE(Call(c.routine, kLookupDelete, id, "Renamed"), QString("0~"));
            QCOMPARE(gTreeDirty, c.treeAfterDelete);
            QCOMPARE(gListDirty, c.listAfterDelete);
        }

        gTreeDirty = gListDirty = false;
        const long specific = LookupResultId(Call(ModifySpecific, kLookupAdd, 1, "Fresh"));
        QVERIFY(!gTreeDirty && gListDirty);
        gListDirty = false;
        dialogs.answerInput("Renamed");
        QCOMPARE(Call(ModifySpecific, kLookupRename, specific, "Fresh"),
                 QString::number(specific) + "~Renamed");
        QVERIFY(!gTreeDirty && gListDirty);
    }

    void resultStringsAreRead() {
        QCOMPARE(LookupResultId("12~Pop"), 12L);
        QCOMPARE(LookupResultName("12~Pop"), QString("Pop"));
        QCOMPARE(LookupResultId("0~"), 0L);
        QCOMPARE(LookupResultName("0~"), QString());
        QCOMPARE(LookupResultName(QString()), QString());
        QCOMPARE(LookupResultName("12"), QString());

        // A name may hold "~" itself; only the first one separates.
        ScriptedDialogs dialogs;
        const QString result = Call(ModifyVendor, kLookupAdd, 1, "Tilde~Records~");
        const long id = LookupResultId(result);
        QVERIFY(id > 0);
        QCOMPARE(LookupResultName(result), QString("Tilde~Records~"));
        QCOMPARE(NameOf("vendor", "idvendor", "nmvendor", id), QString("Tilde~Records~"));
    }
};

VELMORA_TEST_MAIN(LookupOperationsTest)
#include "lookupoperations_test.moc"
