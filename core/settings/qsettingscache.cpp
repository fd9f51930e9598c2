#include "core/settings/qsettingscache.h"

#include <utility>

#include <QFile>

#include "core/log/log.h"
#include "core/settings/settings_storage.h"

namespace {

// Removes the emptied file or registry key, and opens a storage of the same place.
std::unique_ptr<QSettings> replaceStorage(std::unique_ptr<QSettings> storage)
{
    const QString path = storage->fileName();
    const QSettings::Format format = storage->format();
    const QSettings::Scope scope = storage->scope();
    const QString organization = storage->organizationName();
    const QString application = storage->applicationName();

    // A registry key that is deleted while it is open takes no more values.
    storage.reset();
    if (format == QSettings::NativeFormat) {
        core::removeNativeSettings(path);
    } else {
        QFile::remove(path);
    }

    // A storage that was given by its path has no organization.
    return organization.isEmpty()
        ? std::make_unique<QSettings>(path, format)
        : std::make_unique<QSettings>(format, scope, organization, application);
}

} // namespace

QSettingsCache::QSettingsCache(const QString& organization, const QString& application)
    : QSettingsCache(std::make_unique<QSettings>(organization, application))
{
}

QSettingsCache::QSettingsCache(std::unique_ptr<QSettings> storage)
    : m_storage(std::move(storage))
{
}

QVariant QSettingsCache::value(const QString& key, const QVariant& defaultValue)
{
    const std::lock_guard lock(m_mutex);
    const auto cached = m_cache.constFind(key);
    if (cached != m_cache.constEnd()) {
        return *cached;
    }
    const QVariant result = m_storage->value(key, defaultValue);
    m_cache.insert(key, result);
    return result;
}

int QSettingsCache::getInt(const QString& key, int defaultValue)
{
    return value(key, defaultValue).toInt();
}

QString QSettingsCache::getString(const QString& key) { return value(key).toString(); }

QStringList QSettingsCache::getStringList(const QString& key) { return value(key).toStringList(); }

QRect QSettingsCache::getRect(const QString& key) { return value(key).toRect(); }

QByteArray QSettingsCache::getByteArray(const QString& key) { return value(key).toByteArray(); }

QDateTime QSettingsCache::getDateTime(const QString& key)
{
    return QDateTime::fromString(getString(key), Qt::ISODate);
}

void QSettingsCache::setInt(const QString& key, int value) { setValue(key, value); }

void QSettingsCache::setString(const QString& key, const QString& value) { setValue(key, value); }

void QSettingsCache::setStringList(const QString& key, const QStringList& value)
{
    setValue(key, value);
}

void QSettingsCache::setRect(const QString& key, const QRect& value) { setValue(key, value); }

void QSettingsCache::setByteArray(const QString& key, const QByteArray& value)
{
    setValue(key, value);
}

void QSettingsCache::setDateTime(const QString& key, const QDateTime& value)
{
    setValue(key, value.toString(Qt::ISODate));
}

void QSettingsCache::remove(const QString& key)
{
    const std::lock_guard lock(m_mutex);
    m_storage->remove(key);
    m_storage->sync();
    m_cache.remove(key);
    reportStatus();
}

void QSettingsCache::removeStorage()
{
    const std::lock_guard lock(m_mutex);
    m_storage->clear();
    m_storage->sync();
    m_cache.clear();
    m_storage = replaceStorage(std::move(m_storage));
}

void QSettingsCache::reportFailure()
{
    const std::lock_guard lock(m_mutex);
    reportStatus();
}

void QSettingsCache::setValue(const QString& key, const QVariant& value)
{
    const std::lock_guard lock(m_mutex);
    m_storage->setValue(key, value);
    m_storage->sync();
    m_cache.insert(key, value);
    reportStatus();
}

void QSettingsCache::reportStatus()
{
    // Until there is a log nobody is told.
    if (m_storage->status() == QSettings::NoError || m_failureReported || !core::log::isStarted()) {
        return;
    }
    m_failureReported = true;
    LOG_ERR("The settings can't be written to {} ({}), the program goes on with what it holds",
            m_storage->fileName(),
            m_storage->status() == QSettings::FormatError ? "bad format" : "no access");
}
