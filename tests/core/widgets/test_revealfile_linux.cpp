#include <mutex>

#include <QDBusConnection>
#include <QDBusContext>
#include <QDir>
#include <QThread>
#include <QtTest>

#include "core/widgets/revealfile.h"
#include "tests/support/openedaddresses.h"
#include "tests/support/privatebus.h"
#include "tests/support/testenvironment.h"

namespace {

const QString serviceName = QStringLiteral("org.freedesktop.FileManager1");

// What it was asked to show, and how it answers.
class FileManager : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    struct Request {
        QStringList addresses;
        QString startupId;
    };

    [[nodiscard]] QVector<Request> requests() const
    {
        const std::lock_guard lock(m_mutex);
        return m_requests;
    }
    void setRefusing(bool refusing)
    {
        const std::lock_guard lock(m_mutex);
        m_refusing = refusing;
    }

public Q_SLOTS:
    void ShowItems(const QStringList& addresses, const QString& startupId)
    {
        const std::lock_guard lock(m_mutex);
        m_requests.append({ addresses, startupId });
        if (m_refusing) {
            sendErrorReply(QDBusError::Failed, QStringLiteral("no"));
        }
    }

private:
    mutable std::mutex m_mutex;
    QVector<Request> m_requests;
    bool m_refusing = false;
};

// The file manager on a connection and a thread of its own, as a program of its own
// would be.
class RunningFileManager {
public:
    explicit RunningFileManager(const QString& busAddress)
        : m_connection(QDBusConnection::connectToBus(busAddress, serviceName))
    {
        manager.moveToThread(&m_thread);
        m_thread.start();
        if (!m_connection.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager,
                                         QDBusConnection::ExportAllSlots)
            || !m_connection.registerService(serviceName)) {
            qFatal("No file manager on the bus");
        }
    }
    RunningFileManager(const RunningFileManager&) = delete;
    RunningFileManager& operator=(const RunningFileManager&) = delete;
    ~RunningFileManager()
    {
        QDBusConnection::disconnectFromBus(serviceName);
        m_thread.quit();
        m_thread.wait();
    }

    FileManager manager;

private:
    QThread m_thread;
    QDBusConnection m_connection;
};

} // namespace

class RevealFileSystemTest : public QObject {
    Q_OBJECT

public:
    explicit RevealFileSystemTest(const QString& busAddress)
        : m_busAddress(busAddress)
    {
    }

private Q_SLOTS:
    void theFileManagerShowsTheFile_data();
    void theFileManagerShowsTheFile();
    void aRelativePathIsMadeAbsolute();
    void withoutAFileManagerTheFolderIsOpened();
    void whenTheFileManagerRefusesTheFolderIsOpened();
    void theFileManagerIsNotAskedForAFileThatIsNotThere();

private:
    [[nodiscard]] QString makeFile(const QString& name) const
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::WriteOnly) ? file.fileName() : QString();
    }

    const QString m_busAddress;
    QTemporaryDir m_folder;
};

void RevealFileSystemTest::theFileManagerShowsTheFile_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("fallback");
    QTest::newRow("with fallback") << QStringLiteral("Brisora.log") << true;
    QTest::newRow("without fallback") << QStringLiteral("Brisora.log") << false;
    QTest::newRow("an unusual name") << QString::fromUtf8("Größe & 100% #1?.txt") << true;
}

void RevealFileSystemTest::theFileManagerShowsTheFile()
{
    QFETCH(QString, name);
    QFETCH(bool, fallback);
    const RunningFileManager running(m_busAddress);
    const OpenedAddresses opened;
    const QString path = makeFile(name);

    revealFile(path, fallback);

    const auto requests = running.manager.requests();
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests[0].addresses.size(), 1);
    const QString address = requests[0].addresses[0];
    QVERIFY(address.startsWith(QLatin1String("file:///")));
    QCOMPARE(QUrl::fromEncoded(address.toLatin1(), QUrl::StrictMode).toLocalFile(), path);
    QCOMPARE(requests[0].startupId, QString());
    QVERIFY(opened.addresses.isEmpty());
}

void RevealFileSystemTest::aRelativePathIsMadeAbsolute()
{
    const RunningFileManager running(m_busAddress);
    const QString path = makeFile(QStringLiteral("Brisora.log"));
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder.path()));

    revealFile(QStringLiteral("Brisora.log"), false);

    QDir::setCurrent(before);
    const auto requests = running.manager.requests();
    QCOMPARE(requests.size(), 1);
    QCOMPARE(QUrl(requests[0].addresses.value(0)).toLocalFile(), path);
}

void RevealFileSystemTest::withoutAFileManagerTheFolderIsOpened()
{
    const OpenedAddresses opened;

    revealFile(makeFile(QStringLiteral("Brisora.log")), false);

    QCOMPARE(opened.addresses, QVector<QUrl>({ QUrl::fromLocalFile(m_folder.path()) }));
}

void RevealFileSystemTest::whenTheFileManagerRefusesTheFolderIsOpened()
{
    RunningFileManager running(m_busAddress);
    running.manager.setRefusing(true);
    const OpenedAddresses opened;

    revealFile(makeFile(QStringLiteral("Brisora.log")), false);

    QCOMPARE(running.manager.requests().size(), 1);
    QCOMPARE(opened.addresses, QVector<QUrl>({ QUrl::fromLocalFile(m_folder.path()) }));
}

void RevealFileSystemTest::theFileManagerIsNotAskedForAFileThatIsNotThere()
{
    const RunningFileManager running(m_busAddress);
    const OpenedAddresses opened;

    revealFile(m_folder.filePath(QStringLiteral("nothing.log")), true);

    QVERIFY(running.manager.requests().isEmpty());
    QCOMPARE(opened.addresses, QVector<QUrl>({ QUrl::fromLocalFile(m_folder.path()) }));
}

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    const PrivateBus bus(PrivateBus::Kind::Session);
    QApplication application(argc, argv);
    RevealFileSystemTest test(bus.address());
    return QTest::qExec(&test, argc, argv);
}

#include "test_revealfile_linux.moc"
