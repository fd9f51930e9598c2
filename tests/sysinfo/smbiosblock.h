#pragma once

#include <cstdint>
#include <initializer_list>

#include <QByteArray>
#include <QByteArrayList>

// Builds the tables that the tests feed to the parser.
namespace SmbiosBlock {

inline QByteArray bytes(std::initializer_list<int> values)
{
    QByteArray result;
    for (const int value : values) {
        result.append(static_cast<char>(value));
    }
    return result;
}

// A structure: the formatted part gets its type, length and handle put before.
inline QByteArray structure(int type, const QByteArray& fields, const QByteArrayList& texts)
{
    QByteArray result = bytes({ type, static_cast<int>(fields.size()) + 4, 0, 0 }) + fields;
    for (const QByteArray& text : texts) {
        result += text + '\0';
    }
    result += texts.isEmpty() ? bytes({ 0, 0 }) : bytes({ 0 });
    return result;
}

inline QByteArray end() { return structure(127, QByteArray(), {}); }

// A block of version 2.4, revision 9, whose header tells the given length, or the
// right one.
inline QByteArray block(const QByteArray& structures, int length = -1)
{
    const auto told = static_cast<std::uint32_t>(length < 0 ? structures.size() : length);
    return bytes({ 0, 2, 4, 9, static_cast<int>(told & 0xFF), static_cast<int>(told >> 8 & 0xFF),
                   static_cast<int>(told >> 16 & 0xFF), static_cast<int>(told >> 24 & 0xFF) })
        + structures;
}

// The structure of type 1 of length 8 of a machine.
inline QByteArray machine(const QByteArray& manufacturer, const QByteArray& product)
{
    return structure(1, bytes({ 1, 2, 0, 0 }), { manufacturer, product });
}

} // namespace SmbiosBlock
