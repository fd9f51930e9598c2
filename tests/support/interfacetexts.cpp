#include "tests/support/interfacetexts.h"

#include <QDir>
#include <QFile>

#include "resources/resources.h"

InterfaceTexts::InterfaceTexts()
{
    initResources();
    const QDir program(QStringLiteral(BRISORA_LANGUAGES_FOLDER));
    for (const QString& name : program.entryList(QDir::Files)) {
        if (!QFile::copy(program.filePath(name), m_folder.filePath(name))) {
            qFatal("The language file %s can't be copied", qPrintable(name));
        }
    }
    useEnglish();
    LanguageStrings::setActive(&m_strings);
}

InterfaceTexts::~InterfaceTexts() { LanguageStrings::setActive(nullptr); }

void InterfaceTexts::translate(const QByteArray& elements)
{
    const QString name = QStringLiteral("Test");
    addFile(name, fileContent(elements));
    load(name);
}

void InterfaceTexts::addFile(const QString& name, const QByteArray& content) const
{
    QFile file(m_folder.filePath(name + QLatin1String(".xml")));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
        qFatal("The language file can't be written");
    }
}

QByteArray InterfaceTexts::fileContent(const QByteArray& elements)
{
    return "<LanguageStrings>" + elements + "</LanguageStrings>";
}
