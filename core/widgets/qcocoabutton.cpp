#include "core/widgets/qcocoabutton.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QToolBar>
#include <QToolButton>

struct QCocoaButton::Private {
    QAbstractButton* button = nullptr; // child of the outer one
};

QCocoaButton::QCocoaButton(QWidget* parent)
    : QWidget(parent)
    , m_private(std::make_shared<Private>())
{
    if (qobject_cast<QToolBar*>(parent) != nullptr) {
        m_private->button = new QToolButton(this);
    } else {
        m_private->button = new QPushButton(this);
    }
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_private->button);
    setFocusProxy(m_private->button);
    // Without it setTabOrder takes the button for one that Tab doesn't reach.
    setFocusPolicy(m_private->button->focusPolicy());
    setSizePolicy(m_private->button->sizePolicy());
    connect(m_private->button, &QAbstractButton::clicked, this, &QCocoaButton::clicked);
}

QCocoaButton::~QCocoaButton() = default;

QSize QCocoaButton::sizeHint() const { return m_private->button->sizeHint(); }

QString QCocoaButton::text() const { return m_private->button->text(); }

void QCocoaButton::setTextAlignment(TextAlignment alignment)
{
    m_private->button->setStyleSheet(alignment == LeftAlignment
                                         ? QStringLiteral("QPushButton { text-align: left; }")
                                         : QString());
}

void QCocoaButton::setAccessibleName(const QString& name)
{
    m_private->button->setAccessibleName(name);
}

void QCocoaButton::setMenu(QMenu* menu)
{
    if (auto* const button = qobject_cast<QPushButton*>(m_private->button)) {
        button->setMenu(menu);
    }
}

void QCocoaButton::setText(const QString& text) { m_private->button->setText(text); }

void QCocoaButton::setIcon(const QIcon& icon) { m_private->button->setIcon(icon); }

void QCocoaButton::setIconPosition(IconPosition position) { Q_UNUSED(position) }

void QCocoaButton::setChecked(bool checked) { m_private->button->setChecked(checked); }

void QCocoaButton::setToolTip(const QString& toolTip) { m_private->button->setToolTip(toolTip); }

QAbstractButton* QCocoaButton::innerButton() const { return m_private->button; }
