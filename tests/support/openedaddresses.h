#pragma once

#include <QObject>
#include <QUrl>
#include <QVector>

// Takes the place of the desktop while it lives and notes which pages of the web,
// files and folders the program has opened. One at a time.
class OpenedAddresses : public QObject {
    Q_OBJECT

public:
    OpenedAddresses();
    OpenedAddresses(const OpenedAddresses&) = delete;
    OpenedAddresses& operator=(const OpenedAddresses&) = delete;
    ~OpenedAddresses() override;

    QVector<QUrl> addresses;

public Q_SLOTS:
    void take(const QUrl& address) { addresses.append(address); }
};
