#include <cmath>
#include <limits>

#include "support/testsupport.h"
#include "toolkit/vberror.h"
#include "toolkit/vbruntime.h"

class VbRuntimeTest : public QObject {
    Q_OBJECT

  private slots:
    void formatPatterns_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("expected");
        const struct {
            const char* name;
            double value;
            const char *pattern, *expected;
        } rows[] = {
            {"count padded", 5.0, "00000", "00005"},
            {"count wider than pattern", 123456.0, "00000", "123456"},
            {"negative count", -42.0, "00000", "-00042"},
            {"count rounds half away", 12.5, "00000", "00013"},
            {"size zero", 0.0, "###0", "0"},
            {"size rounds up", 1234.5, "###0", "1235"},
            {"negative size rounds away", -1234.5, "###0", "-1235"},
            {"size below one", 0.4, "###0", "0"},
            {"one decimal", 3.25, "###0.0", "3.3"},
            {"one decimal zero", 0.0, "###0.0", "0.0"},
            {"one decimal keeps zero", 1024.04, "###0.0", "1024.0"},
            {"one decimal negative", -7.25, "###0.0", "-7.3"},
            {"one decimal small", 0.05, "###0.0", "0.1"},
            {"percent half", 0.5, "##0%", "50%"},
            {"percent rounds", 0.125, "##0%", "13%"},
            {"percent whole", 1.0, "##0%", "100%"},
            {"percent zero", 0.0, "##0%", "0%"},
            {"percent negative", -0.25, "##0%", "-25%"},
            {"digit half up", 2.5, "0", "3"},
            {"digit half away negative", -2.5, "0", "-3"},
            {"digit zero", 0.0, "0", "0"},
            {"two places", 7.0, "#0", "7"},
            {"two places zero", 0.0, "#0", "0"},
            {"two places rounds", 10.5, "#0", "11"},
            {"two places negative", -0.6, "#0", "-1"},
        };
        for (const auto& row : rows)
            QTest::newRow(row.name) << row.value << QString(row.pattern) << QString(row.expected);
    }

    void formatPatterns() {
        QFETCH(double, value);
        QFETCH(QString, pattern);
        QFETCH(QString, expected);
        QCOMPARE(Format(value, pattern), expected);
    }

    void conversionsRoundToEven() {
        QCOMPARE(RoundToEven(2.5), 2);
        QCOMPARE(RoundToEven(3.5), 4);
        QCOMPARE(RoundToEven(-2.5), -2);
        QCOMPARE(RoundToEven(0.5), 0);
        QCOMPARE(RoundToEven(-1.5), -2);
        QCOMPARE(RoundToEven(2.6), 3);
        QCOMPARE(CInt(32767.4), 32767);
        QCOMPARE(CInt(-32768.5), -32768);
        QCOMPARE(CByte(254.5), 254);
        QCOMPARE(CByte(-0.5), 0);
    }

    void conversionsOverflowWithError6() {
        QCOMPARE(ErrorNumber([] { CInt(32767.5); }), 6);
        QCOMPARE(ErrorNumber([] { CInt(-32769); }), 6);
        QCOMPARE(ErrorNumber([] { CInt(1e30); }), 6);
        QCOMPARE(ErrorNumber([] { CInt(std::numeric_limits<double>::quiet_NaN()); }), 6);
        QCOMPARE(ErrorNumber([] { CByte(255.5); }), 6);
        QCOMPARE(ErrorNumber([] { CByte(-0.6); }), 6);
        QCOMPARE(ErrorNumber([] { CByte(-1e30); }), 6);
        QCOMPARE(ErrorNumber([] { RoundToEven(1e19); }), 6);
        QCOMPARE(Refusal([] { CInt(40000); }), QString("6 Overflow"));
    }

    void foldersGetOneTrailingSlash() {
        QCOMPARE(AddBackslash("/opt/velmora"), QString("/opt/velmora/"));
        QCOMPARE(AddBackslash("/opt/velmora/"), QString("/opt/velmora/"));
        QCOMPARE(AddBackslash("C:\\Program Files\\Velmora"), QString("C:/Program Files/Velmora/"));
    }
};

VELMORA_TEST_MAIN(VbRuntimeTest)
#include "vbruntime_test.moc"
