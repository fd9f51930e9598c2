#include "macsim/model/smcvalue.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace macsim::smcvalue {

namespace {

// A type whose values are whole numbers of big-endian bytes divided by a scale.
struct FixedPoint {
    const char* type;
    int size;
    double scale;
    bool isSigned;
};

constexpr std::array fixedPointTypes {
    FixedPoint { "fpe2", 2, 4.0, false }, FixedPoint { "sp78", 2, 256.0, true },
    FixedPoint { "ui8 ", 1, 1.0, false }, FixedPoint { "ui16", 2, 1.0, false },
    FixedPoint { "ui32", 4, 1.0, false },
};

const FixedPoint* fixedPoint(const QByteArray& type)
{
    const auto found = std::find_if(fixedPointTypes.begin(), fixedPointTypes.end(),
                                    [&type](const FixedPoint& each) { return type == each.type; });
    return found == fixedPointTypes.end() ? nullptr : &*found;
}

bool isSingle(const QByteArray& type) { return type == "flt "; }

} // namespace

QByteArray encode(const QByteArray& type, double number)
{
    if (isSingle(type)) {
        const auto bits = std::bit_cast<quint32>(static_cast<float>(number));
        QByteArray bytes;
        for (int shift = 0; shift < 32; shift += 8) {
            bytes.append(static_cast<char>((bits >> shift) & 0xFF));
        }
        return bytes;
    }
    const FixedPoint* form = fixedPoint(type);
    if (form == nullptr) {
        return {};
    }
    const double steps = std::ldexp(1.0, 8 * form->size - (form->isSigned ? 1 : 0));
    const double lowest = form->isSigned ? -steps : 0.0;
    const double scaled = std::clamp(std::floor(number * form->scale), lowest, steps - 1.0);
    const auto whole = static_cast<qint64>(scaled);
    QByteArray bytes;
    for (int shift = 8 * (form->size - 1); shift >= 0; shift -= 8) {
        bytes.append(static_cast<char>((whole >> shift) & 0xFF));
    }
    return bytes;
}

std::optional<double> decode(const QByteArray& type, const QByteArray& value)
{
    if (isSingle(type)) {
        if (value.size() != 4) {
            return std::nullopt;
        }
        quint32 bits = 0;
        for (int index = 3; index >= 0; --index) {
            bits = (bits << 8) | static_cast<quint8>(value.at(index));
        }
        return static_cast<double>(std::bit_cast<float>(bits));
    }
    const FixedPoint* form = fixedPoint(type);
    if (form == nullptr || value.size() != form->size) {
        return std::nullopt;
    }
    qint64 whole = 0;
    for (const char byte : value) {
        whole = (whole << 8) | static_cast<quint8>(byte);
    }
    if (form->isSigned && (static_cast<quint8>(value.at(0)) & 0x80) != 0) {
        whole -= qint64 { 1 } << (8 * form->size);
    }
    return static_cast<double>(whole) / form->scale;
}

QString printable(const QByteArray& name)
{
    QString text;
    for (const char character : name) {
        const auto code = static_cast<quint8>(character);
        if (code < 0x20 || code > 0x7E || character == '"' || character == '\\') {
            text += QStringLiteral("\\x%1").arg(code, 2, 16, QLatin1Char('0'));
        } else {
            text += QLatin1Char(character);
        }
    }
    return text;
}

QString hex(const QByteArray& bytes) { return QString::fromLatin1(bytes.toHex().toUpper()); }

std::optional<QByteArray> bytesFromHex(const QString& digits)
{
    // The conversion skips what isn't a digit, so look whether anything was.
    const QByteArray bytes = QByteArray::fromHex(digits.toLatin1());
    return hex(bytes) == digits.toUpper() ? std::optional(bytes) : std::nullopt;
}

std::optional<QByteArray> keyFromText(const QString& text)
{
    const bool isLatin1 = std::all_of(text.cbegin(), text.cend(),
                                      [](QChar each) { return each.unicode() < 0x100; });
    if (text.isEmpty() || text.size() > 4 || !isLatin1) {
        return std::nullopt;
    }
    return text.toLatin1().leftJustified(4, ' ');
}

} // namespace macsim::smcvalue
