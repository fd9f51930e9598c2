#include <array>
#include <cerrno>
#include <csignal>

#include <unistd.h>

#include <QtTest>

#include "app/terminationsignals.h"
#include "tests/support/testenvironment.h"

class TerminationSignalsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aSignalArrivesOnTheEventLoop_data();
    void aSignalArrivesOnTheEventLoop();
    void signalsInARowAreOneRequest();
    void aSignalThatWasIgnoredStaysIgnored();
    void aReaderThatHasGoneDoesNotEndTheProgram();
    void handlersGoWithTheObject_data();
    void handlersGoWithTheObject();
};

void TerminationSignalsTest::aSignalArrivesOnTheEventLoop_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void TerminationSignalsTest::aSignalArrivesOnTheEventLoop()
{
    QFETCH(int, number);
    TerminationSignals terminationSignals;
    QSignalSpy requested(&terminationSignals, &TerminationSignals::terminationRequested);

    QCOMPARE(std::raise(number), 0);

    QCOMPARE(requested.count(), 0);
    QTRY_COMPARE(requested.count(), 1);
}

void TerminationSignalsTest::signalsInARowAreOneRequest()
{
    TerminationSignals terminationSignals;
    QSignalSpy requested(&terminationSignals, &TerminationSignals::terminationRequested);

    QCOMPARE(std::raise(SIGTERM), 0);
    QCOMPARE(std::raise(SIGINT), 0);
    QTRY_COMPARE(requested.count(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(requested.count(), 1);

    QCOMPARE(std::raise(SIGTERM), 0);
    QTRY_COMPARE(requested.count(), 2);
}

void TerminationSignalsTest::aSignalThatWasIgnoredStaysIgnored()
{
    const auto before = std::signal(SIGHUP, SIG_IGN);
    {
        TerminationSignals terminationSignals;
        QSignalSpy requested(&terminationSignals, &TerminationSignals::terminationRequested);

        QCOMPARE(std::raise(SIGHUP), 0);
        QCoreApplication::processEvents();
        QCOMPARE(requested.count(), 0);

        // The others are still heard.
        QCOMPARE(std::raise(SIGTERM), 0);
        QTRY_COMPARE(requested.count(), 1);
    }
    QVERIFY(std::signal(SIGHUP, before) == SIG_IGN);
}

void TerminationSignalsTest::aReaderThatHasGoneDoesNotEndTheProgram()
{
    const TerminationSignals terminationSignals;
    std::array<int, 2> ends {};
    QCOMPARE(::pipe(ends.data()), 0);
    ::close(ends[0]);

    const auto written = ::write(ends[1], "x", 1);
    const int error = errno;
    ::close(ends[1]);

    QCOMPARE(written, ssize_t(-1));
    QCOMPARE(error, EPIPE);
}

void TerminationSignalsTest::handlersGoWithTheObject_data()
{
    aSignalArrivesOnTheEventLoop_data();
    QTest::newRow("SIGPIPE") << SIGPIPE;
}

void TerminationSignalsTest::handlersGoWithTheObject()
{
    QFETCH(int, number);
    struct sigaction before { };
    ::sigaction(number, nullptr, &before);
    {
        const TerminationSignals terminationSignals;
        struct sigaction during { };
        ::sigaction(number, nullptr, &during);
        QVERIFY(during.sa_handler != before.sa_handler);
    }
    struct sigaction after { };
    ::sigaction(number, nullptr, &after);
    QVERIFY(after.sa_handler == before.sa_handler);
}

BRISORA_TEST_MAIN(TerminationSignalsTest, QCoreApplication)
#include "test_terminationsignals_linux.moc"
