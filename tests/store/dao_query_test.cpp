// Reading the catalogue: fields over joins, counts, moves, filters and sorts, and the statements
// the store rewrites.

#include <malloc.h>

#include "store/catalogue.h"
#include "store/sqltext.h"
#include "store/storetest.h"
#include "support/testsupport.h"

class DaoQueryTest : public QObject {
    Q_OBJECT

  private slots:
    void init() {
        folder_ = std::make_unique<TempProgramFolder>();
        folder_->openCatalogue();
    }
    void cleanup() { folder_.reset(); }

    void countsAndMoves() {
        auto empty = gDatabase->OpenRecordset("select * from title where idcd = 0");
        QVERIFY(empty->IsBOF() && empty->IsEOF());
        QCOMPARE(empty->RecordCount(), 0L);
        QCOMPARE(empty->AbsolutePosition(), -1L);
        QCOMPARE(ErrorNumber([&] { empty->MoveNext(); }), int(jetNoCurrentRecord));
        QCOMPARE(ErrorNumber([&] { empty->Fields("nmcd").Value(); }), int(jetNoCurrentRecord));

        auto rs = gDatabase->OpenRecordset("select * from type order by idtype");
        QCOMPARE(rs->RecordCount(), 1L);
        QVERIFY(!rs->IsBOF() && !rs->IsEOF());
        QCOMPARE(rs->AbsolutePosition(), 0L);
        rs->SetAbsolutePosition(4);
        QCOMPARE(rs->RecordCount(), 5L);
        QCOMPARE(rs->Fields("idtype").Value(), QVariant(qint64(5)));
        rs->MovePrevious();
        QCOMPARE(rs->AbsolutePosition(), 3L);
        rs->MoveLast();
        QCOMPARE(rs->RecordCount(), 17L);
        QCOMPARE(rs->AbsolutePosition(), 16L);
        rs->MoveNext();
        QVERIFY(rs->IsEOF() && !rs->IsBOF());
        QCOMPARE(rs->AbsolutePosition(), -1L);
        QCOMPARE(ErrorNumber([&] { rs->MoveNext(); }), int(jetNoCurrentRecord));
        QCOMPARE(ErrorNumber([&] { rs->Fields("nmtype").Value(); }), int(jetNoCurrentRecord));
        rs->MoveFirst();
        rs->MovePrevious();
        QVERIFY(rs->IsBOF() && !rs->IsEOF());
        QCOMPARE(ErrorNumber([&] { rs->MovePrevious(); }), int(jetNoCurrentRecord));
        rs->MoveNext();
        QCOMPARE(rs->Fields("idtype").Value(), QVariant(qint64(1)));
        QCOMPARE(ErrorNumber([&] { rs->SetAbsolutePosition(17); }), 3001);
    }

    void filterAndSortApplyToNewRecordsets() {
        auto rs =
            gDatabase->OpenRecordset("select * from type where idplatform < 4 order by idtype");
        rs->SetFilter("nmtype like 'C*'");
        rs->SetSort("nmtype desc");
        QCOMPARE(rs->Filter(), QString("nmtype like 'C*'"));
        QCOMPARE(rs->Sort(), QString("nmtype desc"));
        rs->Requery();
        QCOMPARE(rs->Fields("idtype").Value(), QVariant(qint64(1)));
        auto filtered = rs->OpenRecordset();
        QStringList names;
        for (; !filtered->IsEOF(); filtered->MoveNext())
            names << filtered->Fields("nmtype").Value().toString();
        QCOMPARE(names, QStringList({"Concert", "Compilation", "Classical"}));

        auto plain = gDatabase->OpenRecordset("select * from type");
        plain->SetFilter("idplatform = 4");
        auto onlyMac = plain->OpenRecordset();
        onlyMac->MoveLast();
        QCOMPARE(onlyMac->RecordCount(), 2L);
    }

    void forwardOnlyWalkHoldsOnlyTheCurrentRow() {
        const QString listing(100 * 1024, QChar('l'));
        for (int title = 1; title <= 200; ++title) AddTitle(*gDatabase, QString::number(title));
        gDatabase->Execute("update title set listing = '" + listing + "'");

        const size_t before = mallinfo2().uordblks;
        size_t highest = before;
        auto rs = gDatabase->OpenRecordset("select * from title order by idcd", dbOpenForwardOnly);
        long walked = 0;
        while (!rs->IsEOF()) {
            ++walked;
            QCOMPARE(rs->Fields("nmcd").Value().toString(), QString::number(walked));
            QCOMPARE(rs->Fields("listing").Value().toString().size(), listing.size());
            QCOMPARE(rs->RecordCount(), walked);
            highest = std::max(highest, mallinfo2().uordblks);
            rs->MoveNext();
        }
        QCOMPARE(walked, 200L);
        // 200 listings of 200 KB each would be 40 MB; one at a time stays far below.
        QVERIFY2(highest - before < 8 * 1024 * 1024, qPrintable(QString::number(highest - before)));
        QCOMPARE(ErrorNumber([&] { rs->MoveFirst(); }), 3219);
        QCOMPARE(ErrorNumber([&] { rs->MovePrevious(); }), 3219);
        QCOMPARE(ErrorNumber([&] { rs->Edit(); }), 3027);
        rs->Requery();
        QCOMPARE(rs->Fields("nmcd").Value().toString(), QString("1"));
    }

