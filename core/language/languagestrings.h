#pragma once

#include <memory>
#include <mutex>

#include <QHash>
#include <QString>
#include <QStringList>

// The texts of the interface by path-like keys, such as "MainWindow/buttonAbout":
// English from a resource, overlaid by a translation from a loose file. getString
// may be called from any thread, also while another language is being loaded.
class LanguageStrings {
public:
    // resourcePath is the English file as QFile takes it:
    // ":/build/languages/English.xml". folder holds the translations: "languages"
    // beside the executable. Nothing is loaded yet.
    LanguageStrings(const QString& resourcePath, const QString& folder);
    LanguageStrings(const LanguageStrings&) = delete;
    LanguageStrings& operator=(const LanguageStrings&) = delete;
    ~LanguageStrings();

    // Loads a language by base name or file name; an empty name stands for the
    // system's language. A translation that is missing, can't be parsed or has more
    // than 16 MiB leaves English in force. Keys that it lacks stay English.
    void load(const QString& name);

    // The text, or the key itself when there is none or it is empty: what is
    // missing shows in plain sight, also where a translation empties an English text.
    [[nodiscard]] QString getString(const QString& key) const;

    // The language in use: "German", "German.xml"; empty when not even English
    // could be loaded.
    [[nodiscard]] QString getLanguageName() const;
    [[nodiscard]] QString getLanguageFileName() const;
    // Base names of the files in the folder, sorted by file name.
    [[nodiscard]] QStringList getAvailableLanguages() const;
    [[nodiscard]] static QString getSystemLanguageFile();
    // The language's name in itself, or empty for an unknown one.
    [[nodiscard]] static QString nativeName(const QString& baseName);
    // Whether the language is written from right to left.
    [[nodiscard]] static bool isRightToLeft(const QString& baseName);

    // The texts of the application's own language object: the one that was made
    // active, or the key itself when there is none.
    [[nodiscard]] static QString text(const QString& key);
    // The object must stay alive until it is replaced or null is set. Called on
    // the GUI thread before other threads start and after they have ended.
    static void setActive(const LanguageStrings* language);

private:
    struct Table;

    // Reads a translation over the strings; false when English stays in force.
    [[nodiscard]] bool overlay(const QString& fileName, QHash<QString, QString>& strings) const;
    [[nodiscard]] std::shared_ptr<const Table> table() const;

    const QString m_resourcePath;
    const QString m_folder;
    mutable std::mutex m_mutex;
    std::shared_ptr<const Table> m_table;
};
