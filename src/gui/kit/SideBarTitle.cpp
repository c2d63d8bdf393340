// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/SideBarTitle.h"

#include "logic/support/GlobalStyle.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

namespace {

const QString& titleStyle()
{
    static const QString style =
        QStringLiteral("QWidget {background-color: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, "
                       "stop: 0 rgb(%1,%1,%1), stop: 1 rgb(%2,%2,%2));}"
                       "QWidget:hover {background-color: rgb(%3,%3,%3);}"
                       "QWidget:pressed {background-color: rgb(%4,%4,%4);}"
                       "QWidget:disabled {background-color: grey;}"
                       "QToolTip {background-color: rgb(40,40,40); border: 1px solid "
                       "rgb(90,90,90);}")
            .arg(60)
            .arg(0)
            .arg(80)
            .arg(80);
    return style;
}

/// Pixels to the right for each level.
constexpr int Indent = 10;

}  // namespace

SideBarTitle::SideBarTitle(SideBar* sideBar, QWidget* parent)
    : QWidget(parent)
    , _sideBar(sideBar)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    setStyleSheet(titleStyle());
    refresh();
}

void SideBarTitle::refresh()
{
    if (!_sideBar)
        return;
    setToolTip(_sideBar->infoText());
    setAccessibleName(_sideBar->title());
    updateGeometry();
    update();
}

QSize SideBarTitle::sizeHint() const
{
    const QWidget* around = parentWidget()->parentWidget();
    return {(around ? around : parentWidget())->width(), _sideBar ? _sideBar->titleHeight() : 0};
}

void SideBarTitle::mousePressEvent(QMouseEvent*)
{
    const QPointer<QWidget> self(this);
    if (_sideBar)
        _sideBar->toggleVisible(_sideBar->isHidden());
    if (self)
        update();
}

void SideBarTitle::paintEvent(QPaintEvent*)
{
    if (!_sideBar)
        return;
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::white);
    painter.drawLine(0, height() - 1, width() - 1, height() - 1);

    const int h = _sideBar->titleHeight();
    const int x = Indent * static_cast<int>(_sideBar->level());
    const int y = (h - 10) / 2;
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(Qt::white, 1));
    painter.setBrush(Qt::white);
    if (_sideBar->isHidden())
        painter.drawPolygon(QPolygon({{x, y}, {x + 8, y + 5}, {x, y + 10}}));
    else
        painter.drawPolygon(QPolygon({{x, y}, {x + 10, y}, {x + 5, y + 8}}));

    static const QFont font(GLOBALSTYLE::fontFamily, 13);
    static const QFontMetrics metrics(font);
    painter.setFont(font);
    painter.drawText(x + 20, (metrics.capHeight() + h) / 2, _sideBar->title());
}
