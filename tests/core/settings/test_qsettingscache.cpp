#include <memory>
#include <thread>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "core/settings/qsettingscache.h"
#include "tests/support/logcapture.h"
#include "tests/support/testenvironment.h"

class TestQSettingsCache : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;

    std::unique_ptr<QSettings> storage() const
    {
        return std::make_unique<QSettings>(m_path, QSettings::IniFormat);
    }

    QByteArray content() const
    {
        QFile file(m_path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void writeFile(const QByteArray& data) const
    {
        QFile file(m_path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(data), qint64(data.size()));
    }

    // The folder of the file is a file: not even root can write there.
    void blockStorage()
    {
        m_path = m_folder->filePath(QStringLiteral("blocked/settings.ini"));
        QFile blocker(m_folder->filePath(QStringLiteral("blocked")));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
    }

    QString cannotBeWritten() const
    {
        return QStringLiteral("error: The settings can't be written to %1 (no access), the "
                              "program goes on with what it holds")
            .arg(m_path);
    }

    const QString m_key = QStringLiteral("Key");

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
        m_path = m_folder->filePath(QStringLiteral("settings.ini"));
    }

    void theFirstDefaultHoldsForTheRun()
    {
        QSettingsCache settings(storage());
        QCOMPARE(settings.getInt(m_key, -1), -1);
        QCOMPARE(settings.getInt(m_key, 5), -1);
        QCOMPARE(settings.getInt(m_key), -1);
        QCOMPARE(settings.value(m_key, 7).toInt(), -1);
        // A default is not stored.
        QVERIFY(!QFile::exists(m_path));
    }

    void aStoredValueHoldsOverTheDefault()
    {
        writeFile("[General]\nKey=3\n");
        QSettingsCache settings(storage());
        QCOMPARE(settings.getInt(m_key, -1), 3);
    }

    void aWrittenValueReplacesTheDefault()
    {
        QSettingsCache settings(storage());
        QCOMPARE(settings.getInt(m_key, -1), -1);
        settings.setInt(m_key, 0);
        QCOMPARE(settings.getInt(m_key, -1), 0);
    }

    void aWriteReachesTheFileAtOnce()
    {
        QSettingsCache settings(storage());
        settings.setInt(m_key, 42);
        QVERIFY2(content().contains("Key=42"), content().constData());
        settings.remove(m_key);
        QVERIFY2(!content().contains("Key"), content().constData());
    }

    void aRemovedKeyGivesTheNewDefault()
    {
        QSettingsCache settings(storage());
        settings.setInt(m_key, 1);
        settings.remove(m_key);
        QCOMPARE(settings.getInt(m_key, -1), -1);
        settings.remove(m_key);
        QCOMPARE(settings.getInt(m_key, 9), 9);
    }

    void everyTypeSurvivesANewStart()
    {
        const QStringList list { QStringLiteral("a, b"), QStringLiteral("c|d"), QString() };
        const QRect rect(1, -2, 300, 400);
        const QByteArray bytes("\x00\xFF\r\n", 4);
        const QDateTime date(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC);
        {
            QSettingsCache settings(storage());
            settings.setInt(QStringLiteral("int"), -5);
            settings.setString(QStringLiteral("string"), QStringLiteral("ü; \"x\""));
            settings.setStringList(QStringLiteral("list"), list);
            settings.setStringList(QStringLiteral("one"), { QStringLiteral("a") });
            settings.setStringList(QStringLiteral("none"), {});
            settings.setRect(QStringLiteral("rect"), rect);
            settings.setByteArray(QStringLiteral("bytes"), bytes);
            settings.setDateTime(QStringLiteral("date"), date);
        }
        QSettingsCache settings(storage());
        QCOMPARE(settings.getInt(QStringLiteral("int")), -5);
        QCOMPARE(settings.getString(QStringLiteral("string")), QStringLiteral("ü; \"x\""));
        QCOMPARE(settings.getStringList(QStringLiteral("list")), list);
        QCOMPARE(settings.getStringList(QStringLiteral("one")),
                 QStringList { QStringLiteral("a") });
        QCOMPARE(settings.getStringList(QStringLiteral("none")), QStringList());
        QCOMPARE(settings.getRect(QStringLiteral("rect")), rect);
        QCOMPARE(settings.getByteArray(QStringLiteral("bytes")), bytes);
        QCOMPARE(settings.getDateTime(QStringLiteral("date")), date);
    }

    void datesAreKeptAsText()
    {
        QSettingsCache settings(storage());
        settings.setDateTime(m_key, QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC));
        QCOMPARE(settings.getString(m_key), QStringLiteral("2026-03-04T05:06:07Z"));
    }

    void aMissingOrUnreadableDateIsInvalid()
    {
        QSettingsCache settings(storage());
        QVERIFY(!settings.getDateTime(m_key).isValid());
        settings.setString(m_key, QStringLiteral("tomorrow"));
        QVERIFY(!settings.getDateTime(m_key).isValid());
        settings.setDateTime(m_key, QDateTime());
        QVERIFY(!settings.getDateTime(m_key).isValid());
    }

    void missingValuesAreEmpty()
    {
        QSettingsCache settings(storage());
        QCOMPARE(settings.getString(QStringLiteral("a")), QString());
        QCOMPARE(settings.getStringList(QStringLiteral("b")), QStringList());
        QCOMPARE(settings.getRect(QStringLiteral("c")), QRect());
        QCOMPARE(settings.getByteArray(QStringLiteral("d")), QByteArray());
        QCOMPARE(settings.getInt(QStringLiteral("e")), 0);
    }

    void aValueOfAnotherTypeIsConverted_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<int>("expected");
        QTest::newRow("a number") << QByteArray("17") << 17;
        QTest::newRow("text") << QByteArray("on") << 0;
        QTest::newRow("a word for yes") << QByteArray("true") << 0;
        QTest::newRow("a fraction") << QByteArray("1.9") << 0;
        QTest::newRow("a list") << QByteArray("1, 2") << 0;
        QTest::newRow("a rectangle") << QByteArray("@Rect(1 2 3 4)") << 0;
        QTest::newRow("nothing") << QByteArray("") << 0;
    }
    void aValueOfAnotherTypeIsConverted()
    {
        QFETCH(QByteArray, stored);
        QFETCH(int, expected);
        writeFile("[General]\nKey=" + stored + "\n");
        QSettingsCache settings(storage());
        QCOMPARE(settings.getInt(m_key, -1), expected);
        QCOMPARE(settings.getRect(QStringLiteral("Key2")), QRect());
    }

    void aStorageThatCannotBeWrittenIsToldOnce()
    {
        blockStorage();
        const LogCapture log;
        QSettingsCache settings(storage());
        QCOMPARE(settings.getInt(m_key, -1), -1);
        QCOMPARE(log.lines().size(), 0);
        settings.setInt(m_key, 1);
        settings.setInt(m_key, 2);
        settings.remove(QStringLiteral("other"));
        QCOMPARE(settings.getInt(m_key, -1), 2);
        QCOMPARE(log.lines(), QStringList { cannotBeWritten() });
    }

    void aFailureBeforeTheLogIsToldOnceThereIsOne()
    {
        blockStorage();
        QSettingsCache settings(storage());
        settings.setInt(m_key, 1);
        const LogCapture log;
        settings.reportFailure();
        QCOMPARE(log.lines(), QStringList { cannotBeWritten() });
        settings.reportFailure();
        settings.setInt(m_key, 2);
        QCOMPARE(log.lines().size(), 1);
    }

    void aStorageThatCanBeWrittenHasNothingToTell()
    {
        QSettingsCache settings(storage());
        settings.setInt(m_key, 1);
        const LogCapture log;
        settings.reportFailure();
        QCOMPARE(log.lines(), QStringList());
    }

    void aCorruptFileIsToldOnceAndReplaced()
    {
        writeFile("Key=1\n\x01[broken\nno equals sign\n[General]\nOther=7\n");
        const LogCapture log;
        QSettingsCache settings(storage());
        settings.setInt(m_key, 5);
        settings.setInt(m_key, 6);
        QCOMPARE(settings.getInt(m_key, -1), 6);
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.lines().constFirst().contains(QLatin1String("(bad format)")));
        QSettingsCache again(storage());
        QCOMPARE(again.getInt(m_key, -1), 6);
    }

    void everythingCanBeRemoved()
    {
        QSettingsCache settings(storage());
        settings.setInt(m_key, 1);
        QVERIFY(QFile::exists(m_path));
        settings.removeStorage();
        QVERIFY(!QFile::exists(m_path));
        QCOMPARE(settings.getInt(m_key, -1), -1);
    }

    void whatIsWrittenAfterTheRemovalStartsANewStorage()
    {
        QSettingsCache settings(storage());
        settings.setInt(m_key, 1);
        settings.removeStorage();
        settings.setInt(QStringLiteral("Later"), 4);
        QCOMPARE(content().trimmed().replace("\r", ""), QByteArray("[General]\nLater=4"));
        settings.removeStorage();
        QVERIFY(!QFile::exists(m_path));
    }

    void theUsersOwnSettingsCanBeRemoved()
    {
        const QString organization = QStringLiteral("Orvane Software");
        const QString application = QStringLiteral("Brisora Removal");
        QSettingsCache settings(organization, application);
        settings.setInt(m_key, 1);
        const QString path = QSettings(organization, application).fileName();
        settings.removeStorage();
        QVERIFY(!QFile::exists(path));
        settings.setInt(QStringLiteral("Later"), 4);
        QSettings stored(organization, application);
        QCOMPARE(stored.allKeys(), QStringList { QStringLiteral("Later") });
        settings.removeStorage();
    }

    void manyThreadsMayUseIt()
    {
        QSettingsCache settings(storage());
        const auto work = [&settings](int number) {
            const QString own = QStringLiteral("own%1").arg(number);
            for (int i = 0; i < 15; ++i) {
                settings.setInt(own, i);
                if (settings.getInt(own, -1) != i) {
                    settings.setInt(QStringLiteral("failed"), 1);
                }
                settings.setString(QStringLiteral("shared"), own);
                (void)settings.getString(QStringLiteral("shared"));
                settings.remove(QStringLiteral("other"));
            }
        };
        std::vector<std::thread> threads;
        for (int number = 0; number < 3; ++number) {
            threads.emplace_back(work, number);
        }
        for (auto& thread : threads) {
            thread.join();
        }
        QCOMPARE(settings.getInt(QStringLiteral("failed"), 0), 0);
        QCOMPARE(settings.getInt(QStringLiteral("own2"), 0), 14);
        QVERIFY(settings.getString(QStringLiteral("shared")).startsWith(QLatin1String("own")));
    }
};

BRISORA_TEST_MAIN(TestQSettingsCache, QCoreApplication)

#include "test_qsettingscache.moc"
