#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

namespace macsim::smcvalue {

// The encodings that the simulator fills in or understands, by type name:
// "fpe2" (unsigned, two fraction bits, big-endian), "sp78" (signed, eight
// fraction bits, big-endian), "flt " (single, little-endian), and the unsigned
// big-endian "ui8 ", "ui16" and "ui32". Numbers beyond a type's range become the
// nearest that it holds; an unknown type gives an empty array.
[[nodiscard]] QByteArray encode(const QByteArray& type, double number);

// Nothing for an unknown type or a wrong length.
[[nodiscard]] std::optional<double> decode(const QByteArray& type, const QByteArray& value);

// A key or type name for people and traces: bytes outside the printable ASCII
// range, quotes and backslashes become \xNN.
[[nodiscard]] QString printable(const QByteArray& name);

[[nodiscard]] QString hex(const QByteArray& bytes);

// The bytes of a text that holds pairs of hexadecimal digits and nothing else.
[[nodiscard]] std::optional<QByteArray> bytesFromHex(const QString& digits);

// A key from the command line: shorter names are filled up with blanks. Nothing
// for an empty name, one of more than four characters or beyond Latin-1.
[[nodiscard]] std::optional<QByteArray> keyFromText(const QString& text);

} // namespace macsim::smcvalue
