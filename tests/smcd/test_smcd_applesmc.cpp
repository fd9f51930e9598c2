#include <cerrno>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "smcd/applesmccontroller.h"
#include "tests/smcd/fakecontroller.h"
#include "tests/support/testenvironment.h"

using namespace smcd;

namespace {

// The driver's files as the kernel has them: what the view shows follows from the
// index that was written last.
class KernelFiles final : public AttributeFiles {
public:
    struct Row {
        std::string name;
        std::string type;
        std::string value;
    };

    std::vector<Row> table { { "#KEY", "ui32", std::string("\0\0\0\5", 4) },
                             { "F0Ac", "fpe2", "\x1F\x40" },
                             { "FNum", "ui8 ", "\2" },
                             { "FS! ", "ui16", std::string(2, '\0') },
                             { "TC0P", "sp78", std::string("\x2D\x80", 2) } };
    std::map<std::string, std::string> fanFiles { { "fan1_manual", "0\n" },
                                                  { "fan2_manual", "0\n" },
                                                  { "fan1_output", "2000\n" } };
    std::size_t view = 0;
    bool isThere = true;
    int thefts = 0; // how often somebody else turns the view

    std::uint32_t read(const std::string& name, std::string& contents) override
    {
        if (!isThere) {
            return ENOENT;
        }
        if (name == "key_count") {
            contents = std::to_string(table.size()) + '\n';
        } else if (name == "key_at_index_name") {
            contents = table[view].name + '\n';
        } else if (name == "key_at_index_type") {
            contents = table[view].type + '\n';
        } else if (name == "key_at_index_data_length") {
            contents = std::to_string(table[view].value.size()) + '\n';
        } else if (name == "key_at_index_data") {
            steal();
            contents = table[view].value;
        } else {
            return ENOENT;
        }
        return 0;
    }

    std::uint32_t write(const std::string& name, const std::string& text) override
    {
        if (isThere && name == "key_at_index") {
            const std::size_t index = std::stoul(text);
            if (index >= table.size()) {
                return EINVAL;
            }
            view = index;
            return 0;
        }
        const auto file = fanFiles.find(name);
        if (!isThere || file == fanFiles.end()) {
            return ENOENT;
        }
        file->second = text;
        return 0;
    }

private:
    void steal()
    {
        if (thefts > 0) {
            --thefts;
            view = 0;
        }
    }
};

struct Bench {
    std::unique_ptr<KernelFiles> made = std::make_unique<KernelFiles>();
    KernelFiles* files = made.get();
    AppleSmcController controller { std::move(made) };

