#include "ElidedLineEdit.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

namespace
{
// Between the frame's contents and the text, as QLineEdit keeps it.
constexpr int InnerMargin = 2;
} // namespace

ElidedLineEdit::ElidedLineEdit(QWidget* parent)
    : QLineEdit(parent)
{
    connect(this, &QLineEdit::textChanged, this, &ElidedLineEdit::UpdateToolTip);
}

void ElidedLineEdit::SetHint(const QString& hint)
{
    mHint = hint;
    UpdateToolTip();
}

void ElidedLineEdit::UpdateToolTip()
{
    const QString whole = text();
    setToolTip(whole.isEmpty() || mHint.isEmpty() ? whole + mHint : whole + QLatin1Char('\n') + mHint);
}

QRect ElidedLineEdit::TextArea() const
{
    QStyleOptionFrame panel;
    initStyleOption(&panel);
    const QRect contents = style()->subElementRect(QStyle::SE_LineEditContents, &panel, this);
    return contents.marginsRemoved(textMargins()).adjusted(InnerMargin, 0, -InnerMargin, 0);
}

bool ElidedLineEdit::IsElided() const
{
    return isReadOnly() && !hasFocus() && fontMetrics().horizontalAdvance(text()) > TextArea().width();
}

QString ElidedLineEdit::ShownText() const
{
    return IsElided() ? fontMetrics().elidedText(text(), Qt::ElideMiddle, TextArea().width()) : text();
}

void ElidedLineEdit::paintEvent(QPaintEvent* event)
{
    if (!IsElided())
    {
        QLineEdit::paintEvent(event);
        return;
    }
    QPainter painter(this);
    QStyleOptionFrame panel;
    initStyleOption(&panel);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &panel, &painter, this);
    const QRect area = TextArea();
    painter.setClipRect(area);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::Text));
    painter.drawText(area, Qt::AlignLeft | Qt::AlignVCenter, ShownText());
}
