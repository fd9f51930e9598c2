#include <limits>

#include <QtTest>

#include "core/system/systemmessages.h"
#include "tests/support/testenvironment.h"

using System::MessageMeaning;

Q_DECLARE_METATYPE(System::MessageMeaning)

class SystemMessagesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aMessageHasItsMeaning_data();
    void aMessageHasItsMeaning();
};

namespace {

constexpr unsigned queryEndSession = 17;
constexpr unsigned powerBroadcast = 536;

} // namespace

void SystemMessagesTest::aMessageHasItsMeaning_data()
{
    QTest::addColumn<unsigned>("message");
    QTest::addColumn<unsigned>("first");
    QTest::addColumn<qint64>("second");
    QTest::addColumn<MessageMeaning>("meaning");
    const auto row = [](const char* name, unsigned message, unsigned first, qint64 second,
                        MessageMeaning meaning) {
        QTest::newRow(name) << message << first << second << meaning;
    };
    row("suspend", powerBroadcast, 4, 0, MessageMeaning::EnterSleepMode);
    row("automatic resume", powerBroadcast, 18, 0, MessageMeaning::WakeUp);
    row("resume by the user", powerBroadcast, 7, 0, MessageMeaning::None);
    row("question whether to suspend", powerBroadcast, 0, 0, MessageMeaning::None);
    row("change of the power status", powerBroadcast, 10, 0, MessageMeaning::None);
    row("power setting", powerBroadcast, 32787, 0, MessageMeaning::PowerSettingChange);
    row("suspend in another message", 537, 4, 0, MessageMeaning::None);

    const qint64 negative = std::numeric_limits<qint32>::min();
    row("log-off of 32 bits", queryEndSession, 0, negative, MessageMeaning::LogOff);
    if (sizeof(std::intptr_t) > sizeof(std::int32_t)) {
        row("log-off of 64 bits", queryEndSession, 0, 0x80000000, MessageMeaning::LogOff);
    }
    row("shutdown", queryEndSession, 0, 0, MessageMeaning::SessionEnd);
    row("restart of the program", queryEndSession, 0, 1, MessageMeaning::SessionEnd);
    row("log-off and restart", queryEndSession, 0, negative + 1, MessageMeaning::SessionEnd);
    row("critical log-off", queryEndSession, 0, negative + 0x40000000, MessageMeaning::SessionEnd);
    row("log-off already decided", 22, 1, negative, MessageMeaning::None);
    row("power setting in another message", 537, 32787, 0, MessageMeaning::None);
}

void SystemMessagesTest::aMessageHasItsMeaning()
{
    QFETCH(unsigned, message);
    QFETCH(unsigned, first);
    QFETCH(qint64, second);
    QFETCH(MessageMeaning, meaning);
    QCOMPARE(System::meaningOfMessage(message, first, static_cast<std::intptr_t>(second)), meaning);
}

BRISORA_TEST_MAIN(SystemMessagesTest, QCoreApplication)
#include "test_systemmessages.moc"