    std::uint32_t read(const char* key, Value& value)
    {
        return controller.readKey(keyOf(key), value);
    }
};

void put(const QString& path, const QByteArray& text)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        qFatal("%s", qPrintable(path));
    }
    file.write(text);
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class AppleSmcTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyKeyOfTheTableIsFound_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("first") << QByteArray("#KEY") << QByteArray("\0\0\0\5", 4);
        QTest::newRow("speed") << QByteArray("F0Ac") << QByteArray("\x1F\x40");
        QTest::newRow("mask") << QByteArray("FS! ") << QByteArray(2, '\0');
        QTest::newRow("last") << QByteArray("TC0P") << QByteArray("\x2D\x80");
    }
    void everyKeyOfTheTableIsFound()
    {
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, value);
        Bench bench;
        Value read(static_cast<std::size_t>(value.size()));
        QCOMPARE(bench.read(key.constData(), read), 0U);
        QCOMPARE(read, Value(value.begin(), value.end()));
        Value longer(read.size() + 1);
        QCOMPARE(bench.read(key.constData(), longer), std::uint32_t(EIO));
    }

    void infosComeFromTheView()
    {
        Bench bench;
        KeyInfo info;
        QCOMPARE(bench.controller.keyInfo(keyOf("FNum"), info), 0U);
        QCOMPARE(info.length, std::uint8_t(1));
        QCOMPARE(std::string(info.type.begin(), info.type.end()), std::string("ui8 "));
    }

    void anUnknownKeyHasNoLengthAndNoValue()
    {
        Bench bench;
        KeyInfo info { 7, {}, 0 };
        QCOMPARE(bench.controller.keyInfo(keyOf("F0Md"), info), 0U);
        QCOMPARE(info.length, std::uint8_t(0));
        Value value(1);
        QCOMPARE(bench.read("F0Md", value), std::uint32_t(ENOENT));
    }

    void namesAreThoseOfTheIndexes()
    {
        Bench bench;
        Key key {};
        QCOMPARE(bench.controller.keyByIndex(3, key), 0U);
        QCOMPARE(key, keyOf("FS! "));
        QCOMPARE(bench.controller.keyByIndex(5, key), std::uint32_t(ENOENT));
    }

    void aViewThatSomebodyElseTurnsIsReadAgain()
    {
        Bench bench;
        Value value(2);
        bench.files->thefts = 1;
        QCOMPARE(bench.read("TC0P", value), 0U);
        QCOMPARE(value, (Value { 0x2D, 0x80 }));
        bench.files->thefts = 100;
        QCOMPARE(bench.read("TC0P", value), std::uint32_t(EIO));
    }

    void theMaskIsWrittenFanByFan()
    {
        Bench bench;
        QCOMPARE(bench.controller.writeKey(keyOf("FS! "), Value { 0, 2 }), 0U);
        QCOMPARE(bench.files->fanFiles["fan1_manual"], std::string("0\n"));
        QCOMPARE(bench.files->fanFiles["fan2_manual"], std::string("1\n"));
        QCOMPARE(bench.controller.writeKey(keyOf("FS! "), Value { 0, 4 }), std::uint32_t(ENOENT));
    }

    void modesAndTargetsHaveTheirFiles()
    {
        Bench bench;
        QCOMPARE(bench.controller.writeKey(keyOf("F1Md"), Value { 1 }), 0U);
        QCOMPARE(bench.files->fanFiles["fan2_manual"], std::string("1\n"));
        QCOMPARE(bench.controller.writeKey(keyOf("F0Tg"), Value { 0x2E, 0xE3 }), 0U);
        QCOMPARE(bench.files->fanFiles["fan1_output"], std::string("3000\n"));
        QCOMPARE(bench.controller.writeKey(keyOf("F0Tg"), Value { 0, 0x80, 0xBB, 0x44 }), 0U);
        QCOMPARE(bench.files->fanFiles["fan1_output"], std::string("1500\n"));
    }

    void whatHasNoFileIsNotWritten_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<int>("error");
        QTest::newRow("another key") << QByteArray("F0Mn") << QByteArray(2, '\0') << EACCES;
        QTest::newRow("no fan") << QByteArray("LKSB") << QByteArray(2, '\0') << EACCES;
        QTest::newRow("a fan that isn't there")
            << QByteArray("F7Md") << QByteArray(1, '\1') << ENOENT;
        QTest::newRow("infinite speed")
            << QByteArray("F0Tg") << QByteArray::fromHex("0000807F") << EINVAL;
        QTest::newRow("speed of one byte") << QByteArray("F0Tg") << QByteArray(1, '\1') << EINVAL;
        QTest::newRow("mode of two bytes") << QByteArray("F0Md") << QByteArray(2, '\1') << EINVAL;
    }
    void whatHasNoFileIsNotWritten()
    {
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, value);
        QFETCH(int, error);
        Bench bench;
        QCOMPARE(
            bench.controller.writeKey(keyOf(key.constData()), Value(value.begin(), value.end())),
            static_cast<std::uint32_t>(error));
        QCOMPARE(bench.files->fanFiles["fan1_manual"], std::string("0\n"));
        QCOMPARE(bench.files->fanFiles["fan1_output"], std::string("2000\n"));
    }

    void aDriverThatIsUnloadedIsGone()
    {
        Bench bench;
        Value value(2);
        QCOMPARE(bench.read("TC0P", value), 0U);
        bench.files->isThere = false;
        QCOMPARE(bench.read("TC0P", value), std::uint32_t(ENODEV));
        QCOMPARE(bench.read("F0Ac", value), std::uint32_t(ENODEV));
    }

    void theFolderIsFoundWhereverTheKernelHasIt_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("found");
        QTest::newRow("platform device") << QStringLiteral("sys/devices/platform/applesmc.768")
                                         << QStringLiteral("sys/devices/platform/applesmc.768");
        QTest::newRow("monitor's device") << QStringLiteral("sys/class/hwmon/hwmon3/device")
                                          << QStringLiteral("sys/class/hwmon/hwmon3/device");
        QTest::newRow("monitor") << QStringLiteral("sys/class/hwmon/hwmon3")
                                 << QStringLiteral("sys/class/hwmon/hwmon3");
        QTest::newRow("nowhere") << QStringLiteral("elsewhere") << QString();
    }
    void theFolderIsFoundWhereverTheKernelHasIt()
    {
        QFETCH(QString, folder);
        QFETCH(QString, found);
        const QTemporaryDir root;
        put(root.filePath(QStringLiteral("sys/class/hwmon/hwmon0/name")), "coretemp\n");
        put(root.filePath(folder + QStringLiteral("/name")), "applesmc\n");
        put(root.filePath(folder + QStringLiteral("/key_count")), "5\n");
        const auto result = AppleSmcController::findFolder(root.path().toStdString());
        QCOMPARE(result.has_value(), !found.isEmpty());
        if (result) {
            QCOMPARE(QString::fromStdString(result->string()), root.filePath(found));
        }
    }

    void theFilesOfAFolderAreReadAndWritten()
    {
        const QTemporaryDir root;
        put(root.filePath(QStringLiteral("fan1_manual")), "0\n");
        put(root.filePath(QStringLiteral("fan2_manual")), "0\n");
        const auto files = makeAttributeFiles(root.path().toStdString());
        std::string text;
        QCOMPARE(files->read("fan1_manual", text), 0U);
        QCOMPARE(text, std::string("0\n"));
        QCOMPARE(files->read("fan3_manual", text), std::uint32_t(ENOENT));
        QCOMPARE(files->write("fan3_manual", "1\n"), std::uint32_t(ENOENT));
        AppleSmcController controller(makeAttributeFiles(root.path().toStdString()));
        QCOMPARE(controller.writeKey(keyOf("FS! "), Value { 0, 3 }), 0U);
        QCOMPARE(contents(root.filePath(QStringLiteral("fan2_manual"))), QByteArray("1\n"));
        QVERIFY(!QFile::exists(root.filePath(QStringLiteral("fan3_manual"))));
    }
};

BRISORA_TEST_MAIN(AppleSmcTest, QCoreApplication)

#include "test_smcd_applesmc.moc"
