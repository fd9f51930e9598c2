#pragma once

#include <memory>

#include <QDialog>
#include <QString>

#include "core/widgets/dialogext.h"

namespace Ui {
class InfoDialog;
}

// The about dialog: product, version, copyright, online help and disclaimer.
class QInfoDialog : public Widgets::DialogExT<QDialog> {
    Q_OBJECT

public:
    struct Info {
        QString productName;
        QString version;
        int build = 0;
        QString copyrightLine; // "%1" stands for the year
        int year = 0; // the present one
        QString supportPage; // a URL; without one there is no link

        // This build, at the present date.
        [[nodiscard]] static Info current();
    };

    QInfoDialog(QWidget* parent, const Info& info);
    ~QInfoDialog() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected Q_SLOTS:
    void OnLinkActivated(const QString& link);

private:
    void initCloseButton();
    void showProduct(const Info& info);

    const QString m_supportPage;
    const std::unique_ptr<Ui::InfoDialog> m_ui;
};
