#include "core/widgets/qcocoapreferencesdialog.h"

#include <algorithm>

#include <QPropertyAnimation>

#include "core/widgets/qcocoatoolbarimpl.h"
#include "core/widgets/qpreferencespage.h"

namespace {

// Pixels.
constexpr int pageLeft = 40;
constexpr int roomBesidePage = 60;

constexpr int resizeDuration = 150; // milliseconds

} // namespace

QCocoaPreferencesDialog::QCocoaPreferencesDialog(QWidget* parent)
    : QDialog(parent)
    , m_toolBar(new QCocoaToolbarImpl(this))
{
    m_toolBar->setParent(this);
    connect(m_toolBar, &QCocoaToolbarImpl::buttonActivated, this,
            &QCocoaPreferencesDialog::toolbarButtonActivated);
}

QCocoaPreferencesDialog::~QCocoaPreferencesDialog() = default;

void QCocoaPreferencesDialog::addPage(QPreferencesPage* page, bool sizeAtOnce)
{
    m_toolBar->addButton(page->getTitle(), page->getIcon());
    m_pages.append(page);
    page->setParent(this);
    connect(page, &QPreferencesPage::preferencesChanged, this,
            &QCocoaPreferencesDialog::preferencesChanged);
    connect(page, &QPreferencesPage::needRecalculateLayout, this,
            &QCocoaPreferencesDialog::layoutChanged);
    if (sizeAtOnce) {
        setCurrentPage(0, false);
    }
}

void QCocoaPreferencesDialog::setCurrentPage(int page, bool animate)
{
    QWidget* const focused = focusWidget();
    for (auto* const hidden : m_pages) {
        hidden->hide();
    }
    if (page < 0 || page >= m_pages.size()) {
        return;
    }
    m_currentPage = page;
    m_toolBar->setButtonChecked(page);
    auto& shown = *m_pages[page];
    shown.updateLayout();
    shown.show();
    if (focused != nullptr && shown.isAncestorOf(focused)) {
        // Hidden for a moment, it has lost the focus to the next one.
        focused->setFocus();
    }
    const QSize bar = m_toolBar->size();
    takeSize(
        QSize(std::max(bar.width(), shown.width() + roomBesidePage), shown.height() + bar.height()),
        animate);
    placePage(shown);
    setWindowTitle(QStringLiteral("%1: %2").arg(m_baseTitle, shown.getTitle()));
    Q_EMIT currentPageChanged(page);
}

void QCocoaPreferencesDialog::placePage(QPreferencesPage& page)
{
    m_toolBar->place(width());
    // From the side where the language begins.
    const int left
        = layoutDirection() == Qt::RightToLeft ? width() - pageLeft - page.width() : pageLeft;
    page.move(left, m_toolBar->size().height());
}

void QCocoaPreferencesDialog::takeSize(const QSize& size, bool animate)
{
    if (!m_resizing.isNull()) {
        m_resizing->stop();
    }
    if (this->size() == size) {
        return;
    }
    if (!animate || !isVisible()) {
        resize(size);
        return;
    }
    m_resizing = new QPropertyAnimation(this, "size", this);
    m_resizing->setDuration(resizeDuration);
    m_resizing->setStartValue(this->size());
    m_resizing->setEndValue(size);
    m_resizing->start(QAbstractAnimation::DeleteWhenStopped);
}

void QCocoaPreferencesDialog::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    if (m_currentPage < m_pages.size()) {
        placePage(*m_pages[m_currentPage]);
    }
}

void QCocoaPreferencesDialog::toolbarButtonActivated(int button) { setCurrentPage(button, true); }

void QCocoaPreferencesDialog::layoutChanged()
{
    for (int page = 0; page < m_pages.size(); ++page) {
        m_toolBar->setButtonText(page, m_pages[page]->getTitle());
    }
    setCurrentPage(m_currentPage, true);
}
