#include "macsim/model/trace.h"

#include <utility>

#include "macsim/model/smcvalue.h"

namespace macsim {

namespace {

QString quoted(const QByteArray& key)
{
    return QLatin1Char('"') + smcvalue::printable(key) + QLatin1Char('"');
}

QString valueText(const QByteArray& value)
{
    return value.isEmpty() ? QStringLiteral("-") : smcvalue::hex(value);
}

QString singleLine(QString text)
{
    for (QChar& character : text) {
        if (character < QLatin1Char(' ')) {
            character = QLatin1Char(' ');
        }
    }
    return text;
}

} // namespace

Trace::Trace(const Clock& clock, Sink sink)
    : m_clock(clock)
    , m_sink(std::move(sink))
    , m_start(clock.now())
{
}

void Trace::line(const QString& text) const
{
    if (!m_sink) {
        return;
    }
    const auto elapsed
        = std::chrono::duration_cast<std::chrono::milliseconds>(m_clock.now() - m_start).count();
    const QString stamp
        = QStringLiteral("%1.%2 ").arg(elapsed / 1000).arg(elapsed % 1000, 3, 10, QLatin1Char('0'));
    m_sink((stamp + text).toUtf8());
}

void Trace::read(const QByteArray& key, const QByteArray& value, const char* result) const
{
    line(QStringLiteral("read %1 %2 %3").arg(quoted(key), valueText(value), QLatin1String(result)));
}

void Trace::write(const QByteArray& key, const QByteArray& value, const char* result) const
{
    line(
        QStringLiteral("write %1 %2 %3").arg(quoted(key), valueText(value), QLatin1String(result)));
}

void Trace::info(const QByteArray& key, const QByteArray& type, int length,
                 const char* result) const
{
    const QString shape = type.isEmpty()
        ? QStringLiteral("-")
        : QStringLiteral("%1/%2").arg(smcvalue::printable(type.trimmed())).arg(length);
    line(QStringLiteral("info %1 %2 %3").arg(quoted(key), shape, QLatin1String(result)));
}

void Trace::index(quint32 index, const QByteArray& key, const char* result) const
{
    line(QStringLiteral("index %1 %2 %3")
             .arg(QString::number(index), key.isEmpty() ? QStringLiteral("-") : quoted(key),
                  QLatin1String(result)));
}

void Trace::error(const QString& text) const
{
    line(QStringLiteral("error \"%1\"").arg(singleLine(text)));
}

void Trace::event(const QString& text) const
{
    line(QStringLiteral("event %1").arg(singleLine(text)));
}

} // namespace macsim
