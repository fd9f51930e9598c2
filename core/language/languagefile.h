#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

// Reads a language file: XML whose leaf elements are texts, and whose paths of
// element names below the root, joined by "/", are their keys. In a text, a
// backslash and an n stand for a line feed.
//
// The texts are laid over the strings, key by key. Data that can't be parsed gives
// false and leaves the strings as they are. May be called from any thread.
[[nodiscard]] bool readLanguageFile(const QByteArray& data, QHash<QString, QString>& strings);
