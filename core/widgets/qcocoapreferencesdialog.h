#pragma once

#include <QDialog>
#include <QList>
#include <QPointer>
#include <QString>

class QCocoaToolbarImpl;
class QPreferencesPage;
class QPropertyAnimation;

// A dialog with a bar of buttons, one per page, that takes the size of the page
// that is shown.
class QCocoaPreferencesDialog : public QDialog {
    Q_OBJECT

public:
    explicit QCocoaPreferencesDialog(QWidget* parent = nullptr);
    ~QCocoaPreferencesDialog() override;

    // The page becomes a child of the dialog. With sizeAtOnce the first page is
    // shown.
    void addPage(QPreferencesPage* page, bool sizeAtOnce);
    // Pages are numbered from 0; past the last one there is nothing to show.
    void setCurrentPage(int page, bool animate);
    [[nodiscard]] int currentPage() const { return m_currentPage; }
    // What stands before the page's title in the window's.
    void setBaseTitle(const QString& title) { m_baseTitle = title; }

Q_SIGNALS:
    void preferencesChanged();
    void currentPageChanged(int page);

protected Q_SLOTS:
    void toolbarButtonActivated(int button);
    // The texts of the pages are others now.
    virtual void layoutChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void placePage(QPreferencesPage& page);
    void takeSize(const QSize& size, bool animate);

    QCocoaToolbarImpl* const m_toolBar; // child
    QList<QPreferencesPage*> m_pages; // children
    int m_currentPage = 0;
    QString m_baseTitle;
    QPointer<QPropertyAnimation> m_resizing; // child, while it runs
};
