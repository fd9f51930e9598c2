#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

struct tagVARIANT;

// What a property of the management interface of Windows holds.
namespace WmiValue {

// Nothing when the value is no text.
[[nodiscard]] std::optional<QString> text(const tagVARIANT& value);
// Empty when the value is no row of bytes.
[[nodiscard]] QByteArray bytes(const tagVARIANT& value);

} // namespace WmiValue
