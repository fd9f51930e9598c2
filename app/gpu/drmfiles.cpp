#include "app/gpu/drmfiles.h"

#include <map>

namespace DrmFiles {

QStringList cards(const QStringList& entries)
{
    const QString prefix = QStringLiteral("card");
    std::map<uint, QString> byNumber;
    for (const QString& entry : entries) {
        bool isNumber = false;
        const uint number = entry.midRef(prefix.size()).toUInt(&isNumber);
        if (isNumber && entry == prefix + QString::number(number)) {
            byNumber.emplace(number, entry);
        }
    }
    QStringList result;
    for (const auto& [number, entry] : byNumber) {
        result.append(entry);
    }
    return result;
}

bool isAmd(const QByteArray& vendor) { return vendor.trimmed().toLower() == "0x1002"; }

} // namespace DrmFiles
