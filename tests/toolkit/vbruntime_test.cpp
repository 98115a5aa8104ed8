#include <cmath>
#include <limits>

#include "support/testsupport.h"
#include "toolkit/vberror.h"
#include "toolkit/vbruntime.h"

namespace {

// The error number a conversion raises, 0 when it passes.
template <typename Conversion>
int RaisedNumber(Conversion conversion) {
    try {
        conversion();
    } catch (const VbError& error) {
        return error.Number;
    }
    return 0;
}

}  // namespace

class VbRuntimeTest : public QObject {
    Q_OBJECT

  private slots:
    void formatPatterns_data() {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("expected");
        QTest::newRow("count padded") << 5.0 << "00000"
                                      << "00005";
        QTest::newRow("count wider than pattern") << 123456.0 << "00000"
                                                  << "123456";
        QTest::newRow("negative count") << -42.0 << "00000"
                                        << "-00042";
        QTest::newRow("count rounds half away") << 12.5 << "00000"
                                                << "00013";
        QTest::newRow("size zero") << 0.0 << "###0"
                                   << "0";
        QTest::newRow("size rounds up") << 1234.5 << "###0"
                                        << "1235";
        QTest::newRow("negative size rounds away") << -1234.5 << "###0"
                                                   << "-1235";
        QTest::newRow("size below one") << 0.4 << "###0"
                                        << "0";
        QTest::newRow("one decimal") << 3.25 << "###0.0"
                                     << "3.3";
        QTest::newRow("one decimal zero") << 0.0 << "###0.0"
                                          << "0.0";
        QTest::newRow("one decimal keeps zero") << 1024.04 << "###0.0"
                                                << "1024.0";
        QTest::newRow("one decimal negative") << -7.25 << "###0.0"
                                              << "-7.3";
        QTest::newRow("one decimal small") << 0.05 << "###0.0"
                                           << "0.1";
        QTest::newRow("percent half") << 0.5 << "##0%"
                                      << "50%";
        QTest::newRow("percent rounds") << 0.125 << "##0%"
                                        << "13%";
        QTest::newRow("percent whole") << 1.0 << "##0%"
                                       << "100%";
        QTest::newRow("percent zero") << 0.0 << "##0%"
                                      << "0%";
        QTest::newRow("percent negative") << -0.25 << "##0%"
                                          << "-25%";
        QTest::newRow("digit half up") << 2.5 << "0"
                                       << "3";
        QTest::newRow("digit half away negative") << -2.5 << "0"
                                                  << "-3";
        QTest::newRow("digit zero") << 0.0 << "0"
                                    << "0";
        QTest::newRow("two places") << 7.0 << "#0"
                                    << "7";
        QTest::newRow("two places zero") << 0.0 << "#0"
                                         << "0";
        QTest::newRow("two places rounds") << 10.5 << "#0"
                                           << "11";
        QTest::newRow("two places negative") << -0.6 << "#0"
                                             << "-1";
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
        QCOMPARE(RaisedNumber([] { CInt(32767.5); }), 6);
        QCOMPARE(RaisedNumber([] { CInt(-32769); }), 6);
        QCOMPARE(RaisedNumber([] { CInt(1e30); }), 6);
        QCOMPARE(RaisedNumber([] { CInt(std::numeric_limits<double>::quiet_NaN()); }), 6);
        QCOMPARE(RaisedNumber([] { CByte(255.5); }), 6);
        QCOMPARE(RaisedNumber([] { CByte(-0.6); }), 6);
        QCOMPARE(RaisedNumber([] { CByte(-1e30); }), 6);
        QCOMPARE(RaisedNumber([] { RoundToEven(1e19); }), 6);
        try {
            CInt(40000);
            QFAIL("no overflow");
        } catch (const VbError& error) {
            QCOMPARE(error.Description, QString("Overflow"));
        }
    }

    void foldersGetOneTrailingSlash() {
        QCOMPARE(AddBackslash("/opt/velmora"), QString("/opt/velmora/"));
        QCOMPARE(AddBackslash("/opt/velmora/"), QString("/opt/velmora/"));
        QCOMPARE(AddBackslash("C:\\Program Files\\Velmora"), QString("C:/Program Files/Velmora/"));
    }
};

VELMORA_TEST_MAIN(VbRuntimeTest)
#include "vbruntime_test.moc"
