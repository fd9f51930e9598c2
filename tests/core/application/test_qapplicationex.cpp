#include <QDir>
#include <QWidget>
#include <QtTest>

#include "core/application/qapplicationex.h"
#include "core/language/languagestrings.h"
#include "tests/support/testenvironment.h"

namespace {

class TestApplication final : public QApplicationEx {
public:
    TestApplication(int& argc, char** argv)
        : QApplicationEx(argc, argv, QStringLiteral("Brisora"))
    {
    }

    using QApplicationEx::loadLanguage;
    using QApplicationEx::setDefaultLanguage;
};

void write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(file.errorString()));
    QCOMPARE(file.write(content), qint64 { content.size() });
}

} // namespace

class QApplicationExTest : public QObject {
    Q_OBJECT

public:
    explicit QApplicationExTest(TestApplication& application)
        : m_application(application)
    {
    }

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void windowsFollowTheLanguagesDirection_data();
    void windowsFollowTheLanguagesDirection();
    void theDirectionFollowsTheLanguageBackAgain();
    void theTextsFollowTheLanguage();

private:
    TestApplication& m_application;
    QTemporaryDir m_folder;
    QDir m_languages {
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("languages"))
    };
};

void QApplicationExTest::initTestCase()
{
    const QString english = m_folder.filePath(QStringLiteral("English"));
    write(english, "<a><Common><buttonOK>OK</buttonOK></Common></a>");
    QVERIFY(m_languages.mkpath(QStringLiteral(".")));
    for (const char* name : { "Arabic", "Hebrew", "German" }) {
        write(m_languages.filePath(QString::fromLatin1(name) + QStringLiteral(".xml")),
              QByteArray("<a><Common><buttonOK>") + name + "</buttonOK></Common></a>");
    }
    write(m_languages.filePath(QStringLiteral("Persian.xml")), "no translation");
    m_application.setDefaultLanguage(english);
}

void QApplicationExTest::cleanupTestCase() { QVERIFY(m_languages.removeRecursively()); }

void QApplicationExTest::windowsFollowTheLanguagesDirection_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::newRow("Arabic") << QStringLiteral("Arabic") << Qt::RightToLeft;
    QTest::newRow("a file name") << QStringLiteral("Hebrew.xml") << Qt::RightToLeft;
    QTest::newRow("German") << QStringLiteral("German") << Qt::LeftToRight;
    QTest::newRow("English") << QStringLiteral("English") << Qt::LeftToRight;
    // English stays in force.
    QTest::newRow("a broken one") << QStringLiteral("Persian") << Qt::LeftToRight;
    QTest::newRow("a missing one") << QStringLiteral("Hebrew.html") << Qt::LeftToRight;
}

void QApplicationExTest::windowsFollowTheLanguagesDirection()
{
    QFETCH(QString, name);
    QFETCH(Qt::LayoutDirection, direction);
    QApplication::setLayoutDirection(direction == Qt::RightToLeft ? Qt::LeftToRight
                                                                  : Qt::RightToLeft);
    const QWidget window;

    m_application.loadLanguage(name);

    QCOMPARE(QApplication::layoutDirection(), direction);
    QCOMPARE(window.layoutDirection(), direction);
}

void QApplicationExTest::theDirectionFollowsTheLanguageBackAgain()
{
    m_application.loadLanguage(QStringLiteral("Arabic"));
    QCOMPARE(QApplication::layoutDirection(), Qt::RightToLeft);
    m_application.loadLanguage(QStringLiteral("German"));
    QCOMPARE(QApplication::layoutDirection(), Qt::LeftToRight);
}

void QApplicationExTest::theTextsFollowTheLanguage()
{
    const QString key = QStringLiteral("Common/buttonOK");

    m_application.loadLanguage(QStringLiteral("German"));
    QCOMPARE(LanguageStrings::text(key), QStringLiteral("German"));

    m_application.loadLanguage(QStringLiteral("English"));
    QCOMPARE(LanguageStrings::text(key), QStringLiteral("OK"));
}

int main(int argc, char* argv[])
{
    const TestEnvironment environment;
    TestApplication application(argc, argv);
    QApplicationExTest test(application);
    return QTest::qExec(&test, argc, argv);
}

#include "test_qapplicationex.moc"
