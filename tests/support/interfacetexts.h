#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include "core/language/languagestrings.h"

// The texts of the interface while it lives: English, one of the program's other
// languages, or a translation that the test makes up. What shows texts already keeps
// them until it is told to translate.
class InterfaceTexts {
public:
    InterfaceTexts();
    InterfaceTexts(const InterfaceTexts&) = delete;
    InterfaceTexts& operator=(const InterfaceTexts&) = delete;
    ~InterfaceTexts();

    // One of the languages in the folder, by the name of its file, with or without
    // the extension: "German".
    void load(const QString& name) { m_strings.load(name); }
    void useEnglish() { load(QStringLiteral("English")); }

    // English with other texts, such as
    // "<Presets><presetMenuApply>Los</presetMenuApply></Presets>".
    void translate(const QByteArray& elements);

    // The folder gets a file of this base name with this content; nothing is loaded.
    void addFile(const QString& name, const QByteArray& content) const;
    // What a file with these texts contains.
    [[nodiscard]] static QByteArray fileContent(const QByteArray& elements);

    // The texts in force.
    [[nodiscard]] const LanguageStrings& strings() const { return m_strings; }

private:
    const QTemporaryDir m_folder; // copies of the program's languages, and more
    LanguageStrings m_strings { QStringLiteral(":/build/languages/English.xml"), m_folder.path() };
};