    void keptRowsAreSortedAsSqliteSortsThem() {
        // Every kind of value under each collation; a dynaset sorts what it keeps itself, a
        // forward-only recordset leaves the sorting to SQLite, and both must agree.
        gDatabase->Execute(
            "CREATE TABLE sorts (id INTEGER PRIMARY KEY, jet TEXT COLLATE JETTEXT, plain TEXT, "
            "nocase TEXT COLLATE NOCASE, anything)");
        const QStringList texts = {"été", "ete", "Ete", "etf",   "Zebra", "apple", "ÄPFEL",
                                   "b",   "",    "B",   "zebra", "Ärger", "a"};
        const QStringList others = {"NULL",  "3",     "3.0", "-0.5", "1e300",   "-9007199254740993",
                                    "x'00'", "x'ff'", "'3'", "'a'",  "x'0001'", "2.5",
                                    "NULL"};
        for (int i = 0; i < texts.size(); ++i)
            gDatabase->Execute(QString("INSERT INTO sorts (jet, plain, nocase, anything) VALUES "
                                       "('%1', '%1', '%1', %2)")
                                   .arg(texts[i], others[i]));
        gDatabase->Execute(
            "INSERT INTO sorts (jet, plain, nocase, anything) VALUES (NULL, NULL, "
            "NULL, 3)");
        const QStringList orders = {"anything, id",
                                    "anything desc, id",
                                    "jet, id",
                                    "jet desc, id desc",
                                    "plain, id",
                                    "[sorts].[nocase] DESC, id",
                                    "sorts.anything, jet desc, id",
                                    "1, id",
                                    "lower(jet), id",
                                    "jet collate binary, id",
                                    "nocase, id limit 20"};
        const auto ids = [](Recordset& rs) {
            QStringList walked;
            for (; !rs.IsEOF(); rs.MoveNext()) walked << rs.Fields("id").Value().toString();
            return walked;
        };
        for (const QString& order : orders) {
            const QString sql = "select * from sorts order by " + order;
            auto bySqlite = gDatabase->OpenRecordset(sql, dbOpenForwardOnly);
            auto kept = gDatabase->OpenRecordset(sql, dbOpenDynaset);
            QCOMPARE(kept->RecordCount(), 1L);
            QCOMPARE(ids(*kept), ids(*bySqlite));
        }
    }

    void comparedValuesBecomeParametersOnlyInTheWhereClause() {
        using sqltext::WithComparedValuesAsParameters;
        const auto lookup = WithComparedValuesAsParameters(
            "select * from vendor where idplatform = 12 and nmvendor='Rock ''n'' roll' order by 1");
        QCOMPARE(lookup.text, QString("select * from vendor where idplatform = ? and nmvendor=? "
                                      "order by 1"));
        QCOMPARE(lookup.values, (std::vector<QVariant>{qint64(12), QString("Rock 'n' roll")}));
        // Values that name columns, shape the result or are not plain whole numbers stay.
        for (const QString& kept : QStringList{
                 "select a = 1 from t where b > -2 and c in (3, 4) and d like 'x*'",
                 "select * from t join u on t.i = 5 where [x = 1] = \"y\" limit 3",
                 "select * from t where a = 1.5 or b = 0x1F or c = 7e2",
                 "select * from t where a = ? and b = 2", "select * from t where a = 2 -- note",
                 "select * from t where a = 'unterminated"})
            QCOMPARE(WithComparedValuesAsParameters(kept).text, kept);
        const auto nested = WithComparedValuesAsParameters(
            "select * from t where a in (select b from u where c<>'z' group by b) and d >= 4 "
            "group by e having count(*) = 2");
        QCOMPARE(nested.text, QString("select * from t where a in (select b from u where c<>? "
                                      "group by b) and d >= ? group by e having count(*) = 2"));
        QCOMPARE(nested.values.size(), size_t(2));
    }

    void recordsetsOfOneShapeReadTheirOwnRows() {
        gDatabase->Execute(
            "INSERT INTO vendor (idplatform, nmvendor) VALUES (1, 'Rock ''n'' roll')");
        auto audio = gDatabase->OpenRecordset("select * from type where idplatform = 1");
        auto mac = gDatabase->OpenRecordset("select * from type where idplatform = 4");
        audio->MoveLast();
        mac->MoveLast();
        QCOMPARE(audio->RecordCount(), 6L);
        QCOMPARE(mac->RecordCount(), 2L);
        for (int round = 0; round < 3; ++round) {
            auto quoted = gDatabase->OpenRecordset(
                "select * from vendor where idplatform = 1 and nmvendor = 'Rock ''n'' roll'");
            QVERIFY(!quoted->IsEOF());
            QCOMPARE(quoted->Fields("nmvendor").Value().toString(), QString("Rock 'n' roll"));
            auto none = gDatabase->OpenRecordset(
                "select * from vendor where idplatform = 2 and nmvendor = 'Rock ''n'' roll'");
            QVERIFY(none->IsEOF());
        }
        audio->Requery();
        audio->MoveLast();
        QCOMPARE(audio->RecordCount(), 6L);
    }

  private:
    std::unique_ptr<TempProgramFolder> folder_;
};

VELMORA_TEST_MAIN(DaoQueryTest)
#include "dao_query_test.moc"
