#include "core/widgets/qcocoatoolbarimpl.h"

#include <QAction>
#include <QActionGroup>
#include <QIcon>
#include <QLayout>

#include "core/widgets/qtoolbarnotooltips.h"

namespace {

constexpr int leftMargin = 4; // pixels
constexpr int iconSize = 32; // pixels

} // namespace

QCocoaToolbarImpl::QCocoaToolbarImpl(QWidget* dialog)
    : m_toolBar(new QToolBarNoTooltips(dialog))
    , m_actions(new QActionGroup(this))
{
    m_toolBar->setFloatable(false);
    m_toolBar->setMovable(false);
    m_toolBar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    m_toolBar->setIconSize(QSize(iconSize, iconSize));
}

void QCocoaToolbarImpl::addButton(const QString& text, const QIcon& icon)
{
    const int number = m_actions->actions().size();
    auto* const action = m_toolBar->addAction(icon, text);
    action->setCheckable(true);
    m_actions->addAction(action);
    connect(action, &QAction::triggered, this, [this, number] { Q_EMIT buttonActivated(number); });
    if (auto* const button = m_toolBar->widgetForAction(action)) {
        // Without a mouse as well.
        button->setFocusPolicy(Qt::TabFocus);
    }
    fit();
}

void QCocoaToolbarImpl::setButtonText(int button, const QString& text)
{
    if (auto* const action = m_actions->actions().value(button)) {
        action->setText(text);
        fit();
    }
}

void QCocoaToolbarImpl::setButtonChecked(int button)
{
    if (auto* const action = m_actions->actions().value(button)) {
        action->setChecked(true);
    }
}

void QCocoaToolbarImpl::place(int dialogWidth)
{
    const bool isMirrored = m_toolBar->layoutDirection() == Qt::RightToLeft;
    m_toolBar->move(isMirrored ? dialogWidth - leftMargin - m_toolBar->width() : leftMargin, 0);
}

QSize QCocoaToolbarImpl::size() const { return m_toolBar->size(); }

void QCocoaToolbarImpl::fit()
{
    m_toolBar->layout()->activate();
    m_toolBar->resize(m_toolBar->sizeHint());
}
