#include <QDir>
#include <QFile>
#include <QtTest>

#include "core/system/powersource.h"
#include "tests/support/testenvironment.h"

class PowerSourceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_root = std::make_unique<QTemporaryDir>();
        qputenv("BRISORA_SYSROOT", QFile::encodeName(m_root->path()));
    }
    void cleanup() { qunsetenv("BRISORA_SYSROOT"); }

    void withoutTheFolderItIsUnknown() { QCOMPARE(getPowerSource(), System::PowerSourceUnknown); }

    void theKernelsFilesAreRead()
    {
        write("ADP1/type", "Mains\n");
        write("ADP1/online", "1\n");
        write("BAT0/type", "Battery\n");
        write("BAT0/status", "Discharging\n");
        QCOMPARE(getPowerSource(), System::PowerSourceAC);

        write("ADP1/online", "0\n");
        QCOMPARE(getPowerSource(), System::PowerSourceBattery);
    }

    void aBatteryTellsByItself()
    {
        write("BAT0/type", "Battery\n");
        write("BAT0/status", "Charging\n");
        QCOMPARE(getPowerSource(), System::PowerSourceAC);

        write("BAT0/scope", "Device\n");
        QCOMPARE(getPowerSource(), System::PowerSourceUnknown);
    }

private:
    void write(const char* name, const char* content)
    {
        const QString path = m_root->filePath(
            QStringLiteral("sys/class/power_supply/%1").arg(QLatin1String(name)));
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    std::unique_ptr<QTemporaryDir> m_root;
};

BRISORA_TEST_MAIN(PowerSourceTest, QCoreApplication)
#include "test_powersource_linux.moc"
