#include "core/language/languagestrings.h"

#include <atomic>
#include <utility>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include "core/compression/compressionutils.h"
#include "core/language/languagefile.h"
#include "core/log/log.h"

struct LanguageStrings::Table {
    QHash<QString, QString> strings;
    QString fileName;
};

namespace {

constexpr qint64 maxFileSize = qint64(16) * 1024 * 1024;

const QString extension = QStringLiteral(".xml");
const QString englishFile = QStringLiteral("English.xml");

std::atomic<const LanguageStrings*> activeLanguage { nullptr };

QByteArray readResource(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray data = file.readAll();
    return CompressionUtils::detectKind(data) == CompressionUtils::Kind::GzipContent
        ? CompressionUtils::gunzip(data)
        : data;
}

} // namespace

LanguageStrings::LanguageStrings(const QString& resourcePath, const QString& folder)
    : m_resourcePath(resourcePath)
    , m_folder(folder)
    , m_table(std::make_shared<const Table>())
{
}

LanguageStrings::~LanguageStrings() = default;

void LanguageStrings::load(const QString& name)
{
    auto loaded = std::make_shared<Table>();
    if (readLanguageFile(readResource(m_resourcePath), loaded->strings)) {
        loaded->fileName = englishFile;
    } else {
        LOG_ERR("The English texts can't be read from {}", m_resourcePath);
    }

    QString fileName = name.isEmpty() ? getSystemLanguageFile() : name;
    if (fileName.size() <= extension.size() || !fileName.endsWith(extension)) {
        fileName += extension;
    }
    if (fileName != englishFile && overlay(fileName, loaded->strings)) {
        loaded->fileName = fileName;
    }

    const std::lock_guard lock(m_mutex);
    m_table = std::move(loaded);
}

bool LanguageStrings::overlay(const QString& fileName, QHash<QString, QString>& strings) const
{
    const QDir folder(m_folder);
    // A name to the letter: not a path, which may lead out of the folder, and not
    // in other case, which only some systems take for the same file.
    if (!folder.entryList(QDir::Files | QDir::Hidden).contains(fileName)) {
        return false;
    }
    QFile file(folder.filePath(fileName));
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray data = file.read(maxFileSize + 1);
    if (data.size() > maxFileSize || !readLanguageFile(data, strings)) {
        LOG_WARN("The language file {} can't be used", core::log::singleLine(fileName));
        return false;
    }
    return true;
}

QString LanguageStrings::getString(const QString& key) const
{
    const QString text = table()->strings.value(key);
    return text.isEmpty() ? key : text;
}

QString LanguageStrings::getLanguageName() const
{
    QString name = getLanguageFileName();
    name.chop(extension.size());
    return name;
}

QString LanguageStrings::getLanguageFileName() const { return table()->fileName; }

QStringList LanguageStrings::getAvailableLanguages() const
{
    QStringList names;
    for (const QString& fileName : QDir(m_folder).entryList(QDir::Files, QDir::Name)) {
        if (fileName.size() > extension.size() && fileName.endsWith(extension)) {
            names += fileName.chopped(extension.size());
        }
    }
    return names;
}

QString LanguageStrings::getSystemLanguageFile()
{
    return QLocale::languageToString(QLocale::system().language()) + extension;
}

QString LanguageStrings::text(const QString& key)
{
    const LanguageStrings* language = activeLanguage.load();
    return language == nullptr ? key : language->getString(key);
}

void LanguageStrings::setActive(const LanguageStrings* language) { activeLanguage = language; }

std::shared_ptr<const LanguageStrings::Table> LanguageStrings::table() const
{
    const std::lock_guard lock(m_mutex);
    return m_table;
}
