#include <QCoreApplication>
#include <QTemporaryDir>
#include <QtTest>

#include "app/settingskeys.h"
#include "app/ui/dialogs/rateschedule.h"
#include "core/settings/qsettingscache.h"
#include "tests/support/testenvironment.h"

namespace {

const QDateTime start(QDate(2026, 3, 1), QTime(12, 0));
constexpr qint64 week = 7 * 24 * 60 * 60;

} // namespace

// The days on which the user is asked for a rating.
class RateScheduleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void theFirstRequestComesAWeekAfterTheFirstStart();
    void aDateThatIsThereIsKept();
    void theDateDecides_data();
    void theDateDecides();
    void aDueRequestPutsTheNextOneOff();
    void anUnreadableDateStartsTheScheduleAnew_data();
    void anUnreadableDateStartsTheScheduleAnew();
    void onlyAOneEndsTheRequests_data();
    void onlyAOneEndsTheRequests();
    void theAnswerIsActedUpon_data();
    void theAnswerIsActedUpon();
    void nobodyIsAskedBeforeItIsTime();
    void theNextRequestIsPutOffBeforeTheUserIsAsked();
    void afterNoThanksTheRequestComesAgain();

private:
    // The request as its caller runs it; what was done, in order.
    QStringList ask(const RateSchedule::Answer& answer);
    QString storedDate() { return m_settings->getString(SettingsKeys::rateNextDate); }
    void setDate(const QDateTime& date)
    {
        m_settings->setDateTime(SettingsKeys::rateNextDate, date);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QSettingsCache> m_settings;
    std::unique_ptr<RateSchedule> m_schedule;
    QDateTime m_now;
};

void RateScheduleTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_settings = std::make_unique<QSettingsCache>(std::make_unique<QSettings>(
        m_folder->filePath(QStringLiteral("settings.ini")), QSettings::IniFormat));
    m_schedule = std::make_unique<RateSchedule>(*m_settings, [this] { return m_now; });
    m_now = start;
}

QStringList RateScheduleTest::ask(const RateSchedule::Answer& answer)
{
    QStringList done;
    m_schedule->askWhenDue(
        [&] {
            done.append(QStringLiteral("ask"));
            return answer;
        },
        [&] { done.append(QStringLiteral("rate")); });
    return done;
}

void RateScheduleTest::theFirstRequestComesAWeekAfterTheFirstStart()
{
    m_schedule->ensureScheduled();
    QCOMPARE(storedDate(), QStringLiteral("2026-03-08T12:00:00"));

    m_now = start.addSecs(week - 1);
    QVERIFY(!m_schedule->takeDueRequest());
    m_now = start.addSecs(week);
    QVERIFY(m_schedule->takeDueRequest());
}

void RateScheduleTest::aDateThatIsThereIsKept()
{
    m_schedule->ensureScheduled();
    m_now = start.addSecs(100);

    m_schedule->ensureScheduled();

    QCOMPARE(storedDate(), QStringLiteral("2026-03-08T12:00:00"));
}

void RateScheduleTest::theDateDecides_data()
{
    QTest::addColumn<qint64>("secondsAhead");
    QTest::addColumn<bool>("due");

    QTest::newRow("long ago") << qint64 { -1000 } * week << true;
    QTest::newRow("a second ago") << qint64 { -1 } << true;
    QTest::newRow("now") << qint64 { 0 } << true;
    QTest::newRow("in a second") << qint64 { 1 } << false;
    QTest::newRow("in a week") << week << false;
}

void RateScheduleTest::theDateDecides()
{
    QFETCH(qint64, secondsAhead);
    setDate(start.addSecs(secondsAhead));

    QTEST(m_schedule->takeDueRequest(), "due");
}

void RateScheduleTest::aDueRequestPutsTheNextOneOff()
{
    setDate(start);

    QVERIFY(m_schedule->takeDueRequest());

    QCOMPARE(storedDate(), QStringLiteral("2026-03-08T12:00:00"));
    QVERIFY(!m_schedule->takeDueRequest());
}

