#pragma once

#include <memory>

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

// A Windows machine of a test's own: a copy of the prefix that the environment
// variable BRISORA_WINE_PREFIX names. What Wine writes is copied, the many files
// that it only reads are shared. The copy lies beside its model and is gone with
// this object; nothing of Wine may run in it any more by then.
class WinePrefix {
public:
    // What has to be there for it and isn't, in a sentence; empty when all is there.
    [[nodiscard]] static QString missing();

    // Ends the test program when the copy can't be made.
    WinePrefix();

    [[nodiscard]] QString path() const { return m_folder->path(); }
    // "NAME=value": what programs of Wine need to run in it.
    [[nodiscard]] QStringList variables() const;
    // Puts a copy of a library where Windows keeps its own. Ends the test program
    // when it can't be done.
    void installLibrary(const QString& file) const;
    // The only file of this name under the users' folders, or an empty text.
    [[nodiscard]] QString usersFile(const QString& name) const;

private:
    std::unique_ptr<QTemporaryDir> m_folder;
};
