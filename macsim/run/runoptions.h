#pragma once

#include <optional>

#include <QString>
#include <QStringList>

namespace macsim {

// What "macsim run" was asked to do.
struct RunOptions {
    QString machine; // name or path
    QString load = QStringLiteral("idle");
    QString traceFile; // empty for none
    QString reportFile; // empty for none
    QString folder; // empty for a temporary one
    QString wineFolder; // of inpout32.dll for a command under Wine; empty for others
    QString service; // the service's program; empty for none
    double speed = 1.0;
    quint32 seed = 1;
    int lingerSeconds = 0;
    bool status = false; // lines, or a rewritten line on a terminal
    bool quiet = false;
    QStringList command;

    // The arguments after "run". On failure nothing, and error says why.
    [[nodiscard]] static std::optional<RunOptions> parse(const QStringList& arguments,
                                                         QString& error);
    // The options, a line each.
    [[nodiscard]] static QString help();
};

} // namespace macsim