void RateScheduleTest::anUnreadableDateStartsTheScheduleAnew_data()
{
    QTest::addColumn<QString>("stored");

    QTest::newRow("missing") << QString();
    QTest::newRow("garbage") << "next week";
    QTest::newRow("no such day") << "2026-02-30T12:00:00";
}

void RateScheduleTest::anUnreadableDateStartsTheScheduleAnew()
{
    QFETCH(QString, stored);
    if (!stored.isNull()) {
        m_settings->setString(SettingsKeys::rateNextDate, stored);
    }

    QVERIFY(!m_schedule->takeDueRequest());

    QCOMPARE(storedDate(), QStringLiteral("2026-03-08T12:00:00"));
}

void RateScheduleTest::onlyAOneEndsTheRequests_data()
{
    QTest::addColumn<int>("skip");
    QTest::addColumn<bool>("due");

    QTest::newRow("absent") << -1 << true;
    QTest::newRow("zero") << 0 << true;
    QTest::newRow("one") << 1 << false;
    QTest::newRow("two") << 2 << true;
}

void RateScheduleTest::onlyAOneEndsTheRequests()
{
    QFETCH(int, skip);
    QFETCH(bool, due);
    setDate(start);
    if (skip >= 0) {
        m_settings->setInt(SettingsKeys::rateSkip, skip);
    }

    QCOMPARE(m_schedule->takeDueRequest(), due);

    // Without requests there is nothing to put off.
    QCOMPARE(storedDate(),
             due ? QStringLiteral("2026-03-08T12:00:00") : QStringLiteral("2026-03-01T12:00:00"));
}

void RateScheduleTest::theAnswerIsActedUpon_data()
{
    QTest::addColumn<bool>("rate");
    QTest::addColumn<bool>("dontAskAgain");
    QTest::addColumn<QStringList>("done");
    QTest::addColumn<int>("skip");

    const QStringList asked { QStringLiteral("ask") };
    const QStringList rated { QStringLiteral("ask"), QStringLiteral("rate") };
    QTest::newRow("rate") << true << false << rated << -1;
    QTest::newRow("rate, for the last time") << true << true << rated << 1;
    QTest::newRow("no") << false << false << asked << -1;
    QTest::newRow("no, for ever") << false << true << asked << 1;
}

void RateScheduleTest::theAnswerIsActedUpon()
{
    QFETCH(bool, rate);
    QFETCH(bool, dontAskAgain);
    setDate(start);

    QTEST(ask({ rate, dontAskAgain }), "done");

    QTEST(m_settings->getInt(SettingsKeys::rateSkip, -1), "skip");
}

void RateScheduleTest::nobodyIsAskedBeforeItIsTime()
{
    setDate(start.addSecs(1));

    QCOMPARE(ask({ true, true }), QStringList());

    QCOMPARE(m_settings->getInt(SettingsKeys::rateSkip, -1), -1);
}

void RateScheduleTest::theNextRequestIsPutOffBeforeTheUserIsAsked()
{
    setDate(start);
    QString dateWhileAsked;

    m_schedule->askWhenDue(
        [&] {
            dateWhileAsked = storedDate();
            return RateSchedule::Answer();
        },
        [] {});

    QCOMPARE(dateWhileAsked, QStringLiteral("2026-03-08T12:00:00"));
}

void RateScheduleTest::afterNoThanksTheRequestComesAgain()
{
    setDate(start);
    const QStringList asked { QStringLiteral("ask") };
    QCOMPARE(ask({ false, false }), asked);

    m_now = start.addSecs(week - 1);
    QCOMPARE(ask({ false, true }), QStringList());
    m_now = start.addSecs(week);
    QCOMPARE(ask({ false, true }), asked);

    // That was for good.
    m_now = start.addSecs(100 * week);
    QCOMPARE(ask({ false, false }), QStringList());
}

BRISORA_TEST_MAIN(RateScheduleTest, QCoreApplication)
#include "test_rateschedule.moc"
