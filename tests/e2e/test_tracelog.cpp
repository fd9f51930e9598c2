#include <QCoreApplication>

#include "tests/e2e/tracelog.h"
#include "tests/support/testenvironment.h"

class TestTraceLog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_line_is_taken_apart_data();
    void a_line_is_taken_apart();
    void what_is_no_line_is_refused_data();
    void what_is_no_line_is_refused();
    void faults_of_control_are_found_data();
    void faults_of_control_are_found();
};

namespace {

TraceLog logOf(const QStringList& lines)
{
    TraceLog log;
    for (const QString& line : lines) {
        log.push_back(TraceLine::parse(line).value());
    }
    return log;
}

} // namespace

void TestTraceLog::a_line_is_taken_apart_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<int>("rpm");
    QTest::addColumn<int>("mask");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("text");

    using Kind = TraceLine::Kind;
    const auto row = [](const char* line, qint64 time, Kind kind, const char* key, int rpm,
                        int mask, const char* result, const char* text) {
        QTest::newRow(line) << QString::fromLatin1(line) << time << static_cast<int>(kind)
                            << QByteArray(key) << rpm << mask << QString::fromLatin1(result)
                            << QString::fromLatin1(text);
    };
    row("12.345 write \"FS! \" 0003 ok", 12345, Kind::Write, "FS! ", 0, 3, "ok", "");
    row("0.007 read \"F0Ac\" 1F40 ok", 7, Kind::Read, "F0Ac", 2000, 0x40, "ok", "");
    row("1.000 read \"TC0P\" - unknown", 1000, Kind::Read, "TC0P", -1, -1, "unknown", "");
    row("1.000 info \"F0Mn\" fpe2/2 ok", 1000, Kind::Info, "F0Mn", -1, -1, "ok", "");
    row("1.000 index 300 \"F0Ac\" ok", 1000, Kind::Index, "F0Ac", -1, -1, "ok", "");
    row("1.000 index 999 - unknown", 1000, Kind::Index, "", -1, -1, "unknown", "");
    row("13.000 event load heavy", 13000, Kind::Event, "", -1, -1, "", "load heavy");
    row("2.500 error \"byte 10 while busy\"", 2500, Kind::Error, "", -1, -1, "",
        "\"byte 10 while busy\"");
}

void TestTraceLog::a_line_is_taken_apart()
{
    QFETCH(QString, line);
    const auto parsed = TraceLine::parse(line);
    QVERIFY(parsed);
    QTEST(parsed->milliseconds, "milliseconds");
    QTEST(static_cast<int>(parsed->kind), "kind");
    QTEST(parsed->key, "key");
    QTEST(parsed->rpm(), "rpm");
    QTEST(parsed->mask(), "mask");
    QTEST(parsed->result, "result");
    QTEST(parsed->text, "text");
}

void TestTraceLog::what_is_no_line_is_refused_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("empty") << QString();
    QTest::newRow("no time") << QStringLiteral("read \"F0Ac\" 1F40 ok");
    QTest::newRow("unknown operation") << QStringLiteral("1.000 think \"F0Ac\" 1F40 ok");
    QTest::newRow("key too short") << QStringLiteral("1.000 read \"F0A\" 1F40 ok");
}

void TestTraceLog::what_is_no_line_is_refused()
{
    QFETCH(QString, line);
    QVERIFY(!TraceLine::parse(line));
}

void TestTraceLog::faults_of_control_are_found_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("faults");

    const QString bits1 = QStringLiteral("5.000 write \"FS! \" 0001 ok");
    const QString speed = QStringLiteral("5.100 write \"F0Tg\" 2EE0 ok");
    QTest::newRow("nothing") << QStringList() << 0;
    QTest::newRow("bits, then a speed") << QStringList { bits1, speed } << 0;
    QTest::newRow("a speed without bits") << QStringList { speed } << 1;
    QTest::newRow("a speed for another fan")
        << QStringList { bits1, QStringLiteral("5.100 write \"F1Tg\" 2EE0 ok") } << 1;
    QTest::newRow("old bits") << QStringList { bits1,
                                               QStringLiteral("11.000 write \"F0Tg\" 2EE0 ok") }
                              << 1;
    QTest::newRow("bits that failed")
        << QStringList { QStringLiteral("5.000 write \"FS! \" - unknown"), speed } << 1;
    QTest::newRow("the first repetition is free")
        << QStringList { bits1, QStringLiteral("5.200 write \"FS! \" 0001 ok"),
                         QStringLiteral("8.200 write \"FS! \" 0001 ok") }
        << 0;
    QTest::newRow("bits again too soon")
        << QStringList { bits1, QStringLiteral("5.200 write \"FS! \" 0001 ok"),
                         QStringLiteral("8.199 write \"FS! \" 0001 ok") }
        << 1;
    QTest::newRow("new bits may come at once")
        << QStringList { bits1, QStringLiteral("5.200 write \"FS! \" 0003 ok"),
                         QStringLiteral("5.400 write \"FS! \" 0000 ok") }
        << 0;
}

void TestTraceLog::faults_of_control_are_found()
{
    QFETCH(QStringList, lines);
    QTEST(static_cast<int>(trace::controlFaults(logOf(lines)).size()), "faults");
}

BRISORA_TEST_MAIN(TestTraceLog, QCoreApplication)

#include "test_tracelog.moc"
