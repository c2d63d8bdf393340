// SPDX-FileCopyrightText: 2026 the TARVIK authors
// SPDX-License-Identifier: MIT
#include "gui/kit/ErrorDialog.h"

#include "logic/support/Console.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace {

/// Up to this many are shown by a label, which lays out all its text again for each new one; a
/// list shows more.
constexpr int MostInLabel = 20;

/// The first ones say most.
constexpr int MostInList = 10000;

constexpr int LeastWidth = 400;

/// Asks for the space that its text needs, in lines no longer than the screen; adjustSize() gives a
/// window two thirds of the screen at most.
class ScrollingText : public QScrollArea {
public:
    explicit ScrollingText(QLabel* text)
    {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setWidget(text);
    }

    QSize sizeHint() const override
    {
        const int most = std::max(screen()->availableSize().width() * 3 / 5, LeastWidth);
        const int wanted = widget()->sizeHint().expandedTo(widget()->minimumSizeHint()).width();
        const int width = std::clamp(wanted, LeastWidth, most);
        // A word longer than a line, as a path, gets a scroll bar.
        const int bar = wanted > width ? horizontalScrollBar()->sizeHint().height() : 0;
        return {width, widget()->heightForWidth(width) + bar};
    }
    QSize minimumSizeHint() const override { return {LeastWidth, fontMetrics().lineSpacing()}; }
};

}  // namespace

ErrorDialog::ErrorDialog(const char* message, QWidget* parent)
    : QDialog(parent)
    , _text(new QLabel)
    , _area(new ScrollingText(_text))
    , _list(new QPlainTextEdit)
{
    setAttribute(Qt::WA_DeleteOnClose);
    // Messages hold file names, which must not be taken for markup.
    _text->setTextFormat(Qt::PlainText);
    _text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    _text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    _text->setWordWrap(true);
    _list->setReadOnly(true);
    _list->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    _list->hide();
    auto* close = new QPushButton(QStringLiteral("Close"));
    close->setDefault(true);
    close->setMaximumWidth(50);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(close);
    row->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(_area);
    layout->addWidget(_list, 1);
    layout->addLayout(row);
    _add(QString::fromUtf8(message));
}

void ErrorDialog::showMessage(const char* message)
{
    console::warn(std::string("ERROR: ") + message + '\n');
    static QPointer<ErrorDialog> shown;
    if (shown && shown->isVisible())
        return shown->_add(QString::fromUtf8(message));
    // Not a dialog that may end by itself, such as a progress, and would take the message with it.
    QWidget* parent = QApplication::activeWindow();
    while (parent && !parent->isModal() && parent->parentWidget())
        parent = parent->parentWidget()->window();
    shown = new ErrorDialog(message, parent);
    shown->exec();
}

void ErrorDialog::_add(const QString& message)
{
    if (_known.contains(message))
        return;
    ++_count;
    if (_count <= MostInList) {
        _known.insert(message);
        _list->appendPlainText(message);
    }
    if (_count > MostInLabel) {
        _text->setText(QStringLiteral("%1 errors:").arg(_count));
        if (!_list->isHidden())
            return;
        // The list now fills the space.
        _area->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Maximum);
        _area->updateGeometry();
        _list->show();
        resize(screen()->availableSize() * 3 / 5);
    } else {
        _text->setText(_list->toPlainText());
        _area->updateGeometry();
        adjustSize();
    }
    _stayOnScreen();
}

void ErrorDialog::_stayOnScreen()
{
    if (!isVisible())
        return;  // it will be placed when it is shown
    const QRect room = screen()->availableGeometry();
    const QRect frame = frameGeometry();
    const int left =
        std::max(std::min(frame.left(), room.right() + 1 - frame.width()), room.left());
    const int top = std::max(std::min(frame.top(), room.bottom() + 1 - frame.height()), room.top());
    if (QPoint(left, top) != frame.topLeft())
        move(left, top);
}
