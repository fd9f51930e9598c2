#pragma once

#include <memory>
#include <mutex>

#include <QByteArray>
#include <QDateTime>
#include <QMap>
#include <QRect>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariant>

// All that the program persists: a QSettings with a cache before it. Each write
// reaches the storage before the call returns. All operations may be called from
// any thread. Keys are listed in app/settingskeys.h.
//
// A storage that can't be written is logged once; the program then runs on with
// the values in the cache.
class QSettingsCache {
public:
    // The user's settings of this application, in the system's native format.
    QSettingsCache(const QString& organization, const QString& application);
    // Settings over a storage of the caller's.
    explicit QSettingsCache(std::unique_ptr<QSettings> storage);

    // The stored value, or the default of the first caller who asked: a value
    // that was read once is cached together with the default it was read with.
    [[nodiscard]] QVariant value(const QString& key, const QVariant& defaultValue = {});

    [[nodiscard]] int getInt(const QString& key, int defaultValue = 0);
    [[nodiscard]] QString getString(const QString& key);
    [[nodiscard]] QStringList getStringList(const QString& key);
    [[nodiscard]] QRect getRect(const QString& key);
    [[nodiscard]] QByteArray getByteArray(const QString& key);
    // Kept as text in ISO format; invalid when missing or unreadable.
    [[nodiscard]] QDateTime getDateTime(const QString& key);

    void setInt(const QString& key, int value);
    void setString(const QString& key, const QString& value);
    void setStringList(const QString& key, const QStringList& value);
    void setRect(const QString& key, const QRect& value);
    void setByteArray(const QString& key, const QByteArray& value);
    void setDateTime(const QString& key, const QDateTime& value);

    void remove(const QString& key);
    // Everything goes, and so does the file or registry key that held it. What is
    // written afterwards starts a new storage; in the registry reading does, too,
    // with an empty key.
    void removeStorage();

    // Logs that the storage can't be written, if that was so before there was a
    // log. Further failures log themselves.
    void reportFailure();

private:
    void setValue(const QString& key, const QVariant& value);
    void reportStatus();

    std::mutex m_mutex;
    QMap<QString, QVariant> m_cache;
    std::unique_ptr<QSettings> m_storage; // never null
    bool m_failureReported = false;
};
